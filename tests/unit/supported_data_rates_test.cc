// The supported rates' rows, on a scripted device and read as the agent's table iterator reads them. Every test runs
// for both tables.
#include "backend/phy/supported_data_rates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "scripted.h"

using namespace dot11;

namespace {

using testing::ElementsAre;
using testing::SizeIs;

struct Side {
    const char* name;
    int (*next)(uint32_t row, int32_t* value_index, void* record);
    void (*store)(const cfqlquery_node* list);
    uint32_t* last_load;
    RateGroupName** names;
    RateText** texts;
    int32_t* next_text;
    int32_t* stored_now;
};

// clang-format off
const Side rx = {"Rx", GetSuppDataRatesRxTableByIndex, lcl_suppRx,
                 &SUPPDATARATESRXLastLoad, &rx_tag, &suppRx_info, &rxval_index, &rx_row_index};
const Side tx = {"Tx", GetSuppDataRatesTxTableByIndex, lcl_suppTx,
                 &SUPPDATARATESTXLastLoad, &tx_tag, &suppTx_info, &txval_index, &a_index};
// clang-format on

void PrintTo(const Side& side, std::ostream* out) {
    *out << side.name;
}

struct Row {
    uint32_t interface;
    int32_t index;
    int32_t value;
    bool operator==(const Row&) const = default;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.interface << "." << row.index << " = " << row.value;
}

using Rows = std::vector<Row>;

// What the table iterator keeps between its calls.
class Iterator {
  public:
    explicit Iterator(const Side& side) : side_(side) {}

    // Every row of one scan, as for one request. The position starts over, the flag does not.
    Rows scan() {
        Rows rows;
        restart();
        while (next())
            rows.push_back(row);
        return rows;
    }

    // A walk by GETNEXT requests: a scan for each row, and one that finds the end.
    Rows walk() {
        const Rows rows = scan();
        for (size_t i = 0; i < rows.size(); ++i)
            scan();
        return rows;
    }

    void restart() { position_ = 0; }

    bool next() {
        result = side_.next(position_, &new_row, &row);
        if (result < 1) return false;
        if (result == 2) {
            new_row = 1;
            ++position_;
        }
        return true;
    }

    int result = 0;
    int32_t new_row = 1;
    Row row = {};

  private:
    const Side& side_;
    uint32_t position_ = 0;
};

// Empties a side's cache, whatever the tests before have left: calls for the end of a table of 128 rows until they are
// as many as its walk makes.
bool emptied(const Side& side) {
    ScriptedDevice device;
    for (unsigned i = 0; i < 128; ++i) {
        device.interfaces["w" + std::to_string(i)] = 1 + i;
        device.add("supported-rate", "w" + std::to_string(i));
    }
    int32_t new_row = 1;
    Row row;
    *side.last_load = 0;
    for (int i = 0; i < 129 * 129; ++i) {
        side.next(UINT32_MAX, &new_row, &row);
        if (*side.last_load == 0) return true;
    }
    return false;
}

struct WithEmptyCache {
    explicit WithEmptyCache(const Side& side) { EXPECT_TRUE(emptied(side)); }
};

// A device with the interfaces a (index 97), b (98) and c (99).
class RateDevice : private WithEmptyCache, public ScriptedDevice {
  public:
    explicit RateDevice(const Side& side) : WithEmptyCache(side) { interfaces = {{"a", 97}, {"b", 98}, {"c", 99}}; }

    // The "supported-rate" objects, in their order, each named with one character.
    void objects(const std::string& names) {
        std::vector<Pair> nodes;
        for (const char name : names)
            nodes.emplace_back("name", std::string(1, name));
        answer_grid("supported-rate", nodes);
    }

    void rate(const std::string& object, const std::string& value) { set("supported-rate", object, "rate", value); }

    size_t loads() const { return calls_of("grid").size(); }
    std::vector<std::string> fetches() const { return calls_of("get"); }
};

void expect_empty_caches() {
    for (const Side& side : {rx, tx}) {
        ScriptedDevice device;
        device.interfaces["a"] = 97;
        device.add("supported-rate", "a");
        device.set("supported-rate", "a", "rate", "110");
        EXPECT_EQ(*side.last_load, 0U);
        EXPECT_EQ(*side.names, nullptr);
        EXPECT_EQ(*side.texts, nullptr);
        EXPECT_EQ(Iterator(side).walk(), (Rows{{97, 1, 22}}));
        EXPECT_EQ(*side.last_load, 0U) << "the fourth call ends the walk";
    }
}

// In a process of its own, in which no other test has run.
TEST(RatesAtLoad, AreEmpty) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT((expect_empty_caches(), exit(testing::Test::HasFailure() ? 1 : 0)), testing::ExitedWithCode(0), "");
}

class Rates : public testing::TestWithParam<Side> {
  protected:
    const Side& side = GetParam();
    RateDevice device{side};
    Iterator walker{side};
};

using RateFacts = testing::TestWithParam<Side>;

TEST_P(Rates, AsksTheStoreInOrder) {
    device.objects("aab");
    device.rate("a", "110");
    device.rate("b", "55");
    walker.scan();
    EXPECT_THAT(device.calls,
                ElementsAre("grid supported-rate", "get supported-rate a rate", "get supported-rate b rate"));
}

TEST_P(RateFacts, HundredsOfKilobitsBecomeFiveHundreds) {
    const struct {
        std::optional<std::string> stored;
        int32_t served;
    } facts[] = {
        {"110", 22},      {"55", 11},
        {"10", 2},        {"540", 108},
        {"15", 3},        {"14", 2},
        {"1", 2},         {"0", 2},
        {"-1", 2},        {"-540", 2},
        {"", 2},          {std::nullopt, 2},
        {"x", 2},         {"540x", 2},
        {"\x80\xff", 2},  {"+54", 10},
        {"99999", 19999}, {"123456", 2469},  // five characters are kept
        {"00000540", 2},  {std::string(100'000, '9'), 19999},
    };
    for (const auto& fact : facts) {
        RateDevice device(GetParam());
        device.objects("a");
        device.answer("supported-rate", "a", "rate", {{"rate", fact.stored}, {"rate", "990"}});
        EXPECT_EQ(Iterator(GetParam()).scan(), (Rows{{97, 1, fact.served}})) << fact.stored.value_or("").substr(0, 20);
    }
}

TEST_P(RateFacts, OnlyTheFirstNodeCounts) {
    for (const std::vector<ScriptedDevice::Pair>& nodes : {std::vector<ScriptedDevice::Pair>{{"other", "110"}},
                                                           {{"other", "110"}, {"rate", "110"}},
                                                           {{"rates", "110"}},
                                                           {{"RATE", "110"}},
                                                           {{std::nullopt, "110"}}}) {
        RateDevice device(GetParam());
        device.objects("a");
        device.answer("supported-rate", "a", "rate", nodes);
        EXPECT_EQ(Iterator(GetParam()).scan(), (Rows{{97, 1, 2}}));
        EXPECT_EQ(*GetParam().next_text, 0);
    }
}

TEST_P(RateFacts, AGroupHasUpToEightRows) {
    const struct {
        int entries;
        std::vector<int> results;
    } facts[] = {
        {1, {2}},
        {2, {1, 2}},
        {7, {1, 1, 1, 1, 1, 1, 2}},
        {8, {1, 1, 1, 1, 1, 1, 1, 2}},
        {9, {1, 1, 1, 1, 1, 1, 1, 2}},
        {12, {1, 1, 1, 1, 1, 1, 1, 2}},
        {129, {1, 1, 1, 1, 1, 1, 1, 2}},
        {200, {1, 1, 1, 1, 1, 1, 1, 2}},
    };
    for (const auto& fact : facts) {
        RateDevice device(GetParam());
        device.objects(std::string(static_cast<size_t>(fact.entries), 'a'));
        device.rate("a", "110");
        Iterator walker(GetParam());
        std::vector<int> results;
        int32_t index = 0;
        while (walker.next()) {
            results.push_back(walker.result);
            ++index;
            EXPECT_EQ(walker.row, (Row{97, index, index == 1 ? 22 : 2}));
        }
        EXPECT_EQ(results, fact.results) << fact.entries;
        EXPECT_EQ(walker.result, 0);
    }
}

// A name that comes back after another is a group again. Texts are stored in the order of the groups' first visits and
// looked for where the groups' rows begin.
TEST_P(Rates, GroupsAreRunsOfEqualNames) {
    device.objects("aaba");
    device.rate("a", "110");
    device.rate("b", "55");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {97, 2, 2}, {98, 1, 2}, {97, 1, 2}}));
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {97, 2, 11}, {98, 1, 22}, {97, 1, 2}}));
    EXPECT_THAT(device.fetches(),
                ElementsAre("supported-rate a rate", "supported-rate b rate", "supported-rate a rate"));
    EXPECT_STREQ((*side.names)[0], "a");
    EXPECT_STREQ((*side.names)[1], "b");
    EXPECT_STREQ((*side.names)[2], "a");
    EXPECT_EQ(*side.next_text, 3);
    EXPECT_STREQ(iface_tags[3], "a") << "names come by way of the interfaces' table";
}

TEST_P(RateFacts, AsManyGroupsAsThereAreNames) {
    for (const unsigned count : {1U, 2U, 128U, 129U, 130U, 300U}) {
        RateDevice device(GetParam());
        std::vector<ScriptedDevice::Pair> nodes;
        for (unsigned i = 0; i < count; ++i) {
            const std::string name = "w" + std::to_string(i);
            device.interfaces[name] = 1000 + i;
            nodes.emplace_back("name", name);
            device.rate(name, std::to_string(100 + 5 * i));
        }
        device.answer_grid("supported-rate", nodes);
        const Rows rows = Iterator(GetParam()).walk();
        ASSERT_EQ(rows.size(), std::min(count, 129U));
        for (unsigned i = 0; i < rows.size(); ++i)
            EXPECT_EQ(rows[i], (Row{1000 + i, 1, 20 + static_cast<int32_t>(i)}));
        EXPECT_EQ(*GetParam().last_load, 0U) << "the walk ends in a reset";
    }
}

// As many calls as a walk by GETNEXT requests takes: the square of its rows and one.
TEST_P(RateFacts, AWalkEndsWithAnEmptyCache) {
    const struct {
        const char* objects;
        int calls;
    } facts[] = {{"a", 4}, {"ab", 9}, {"abc", 16}, {"aaba", 25}, {"aaaaaaaaaaaa", 81}, {"aaaaaaaaab", 100}};
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.objects);
        RateDevice device(GetParam());
        device.objects(fact.objects);
        device.rate("a", "110");
        device.rate("b", "55");
        device.rate("c", "20");
        for (int round = 1; round <= 2; ++round) {
            Iterator walker(GetParam());
            int calls = 0;
            uint32_t last_load = 1;
            while (last_load != 0 && calls < 1000) {
                if (walker.result == 0) walker.restart();
                walker.next();
                ++calls;
                last_load = *GetParam().last_load;
            }
            EXPECT_EQ(calls, fact.calls);
            EXPECT_EQ(walker.result, 0);
            EXPECT_EQ(*GetParam().names, nullptr);
            EXPECT_EQ(*GetParam().texts, nullptr);
            EXPECT_EQ(*GetParam().next_text, 0);
            EXPECT_EQ(device.loads(), static_cast<size_t>(round)) << "each round reads the store again";
        }
    }
}

TEST_P(Rates, AWalkAfterABrokenOneDoesNotEmptyTheCache) {
    device.objects("abc");
    device.rate("a", "110");
    device.rate("b", "55");
    device.rate("c", "20");
    const Rows rows = {{97, 1, 22}, {98, 1, 11}, {99, 1, 4}};
    EXPECT_EQ(walker.scan(), rows);
    walker.restart();
    walker.next();
    EXPECT_EQ(walker.walk(), rows);
    EXPECT_EQ(*side.last_load, device.now);
    EXPECT_EQ(walker.walk(), rows);
    EXPECT_EQ(device.loads(), 1U);
    EXPECT_THAT(device.fetches(), SizeIs(3)) << "only the first visits ask for the rate";
}

TEST_P(RateFacts, ReloadsAfterFiftySeconds) {
    const struct {
        int64_t loaded, now;
        size_t loads;
    } facts[] = {
        {1'000'000'000, 1'000'000'000, 1},
        {1'000'000'000, 1'000'000'050, 1},
        {1'000'000'000, 1'000'000'051, 2},
        {1'000'000'000, 999'999'000, 1},  // the clock was set back
        {2'147'483'647, 2'147'483'697, 1},
        {2'147'483'647, 2'147'483'698, 2},
        {4'294'967'000, 4'294'967'050, 1},
        {4'294'967'000, 4'294'967'051, 2},
        {1, 51, 1},
        {1, 52, 2},
        {0, 1, 2},  // a last load of 0 is none
        {0, 0, 2},
        {-5, 1, 2},
        {-2'147'483'648, -2'147'483'647, 2},
        {4'294'968'000, 4'294'968'001, 2},  // past what the last load can hold
    };
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.now);
        RateDevice device(GetParam());
        device.objects("a");
        device.rate("a", "110");
        Iterator walker(GetParam());
        device.now = fact.loaded;
        walker.next();
        EXPECT_EQ(walker.row, (Row{97, 1, 22}));
        EXPECT_EQ(device.loads(), 1U);
        device.now = fact.now;
        walker.next();
        EXPECT_EQ(device.loads(), fact.loads);
    }
}

TEST_P(Rates, ALastLoadOfZeroReloadsWhateverTheClockSays) {
    device.objects("a");
    device.now = 30;
    walker.scan();
    *side.last_load = 0;
    walker.scan();
    EXPECT_EQ(device.loads(), 2U);
}

// The counters go on: the rates of the first visits are gone, and nothing fetches them again until the reset.
TEST_P(Rates, AReloadLosesTheRates) {
    device.objects("ab");
    device.rate("a", "110");
    device.rate("b", "55");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {98, 1, 11}}));
    device.now += 51;
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 2}, {98, 1, 2}}));
    EXPECT_THAT(device.fetches(), SizeIs(2));
    EXPECT_EQ(*side.next_text, 2);
    walker.scan();
    EXPECT_EQ(*side.last_load, 0U) << "after nine calls, some before the reload";
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {98, 1, 11}}));
}

TEST_P(Rates, AReloadInTheMiddleOfAWalkMayShrinkTheTable) {
    device.objects("abc");
    ASSERT_TRUE(device.fetches().empty());
    device.rate("a", "110");
    device.rate("b", "55");
    walker.next();
    walker.next();
    device.now += 51;
    device.objects("a");
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(walker.result, 0);
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 2}}));
}

TEST_P(Rates, AReloadInTheMiddleOfAGroupMayShrinkIt) {
    device.objects("aaaa");
    device.rate("a", "110");
    device.rate("b", "55");
    walker.next();
    walker.next();
    device.now += 51;
    device.objects("ab");
    EXPECT_TRUE(walker.next());
    EXPECT_EQ(walker.result, 2);
    EXPECT_EQ(walker.row, (Row{97, 3, 2}));
    EXPECT_TRUE(walker.next());
    EXPECT_EQ(walker.row, (Row{98, 1, 11}));
}

// One visit is counted already, so two groups are asked for their rate; their texts go behind the one that was stored.
TEST_P(Rates, AReloadMayGrowTheTable) {
    device.objects("a");
    device.rate("a", "110");
    device.rate("b", "55");
    device.rate("c", "20");
    walker.scan();
    device.now += 51;
    device.objects("abc");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 2}, {98, 1, 22}, {99, 1, 11}}));
}

TEST_P(Rates, WithoutObjectsThereIsNoRow) {
    for (const std::vector<ScriptedDevice::Pair>& nodes : {std::vector<ScriptedDevice::Pair>{{"other", "a"}},
                                                           {{"name", "abcdef"}},
                                                           {{"name", "gone"}},
                                                           {{"name", std::nullopt}},
                                                           {{std::nullopt, "a"}}}) {
        device.answer_grid("supported-rate", nodes);
        EXPECT_FALSE(walker.next());
        EXPECT_EQ(walker.result, -1);
        EXPECT_EQ(*side.last_load, 0U);
    }
    device.objects("a");
    device.rate("a", "110");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}})) << "the next call tries again";
}

TEST_P(Rates, WhenTheObjectsVanishTheNextCallTriesAgain) {
    device.objects("a");
    device.rate("a", "110");
    walker.scan();
    device.now += 51;
    device.answer_grid("supported-rate", {{"other", "a"}});
    walker.next();
    EXPECT_EQ(walker.result, -1);
    EXPECT_EQ(*side.last_load, 0U);
    EXPECT_EQ(*side.next_text, 1) << "as it was";
    device.objects("a");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 2}}));
    EXPECT_EQ(device.loads(), 3U);
    EXPECT_THAT(device.fetches(), SizeIs(1)) << "that is no first visit";
}

TEST_P(Rates, WhenTheStoreFailsTheNextCallTriesAgain) {
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(walker.result, 0);
    device.objects("a");
    device.rate("a", "110");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}}));
    device.now += 51;
    device.objects("");
    walker.restart();
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(walker.result, 0);
    EXPECT_EQ(*side.last_load, device.now - 51) << "as it was";
    device.now -= 1;
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}})) << "and so are the rates";
}

// The ninth call ends a walk of two rows, whatever came of the first three.
TEST_P(Rates, CallsThatFailCountToo) {
    device.objects("ab");
    device.rate("a", "110");
    device.rate("b", "55");
    device.fail_allocation(1);
    EXPECT_FALSE(walker.next());
    device.answer_grid("supported-rate", {{"other", "a"}});
    EXPECT_FALSE(walker.next());
    device.objects("");
    *side.stored_now = 5;
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(*side.stored_now, 0);
    device.objects("ab");
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {98, 1, 11}}));
    EXPECT_EQ(*side.last_load, device.now);
    walker.scan();
    EXPECT_EQ(*side.last_load, 0U);
}

TEST_P(Rates, AGroupWithoutAnswerEndsTheWalkOnce) {
    device.objects("ab");
    device.rate("b", "55");
    walker.row = {1, 2, 3};
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(walker.result, 0);
    EXPECT_EQ(walker.row, (Row{97, 1, 3})) << "the indexes are in the record";
    EXPECT_EQ(walker.new_row, 1);
    EXPECT_FALSE(walker.next());
    EXPECT_TRUE(walker.next()) << "the third visit asks no more";
    EXPECT_EQ(walker.row, (Row{97, 1, 2}));
    EXPECT_THAT(device.fetches(), SizeIs(2));
}

TEST_P(Rates, AnInterfaceThatVanishesHasTheIndexZero) {
    device.objects("ab");
    walker.next();
    device.rate("a", "110");
    device.interfaces.erase("a");
    EXPECT_TRUE(walker.next());
    EXPECT_EQ(walker.row, (Row{0, 1, 22}));
}

TEST_P(Rates, PositionsPastTheLastGroupEndTheWalk) {
    device.objects("ab");
    for (const uint32_t row : {2U, 3U, 129U, 130U, 0x7fffffffU, 0x80000000U, UINT32_MAX}) {
        int32_t index = 1;
        Row record = {1, 2, 3};
        EXPECT_EQ(side.next(row, &index, &record), 0) << row;
        EXPECT_EQ(index, 1);
        EXPECT_EQ(record, (Row{1, 2, 3}));
    }
}

TEST_P(Rates, AnyValueIndexIsHarmless) {
    device.objects("ab");
    device.rate("a", "110");
    const struct {
        int32_t index;
        int result;
        int32_t next, value;
    } facts[] = {
        {1, 2, 2, 22},
        {2, 2, 3, 2},
        {3, 2, 4, 2},
        {8, 2, 9, 2},
        {9, 2, 10, 2},
        {0, 1, 1, 2},
        {-1, 1, 0, 2},
        {-8, 1, -7, 2},
        {INT32_MIN, 1, -2147483647, 2},
        {INT32_MAX - 1, 2, INT32_MAX, 2},
        {INT32_MAX, 2, INT32_MAX, 2},
    };
    for (const auto& fact : facts) {
        int32_t index = fact.index;
        Row record = {};
        EXPECT_EQ(side.next(0, &index, &record), fact.result) << fact.index;
        EXPECT_EQ(index, fact.next);
        EXPECT_EQ(record, (Row{97, fact.index, fact.value}));
    }
}

TEST_P(Rates, WithoutMemoryForTheNamesThereIsNoRow) {
    device.objects("ab");
    device.rate("a", "110");
    device.rate("b", "55");
    device.fail_allocation(1);
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(walker.result, 0);
    EXPECT_EQ(*side.last_load, 0U);
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {98, 1, 11}})) << "the next call tries again";
    device.now += 51;
    device.fail_allocation(1);
    EXPECT_FALSE(walker.next());
    EXPECT_EQ(*side.names, nullptr);
    EXPECT_EQ(*side.texts, nullptr);
    device.now -= 51;
    walker.restart();
    EXPECT_FALSE(walker.next()) << "no reload is due, and there is no group";
    EXPECT_EQ(walker.result, 0);
}

TEST_P(Rates, WithoutMemoryForTheTextsTheyCountAsEmpty) {
    device.objects("aab");
    device.rate("a", "110");
    device.rate("b", "55");
    device.fail_allocation(2);
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 2}, {97, 2, 2}, {98, 1, 2}}));
    EXPECT_EQ(*side.texts, nullptr);
    EXPECT_EQ(*side.next_text, 0);
}

TEST_P(Rates, WithoutMemoryForAnythingElseNothingIsMissed) {
    device.objects("ab");
    device.rate("a", "110");
    device.rate("b", "55");
    device.fail_allocation(3);
    EXPECT_EQ(walker.scan(), (Rows{{97, 1, 22}, {98, 1, 11}}));
}

TEST_P(Rates, StoresUpToEightRatesACall) {
    const cfqlquery_node node = {"rate", "110", nullptr, 0};
    device.objects("aaaaaaaab");
    device.rate("a", "20");
    walker.next();
    for (int32_t stored = 1; stored <= 10; ++stored) {
        EXPECT_EQ(*side.stored_now, std::min(stored, 8));
        EXPECT_EQ(*side.next_text, std::min(stored, 8));
        side.store(&node);
    }
    walker.next();
    EXPECT_EQ(*side.stored_now, 0);
    side.store(&node);
    EXPECT_EQ(*side.next_text, 9);
    EXPECT_STREQ((*side.texts)[8], "110");
    side.store(&node);
    EXPECT_EQ(*side.next_text, 9) << "there is no room for more";
}

TEST_P(Rates, StoresOnlyRatesAndOnlyWhereThereIsRoom) {
    cfqlquery_node rate = {"rate", "110", nullptr, 0};
    const cfqlquery_node other = {"other", "110", &rate, 0};
    const cfqlquery_node nameless = {nullptr, "110", &rate, 0};
    side.store(&rate);
    EXPECT_EQ(*side.next_text, 0) << "nothing is loaded yet";
    device.objects("aa");
    device.rate("a", "20");
    walker.next();
    side.store(nullptr);
    side.store(&other);
    side.store(&nameless);
    EXPECT_EQ(*side.next_text, 1);
    for (const int32_t place : {-1, 2, 1000, INT32_MIN, INT32_MAX}) {
        *side.next_text = place;
        side.store(&rate);
        EXPECT_EQ(*side.next_text, place);
    }
    *side.next_text = 1;
    side.store(&rate);
    EXPECT_EQ(*side.next_text, 2);
    EXPECT_STREQ((*side.texts)[1], "110");
}

TEST_P(RateFacts, TheOtherTableHasACacheOfItsOwn) {
    const Side& other = GetParam().next == rx.next ? tx : rx;
    ASSERT_TRUE(emptied(other));
    RateDevice device(GetParam());
    device.objects("a");
    device.rate("a", "110");
    EXPECT_EQ(Iterator(GetParam()).scan(), (Rows{{97, 1, 22}}));
    EXPECT_EQ(*other.last_load, 0U);
    EXPECT_EQ(*other.names, nullptr);
    EXPECT_EQ(*other.texts, nullptr);
    EXPECT_EQ(*other.next_text, 0);
    EXPECT_EQ(Iterator(other).scan(), (Rows{{97, 1, 22}}));
    EXPECT_EQ(device.loads(), 2U);
}

const auto name_of = [](const auto& side) { return side.param.name; };
INSTANTIATE_TEST_SUITE_P(All, Rates, testing::Values(rx, tx), name_of);
INSTANTIATE_TEST_SUITE_P(All, RateFacts, testing::Values(rx, tx), name_of);

}  // namespace
