// The iterator hooks: when a table is reloaded, and the rows of a walk.
#include "access/iterator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "access/hooks.h"
#include "backend/mac/counters.h"
#include "backend/mac/operation.h"
#include "backend/mac/resource_info.h"
#include "backend/phy/dsss.h"
#include "backend/phy/phy_operation.h"
#include "backend/phy/reg_domains.h"
#include "backend/phy/supported_data_rates.h"
#include "backend/phy/tx_power.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/station_config.h"
#include "backend/smt/wep_default_keys.h"
#include "scripted.h"

using namespace dot11;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int64_t largest_31_bits = 0x7FFFFFFF;

// The index varbinds that the agent passes to the hooks.
struct IndexVarbinds {
    netsnmp_variable_list first = {}, second = {};

    IndexVarbinds() {
        first.type = second.type = ASN_INTEGER;
        first.next_variable = &second;
    }
    ~IndexVarbinds() {
        snmp_set_var_value(&first, nullptr, 0);
        snmp_set_var_value(&second, nullptr, 0);
    }
    IndexVarbinds(const IndexVarbinds&) = delete;
    IndexVarbinds& operator=(const IndexVarbinds&) = delete;
};

constexpr long unset = -1;  // an index varbind that the hook leaves alone

struct Indexes {
    long first, second;
    bool operator==(const Indexes&) const = default;
};
void PrintTo(const Indexes& indexes, std::ostream* out) {
    *out << indexes.first << "." << indexes.second;
}

struct TableHooks {
    const char* name;
    Netsnmp_First_Data_Point* first;
    Netsnmp_Next_Data_Point* next;
    Netsnmp_Make_Data_Context* convert;
    Netsnmp_Free_Data_Context* free;
    CreateRow* create;
    CommitRow* commit;
};
void PrintTo(const TableHooks& hooks, std::ostream* out) {
    *out << hooks.name;
}
// clang-format off
#define HOOKS(table)                                                                                     \
    {#table, table##_get_first_data_point, table##_get_next_data_point,                                  \
     table##_context_convert_function, table##_data_free, table##_create_data_context, table##_commit_row}
#define EMPTY_HOOKS(table)                                                                               \
    {#table, table##_get_first_data_point, table##_get_next_data_point,                                  \
     nullptr, nullptr, table##_create_data_context, table##_commit_row}
// clang-format on

// A walk as the agent does it. Each step may be followed by others, of this or another table.
class Walk {
  public:
    explicit Walk(const TableHooks& hooks) : hooks_(hooks) {}

    bool first() { return take(hooks_.first(&loop_, &data_, &varbinds_.first, nullptr)); }
    bool next() { return take(hooks_.next(&loop_, &data_, &varbinds_.first, nullptr)); }
    // All rows, from the first. Ends after 2000.
    std::vector<Indexes> rows() {
        std::vector<Indexes> found;
        for (bool more = first(); more && found.size() < 2000; more = next())
            found.push_back(indexes());
        return found;
    }
    Indexes indexes() const { return {number(varbinds_.first), number(varbinds_.second)}; }
    void* loop() const { return loop_; }
    bool data_touched() const { return data_ != &untouched_; }

  private:
    static long number(const netsnmp_variable_list& varbind) {
        return varbind.val_len == sizeof(long) ? *varbind.val.integer : unset;
    }
    bool take(netsnmp_variable_list* result) {
        EXPECT_TRUE(!result || result == &varbinds_.first);
        return result != nullptr;
    }

    const TableHooks& hooks_;
    IndexVarbinds varbinds_;
    char untouched_ = 0;
    void* loop_ = nullptr;
    void* data_ = &untouched_;
};

// -- the walk itself, on a table of the test's own

struct Backend {
    int entries = 1, table_data = 1;
    uint32_t count = 0;
    std::vector<Indexes> rows;  // what they begin with; empty: by their position
    std::vector<std::string> calls;
    std::function<void()> while_loading;
} backend;

struct TestRow {
    uint32_t index, second, value;
};

int entries() {
    backend.calls.push_back("entries");
    return backend.entries;
}
int table_data() {
    backend.calls.push_back("data");
    if (backend.while_loading) backend.while_loading();
    return backend.table_data;
}
uint32_t index_count() {
    backend.calls.push_back("count");
    return backend.count;
}
int entry_by_index(uint32_t position, void* row) {
    backend.calls.push_back("row " + std::to_string(position));
    *static_cast<TestRow*>(row) = {position + 1, position + 101, 7};
    if (position < backend.rows.size()) {
        const Indexes& indexes = backend.rows[position];
        *static_cast<TestRow*>(row) = {static_cast<uint32_t>(indexes.first), static_cast<uint32_t>(indexes.second), 7};
    }
    return 0;  // not looked at
}

class NextRow : public testing::Test {
  protected:
    NextRow() {
        backend = {};
        device.now = 1'000'000'000;
    }

    bool next() {
        backend.calls.clear();
        void* context = &walk.loop;
        const bool found = next_row(table, walk, context, &varbinds.first) != nullptr;
        return found;
    }

    ScriptedDevice device;
    Table table = {.name = "the test's",
                   .columns = {},
                   .indexes = 1,
                   .row_size = sizeof(TestRow),
                   .entries = entries,
                   .table_data = table_data,
                   .index_count = index_count,
                   .rows_per_interface = 1,
                   .entry_by_index = entry_by_index};
    ReloadingWalk<TestRow> walk = {};
    uint32_t& position = walk.loop.position;
    int64_t& last_pass = walk.times.last_pass;
    IndexVarbinds varbinds;
};

TEST_F(NextRow, ReadsTheTableThenCountsThenCopies) {
    backend.count = 2;
    EXPECT_TRUE(next());
    EXPECT_THAT(backend.calls, ElementsAre("entries", "data", "count", "row 0"));
    EXPECT_EQ(position, 1U);
    EXPECT_TRUE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count", "row 1"));
    EXPECT_FALSE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count"));
    EXPECT_EQ(position, 2U);
}

TEST_F(NextRow, NoRowsEndTheWalkAtOnce) {
    EXPECT_FALSE(next());
    EXPECT_THAT(backend.calls, ElementsAre("entries", "data", "count"));
}

TEST_F(NextRow, FailedEntriesAreTriedAgainAtOnce) {
    backend.count = 1;
    backend.entries = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(next());
        EXPECT_THAT(backend.calls, ElementsAre("entries"));
        EXPECT_EQ(last_pass, 0);
    }
    backend.entries = 1;
    EXPECT_TRUE(next());
}

TEST_F(NextRow, FailedDataAreTriedAgainAtOnce) {
    backend.count = 1;
    backend.table_data = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(next());
        EXPECT_THAT(backend.calls, ElementsAre("entries", "data"));
    }
    backend.table_data = 1;
    EXPECT_TRUE(next());
}

// Running out of memory on the way leaves rows, which are served as they stand.
TEST_F(NextRow, OnlyZeroIsFailure) {
    backend.count = 1;
    backend.table_data = -1;
    EXPECT_TRUE(next());
    position = 0;
    EXPECT_TRUE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count", "row 0")) << "and count as read";
    backend.entries = -1;
    device.now += 16;
    position = 0;
    EXPECT_TRUE(next());
}

TEST_F(NextRow, ReadsAgainAfterMoreThanFifteenSecondsOfSilence) {
    const struct {
        int64_t before, after;
        bool read;
    } times[] = {
        {0, 0, false},  // never asked, and the clock not set
        {0, 15, false},
        {0, 16, true},
        {1'000'000'000, 1'000'000'000, false},
        {1'000'000'000, 1'000'000'001, false},
        {1'000'000'000, 1'000'000'015, false},
        {1'000'000'000, 1'000'000'016, true},
        {1'000'000'000, 2'000'000'000, true},
        {1'000'000'000, 999'999'000, false},  // backwards
        {1'000'000'000, 0, false},
        {largest_31_bits - 20, largest_31_bits - 5, false},
        {largest_31_bits - 20, largest_31_bits - 4, true},
        {largest_31_bits - 10, largest_31_bits + 5, false},
        {largest_31_bits - 10, largest_31_bits + 6, true},
        {largest_31_bits, largest_31_bits + 15, false},
        {largest_31_bits, largest_31_bits + 16, true},
        {0xFFFFFFFF, 0x10000000E, false},
        {0xFFFFFFFF, 0x10000000F, true},
        // A clock of 32 bits goes on in 1901.
        {largest_31_bits, -largest_31_bits - 1, false},
        {0, -largest_31_bits - 1, false},
        {-largest_31_bits - 1, -largest_31_bits + 14, false},
        {-largest_31_bits - 1, -largest_31_bits + 15, true},
        {-10, 5, false},
        {-10, 6, true},
    };
    for (const auto& [before, after, read] : times) {
        if (static_cast<int64_t>(static_cast<time_t>(after)) != after) continue;
        last_pass = before;
        device.now = after;
        next();
        EXPECT_EQ(backend.calls[0] == "entries", read) << before << " to " << after;
        EXPECT_EQ(last_pass, after);
    }
}

TEST_F(NextRow, APassHasTheTimeAtWhichItBegan) {
    device.tick = 20;
    next();
    EXPECT_EQ(last_pass, 1'000'000'000);
    EXPECT_EQ(device.now, 1'000'000'020) << "the clock is looked at once";
}

TEST_F(NextRow, AClockThatFailsIsOneThatStandsAtZero) {
    device.clock_fails = true;
    for (const int64_t before : {int64_t{0}, largest_31_bits}) {
        last_pass = before;
        next();
        EXPECT_EQ(backend.calls[0], "count") << before;
        EXPECT_EQ(last_pass, 0);
    }
    device.clock_fails = false;
    next();
    EXPECT_EQ(backend.calls[0], "entries") << "when it goes again";
}

TEST_F(NextRow, ATableUnderSteadyPollingIsNotReadAgain) {
    backend.count = 1;
    next();
    for (int i = 0; i < 100; ++i) {
        device.now += 15;
        position = 0;
        EXPECT_TRUE(next());
        EXPECT_THAT(backend.calls, ElementsAre("count", "row 0"));
    }
}

// With a maximal age.
class Aged : public NextRow {
  protected:
    Aged() {
        backend.count = 2;
        max_age = 30;
    }
    ~Aged() { max_age = 0; }

    // The first row, so many milliseconds later. Whether the table was reloaded.
    bool first_reloads(int64_t milliseconds) {
        device.monotonic_milliseconds += milliseconds;
        position = 0;
        begin_walk(walk);
        EXPECT_TRUE(next());
        return backend.calls[0] == "entries";
    }
};

TEST_F(Aged, ATableUnderSteadyPollingIsReloadedAtThatAge) {
    EXPECT_TRUE(first_reloads(0));
    for (int i = 0; i < 10; ++i) {
        EXPECT_FALSE(first_reloads(10'000));
        EXPECT_FALSE(first_reloads(10'000));
        EXPECT_FALSE(first_reloads(9'999));
        EXPECT_TRUE(first_reloads(1));
    }
}

TEST_F(Aged, AReloadAfterSilenceMakesTheRowsYoung) {
    EXPECT_TRUE(first_reloads(0));
    device.now += 16;
    EXPECT_TRUE(first_reloads(20'000));
    EXPECT_FALSE(first_reloads(29'999));
}

TEST_F(Aged, ARowsAgeIsCountedFromTheBeginningOfItsLoad) {
    EXPECT_TRUE(first_reloads(0));
    backend.while_loading = [this] { device.monotonic_milliseconds += 29'000; };
    device.now += 16;
    EXPECT_TRUE(first_reloads(0));
    backend.while_loading = nullptr;
    EXPECT_TRUE(first_reloads(1'000));
}

TEST_F(Aged, OnlyAWalksBeginningReloads) {
    EXPECT_TRUE(first_reloads(0));
    device.monotonic_milliseconds += 1'000'000;
    EXPECT_TRUE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count", "row 1"));
    EXPECT_FALSE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count"));
    EXPECT_TRUE(first_reloads(0));
}

TEST_F(Aged, AFailedReloadLeavesNoRowsAndIsTriedAgain) {
    EXPECT_TRUE(first_reloads(0));
    backend.entries = 0;
    device.monotonic_milliseconds += 30'000;
    for (int i = 0; i < 3; ++i) {
        position = 0;
        begin_walk(walk);
        EXPECT_FALSE(next());
        EXPECT_THAT(backend.calls, ElementsAre("entries"));
    }
    backend.entries = 1;
    EXPECT_TRUE(first_reloads(0));
    EXPECT_FALSE(first_reloads(0));
}

TEST_F(Aged, RowsFromBeforeTheOptionWasSetAreReloaded) {
    max_age = 0;
    EXPECT_TRUE(first_reloads(0));
    EXPECT_FALSE(first_reloads(1'000'000));
    max_age = 30;
    EXPECT_TRUE(first_reloads(0));
    EXPECT_FALSE(first_reloads(0));
}

// -- whether the agent's iterator may stop at the first row behind the one asked for

class RowsOrder : public NextRow {
  protected:
    RowsOrder() { iterator.flags = NETSNMP_HANDLER_OWNS_IINFO; }

    void set_rows(std::vector<Indexes> rows) {
        backend.rows = std::move(rows);
        backend.count = static_cast<uint32_t>(backend.rows.size());
    }
    bool take() {
        const bool found = next();
        tell_order(walk, &iterator);
        return found;
    }
    // Whether the flag is set behind the first row, or behind the end of a table without rows.
    bool first() {
        begin_walk(walk);
        take();
        return is_sorted();
    }
    bool after_a_scan() {
        begin_walk(walk);
        while (take()) {
        }
        return first();
    }
    bool is_sorted() const {
        EXPECT_TRUE(iterator.flags & NETSNMP_HANDLER_OWNS_IINFO);
        return iterator.flags & NETSNMP_ITERATOR_FLAG_SORTED;
    }

    netsnmp_iterator_info iterator = {};
};

TEST_F(RowsOrder, IsAscendingWhenEachRowIsBehindTheOneBefore) {
    const struct {
        const char* what;
        uint32_t indexes;
        std::vector<Indexes> rows;
        bool sorted;
    } orders[] = {
        {"no row", 1, {}, true},
        {"one row", 1, {{5, 0}}, true},
        {"ascending", 1, {{1, 0}, {2, 0}, {9, 0}}, true},
        {"from 0", 1, {{0, 0}, {1, 0}}, true},
        {"negative numbers are large sub-identifiers", 1, {{1, 0}, {largest_31_bits, 0}, {-2, 0}, {-1, 0}}, true},
        {"a negative number before", 1, {{-1, 0}, {1, 0}}, false},
        {"falling", 1, {{9, 0}, {2, 0}, {1, 0}}, false},
        {"the first two fall", 1, {{2, 0}, {1, 0}, {3, 0}}, false},
        {"the last falls", 1, {{1, 0}, {3, 0}, {2, 0}}, false},
        {"0 at the end", 1, {{1, 0}, {0, 0}}, false},
        {"equal", 1, {{1, 0}, {1, 0}}, false},
        {"equal at the end", 1, {{1, 0}, {2, 0}, {2, 0}}, false},
        {"one index, whatever the second word is", 1, {{1, 5}, {2, 4}}, true},
        {"two ascending", 2, {{1, 1}, {1, 2}, {2, 1}}, true},
        {"two, the second falls", 2, {{1, 2}, {1, 1}}, false},
        {"two, both equal", 2, {{1, 1}, {1, 1}}, false},
        {"two, the first falls", 2, {{2, 1}, {1, 2}}, false},
    };
    for (const auto& [what, indexes, rows, sorted] : orders) {
        SCOPED_TRACE(what);
        table.indexes = indexes;
        set_rows(rows);
        device.now += 16;
        EXPECT_EQ(after_a_scan(), sorted);
        EXPECT_EQ(first(), sorted);
    }
}

TEST_F(RowsOrder, IsKnownOnceAScanHasSeenAllRows) {
    set_rows({{1, 0}, {2, 0}});
    EXPECT_FALSE(first());
    EXPECT_FALSE(first());
    EXPECT_TRUE(take());
    EXPECT_FALSE(is_sorted());
    EXPECT_FALSE(take());
    EXPECT_TRUE(first());
}

TEST_F(RowsOrder, IsForgottenByAReload) {
    set_rows({{1, 0}, {2, 0}});
    EXPECT_TRUE(after_a_scan());
    device.now += 16;
    EXPECT_FALSE(first());
    EXPECT_TRUE(after_a_scan());
    device.now += 16;
    backend.entries = 0;
    EXPECT_FALSE(first());
}

TEST_F(RowsOrder, IsUnknownForTheRestOfAScanWithAReload) {
    set_rows({{1, 0}, {2, 0}, {3, 0}});
    EXPECT_TRUE(after_a_scan());
    device.now += 16;
    EXPECT_TRUE(take());
    EXPECT_FALSE(is_sorted());
    EXPECT_TRUE(take());
    EXPECT_FALSE(take());
    EXPECT_FALSE(is_sorted());
    EXPECT_FALSE(first());
    EXPECT_TRUE(after_a_scan());
}

TEST_F(RowsOrder, EndsWithARowThatFallsWhateverTheScansBeforeSaw) {
    set_rows({{1, 0}, {2, 0}, {3, 0}});
    EXPECT_TRUE(after_a_scan());
    set_rows({{1, 0}, {2, 0}, {2, 0}});
    EXPECT_TRUE(take());
    EXPECT_TRUE(is_sorted());
    EXPECT_TRUE(take());
    EXPECT_FALSE(is_sorted());
    EXPECT_FALSE(after_a_scan());
}

TEST_F(RowsOrder, IsNotToldToNobody) {
    set_rows({{1, 0}});
    EXPECT_TRUE(after_a_scan());
    tell_order(walk, nullptr);
    RateWalk<TestRow> rates;
    iterator.flags = 0;
    tell_order(rates, &iterator);
    EXPECT_EQ(iterator.flags, 0);
}

TEST_F(NextRow, CountsRowsPerInterface) {
    for (const uint32_t rows : {1U, 2U, 4U}) {
        table.rows_per_interface = rows;
        backend.count = 3;
        position = 0;
        uint32_t found = 0;
        while (found < 200 && next())
            ++found;
        EXPECT_EQ(found, 3 * rows);
    }
}

// What a reload in the middle of a walk can leave.
TEST_F(NextRow, APositionPastTheCountGoesOnToTheLastRecord) {
    backend.count = 1;
    position = 126;
    EXPECT_TRUE(next());
    EXPECT_THAT(backend.calls, ElementsAre("entries", "data", "count", "row 126"));
    EXPECT_TRUE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count", "row 127"));
    EXPECT_FALSE(next());
    EXPECT_THAT(backend.calls, ElementsAre("count"));
    position = 0xFFFFFFFF;
    EXPECT_FALSE(next());
}

TEST_F(NextRow, ACountPastTheRecordsEndsAtTheLastOne) {
    for (const uint32_t count : {129U, 130U, 0xFFFFFFFFU}) {
        backend.count = count;
        position = 127;
        EXPECT_TRUE(next());
        EXPECT_FALSE(next());
        EXPECT_EQ(position, 128U);
    }
}

TEST_F(NextRow, SetsAsManyIndexesAsTheTableHas) {
    backend.count = 1;
    next();
    EXPECT_EQ(*varbinds.first.val.integer, 1);
    EXPECT_EQ(varbinds.second.val.integer, nullptr);
    table.indexes = 2;
    position = 0;
    next();
    EXPECT_EQ(*varbinds.first.val.integer, 1);
    EXPECT_EQ(*varbinds.second.val.integer, 101);
    EXPECT_EQ(varbinds.second.val_len, sizeof(long));
}

// -- every table that reloads

struct ReloadedTable {
    TableHooks hooks;
    const void* records;
    size_t row_size;
    std::vector<long> second_indexes;  // of one interface
    size_t capacity = 128;
};
void PrintTo(const ReloadedTable& table, std::ostream* out) {
    *out << table.hooks.name;
}

const ReloadedTable reloaded_tables[] = {
    {HOOKS(dot11StationConfigTable), sinfo, sizeof *sinfo, {unset}},
    {HOOKS(dot11AuthenticationAlgorithmsTable), ainfo, sizeof *ainfo, {1, 2}, 256},
    {HOOKS(dot11WEPDefaultKeysTable), winfo, sizeof *winfo, {1, 2, 3, 4}, 512},
    {HOOKS(dot11PrivacyTable), pinfo, sizeof *pinfo, {unset}},
    {HOOKS(dot11OperationTable), opinfo, sizeof *opinfo, {unset}},
    {HOOKS(dot11CountersTable), cinfo, sizeof *cinfo, {unset}},
    {HOOKS(dot11ResourceInfoTable), rinfo, sizeof *rinfo, {unset}},
    {HOOKS(dot11PhyOperationTable), poinfo, sizeof *poinfo, {unset}},
    {HOOKS(dot11PhyTxPowerTable), ptinfo, sizeof *ptinfo, {unset}},
    {HOOKS(dot11PhyDSSSTable), pdsssinfo, sizeof *pdsssinfo, {unset}},
    {HOOKS(dot11RegDomainsSupportedTable), rdinfo, sizeof *rdinfo, {1}},
};

// Tables keep the time of their latest pass: each test begins long after the one before.
class OnDevice {
  protected:
    OnDevice() { device.now = era; }
    ~OnDevice() { era = std::max(era, device.now) + 1000; }

    // Interfaces w0, w1, ... with the indexes 11, 12, ...
    void add_interfaces(unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            device.add_interface("w" + std::to_string(i), 11 + i);
    }
    void remove_interfaces() {
        device.clear_store();
        device.interfaces.clear();
    }
    size_t reloads() const { return device.calls_of("grid").size(); }

    ScriptedDevice device;

  private:
    inline static int64_t era = 1'000'000'000;
};

class Reloaded : public OnDevice, public testing::TestWithParam<ReloadedTable> {
  protected:
    std::vector<Indexes> rows_of(unsigned interfaces) const {
        std::vector<Indexes> rows;
        for (unsigned i = 0; i < interfaces; ++i)
            for (const long second : GetParam().second_indexes)
                rows.push_back({static_cast<long>(11 + i), second});
        return rows;
    }
    size_t rows_per_interface() const { return GetParam().second_indexes.size(); }

    Walk walk{GetParam().hooks};
};

INSTANTIATE_TEST_SUITE_P(Tables, Reloaded, testing::ValuesIn(reloaded_tables),
                         [](const auto& test) { return std::string(test.param.hooks.name); });

TEST_P(Reloaded, AWalkFindsTheRowsOfEveryInterface) {
    for (const unsigned count : {1U, 2U, 16U, 128U}) {
        remove_interfaces();
        add_interfaces(count);
        device.now += 16;
        EXPECT_EQ(walk.rows(), rows_of(count)) << count;
    }
}

TEST_P(Reloaded, AWalkReadsTheStoreOnce) {
    add_interfaces(16);
    walk.rows();
    EXPECT_EQ(reloads(), 1U);
    const size_t calls = device.calls.size();
    walk.rows();
    EXPECT_EQ(device.calls.size(), calls);
}

TEST_P(Reloaded, FifteenSecondsAreNotEnoughForAReload) {
    add_interfaces(1);
    walk.rows();
    device.now += 15;
    walk.first();
    EXPECT_EQ(reloads(), 1U);
    device.now += 16;
    walk.first();
    EXPECT_EQ(reloads(), 2U);
}

TEST_P(Reloaded, AMaximalAgeReloadsATableThatIsAskedForAllTheTime) {
    add_interfaces(1);
    max_age = 60;
    for (int i = 0; i <= 120; ++i) {
        walk.rows();
        device.now += 1;
        device.monotonic_milliseconds += 1'000;
    }
    max_age = 0;
    EXPECT_EQ(reloads(), 3U) << "at 0, 60 and 120 seconds";
}

// The 15 seconds run from the latest request.
TEST_P(Reloaded, EveryRequestPutsTheReloadOff) {
    add_interfaces(1);
    for (int i = 0; i < 10; ++i) {
        walk.first();
        device.now += 10;
    }
    EXPECT_EQ(reloads(), 1U);
}

TEST_P(Reloaded, WithoutInterfacesEveryRequestTriesAgain) {
    for (size_t i = 1; i <= 3; ++i) {
        EXPECT_THAT(walk.rows(), IsEmpty());
        EXPECT_EQ(reloads(), i);
    }
    add_interfaces(2);
    ++device.now;
    EXPECT_EQ(walk.rows(), rows_of(2));
}

TEST_P(Reloaded, TooManyInterfacesAreARowlessTable) {
    add_interfaces(129);
    EXPECT_THAT(walk.rows(), IsEmpty());
    EXPECT_THAT(walk.rows(), IsEmpty());
    EXPECT_EQ(reloads(), 2U);
}

// Then nothing is read again, the count stays 129, and the array's last record ends the walk.
TEST_P(Reloaded, TooManyInterfacesAndTheClockBackEndAtTheLastRecord) {
    add_interfaces(1);
    walk.rows();
    add_interfaces(129);
    device.now += 16;
    EXPECT_THAT(walk.rows(), IsEmpty());
    device.now -= 1000;
    EXPECT_EQ(walk.rows().size(), GetParam().capacity);
}

TEST_P(Reloaded, AReloadInTheMiddleOfAWalkMayLeaveThePositionPastTheCount) {
    add_interfaces(4);
    ASSERT_TRUE(walk.first());
    for (size_t i = 1; i < 3 * rows_per_interface(); ++i)
        ASSERT_TRUE(walk.next());
    remove_interfaces();
    add_interfaces(1);
    device.now += 100'000'000;
    size_t further = 0;
    while (further < 2000 && walk.next())
        ++further;
    EXPECT_EQ(further, GetParam().capacity - 3 * rows_per_interface());
    EXPECT_EQ(walk.rows(), rows_of(1)) << "the next walk is right";
}

TEST_P(Reloaded, AClockThatGoesBackReadsNothing) {
    add_interfaces(1);
    walk.rows();
    for (const int64_t now : {device.now - 1, device.now - 100'000, int64_t{0}}) {
        device.now = now;
        EXPECT_EQ(walk.rows(), rows_of(1));
    }
    EXPECT_EQ(reloads(), 1U);
    device.now = 16;
    walk.first();
    EXPECT_EQ(reloads(), 2U);
    device.now = 1'000'000'000;
    walk.first();
}

TEST_P(Reloaded, TheClockMayPassThirtyTwoBits) {
    if (sizeof(time_t) < 8) GTEST_SKIP() << "the system's clock does not";
    add_interfaces(1);
    device.now = 0;
    walk.first();  // the latest pass is then that of the epoch
    size_t expected = reloads();
    for (const int64_t start : {largest_31_bits - 10, int64_t{0xFFFFFFFF} - 10}) {
        device.now = start;
        walk.first();
        EXPECT_EQ(reloads(), ++expected);
        device.now += 15;
        walk.first();
        EXPECT_EQ(reloads(), expected);
        device.now += 16;
        walk.first();
        EXPECT_EQ(reloads(), ++expected);
    }
}

TEST_P(Reloaded, ADataContextIsACopyOfTheRecord) {
    add_interfaces(2);
    walk.first();
    for (size_t i = 1; i <= rows_per_interface(); ++i)
        walk.next();
    void* row = GetParam().hooks.convert(walk.loop(), nullptr);
    ASSERT_NE(row, nullptr);
    const auto* records = static_cast<const uint8_t*>(GetParam().records);
    EXPECT_EQ(memcmp(row, records + rows_per_interface() * GetParam().row_size, GetParam().row_size), 0);
    EXPECT_EQ(memcmp(row, static_cast<uint8_t*>(walk.loop()) + 4, GetParam().row_size), 0);
    memset(row, 0xEE, GetParam().row_size);
    EXPECT_EQ(walk.indexes().first, 12);
    GetParam().hooks.free(row, nullptr);
    EXPECT_FALSE(walk.data_touched());
}

TEST_P(Reloaded, WithoutMemoryThereIsNoDataContext) {
    add_interfaces(1);
    walk.first();
    device.fail_allocation(1);
    EXPECT_EQ(GetParam().hooks.convert(walk.loop(), nullptr), nullptr);
    EXPECT_TRUE(device.allocation_failed());
}

TEST_P(Reloaded, NoRowIsMadeAndACommitDoesNothing) {
    add_interfaces(1);
    walk.first();
    const size_t calls = device.calls.size();
    IndexVarbinds indexes;
    EXPECT_EQ(GetParam().hooks.create(&indexes.first), nullptr);
    void* row = nullptr;
    EXPECT_EQ(GetParam().hooks.commit(&row, 0), 0);
    EXPECT_EQ(GetParam().hooks.commit(&row, 1), 0);
    EXPECT_EQ(device.calls.size(), calls);
}

class AllTables : public OnDevice, public testing::Test {};

TEST_F(AllTables, EachIsReadAgainByItself) {
    add_interfaces(1);
    for (const ReloadedTable& table : reloaded_tables)
        Walk(table.hooks).first();
    EXPECT_EQ(reloads(), std::size(reloaded_tables));
    for (const ReloadedTable& asked : reloaded_tables) {
        device.now += 10;
        Walk(asked.hooks).first();
        device.now += 10;
        device.calls.clear();
        for (const ReloadedTable& table : reloaded_tables) {
            const size_t before = reloads();
            Walk(table.hooks).first();
            EXPECT_EQ(reloads() - before, &table == &asked ? 0U : 1U) << table.hooks.name;
        }
    }
}

TEST_F(AllTables, WalksOfDifferentTablesDoNotDisturbEachOther) {
    add_interfaces(3);
    std::vector<std::unique_ptr<Walk>> walks;
    for (const ReloadedTable& table : reloaded_tables)
        walks.push_back(std::make_unique<Walk>(table.hooks));
    for (const auto& walk : walks)
        EXPECT_TRUE(walk->first());
    for (size_t i = 0; i < std::size(reloaded_tables); ++i) {
        size_t rows = 1;
        while (rows < 100 && walks[i]->next())
            ++rows;
        EXPECT_EQ(rows, 3 * reloaded_tables[i].second_indexes.size()) << reloaded_tables[i].hooks.name;
    }
}

// -- the tables without rows

const TableHooks empty_tables[] = {EMPTY_HOOKS(dot11WEPKeyMappingsTable), EMPTY_HOOKS(dot11GroupAddressesTable),
                                   EMPTY_HOOKS(dot11PhyHRDSSSTable), EMPTY_HOOKS(dot11PhyERPTable)};

TEST_F(AllTables, FourHaveNoRowsAndTouchNothing) {
    add_interfaces(2);
    for (const TableHooks& table : empty_tables) {
        Walk walk(table);
        EXPECT_FALSE(walk.first()) << table.name;
        EXPECT_FALSE(walk.next()) << table.name;
        EXPECT_EQ(walk.loop(), nullptr) << table.name;
        EXPECT_FALSE(walk.data_touched()) << table.name;
        EXPECT_EQ(walk.indexes(), (Indexes{unset, unset})) << table.name;
        void* row = nullptr;
        EXPECT_EQ(table.commit(&row, 1), 0) << table.name;
    }
    EXPECT_THAT(device.calls, IsEmpty());
}

TEST_F(AllTables, OnlyKeyMappingsMakeRows) {
    for (const TableHooks& table : {empty_tables[1], empty_tables[2], empty_tables[3]})
        EXPECT_EQ(table.create(nullptr), nullptr) << table.name;
    const uint32_t before = dot11WEPKeyMappingIndexMax;
    const uint8_t zeroes[32] = {};
    for (uint32_t made = before + 1; made <= before + 3; ++made) {
        void* row = dot11WEPKeyMappingsTable_create_data_context(nullptr);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(memcmp(row, zeroes, sizeof zeroes), 0);
        EXPECT_EQ(dot11WEPKeyMappingIndexMax, made);
        free(row);
    }
    device.fail_allocation(1);
    EXPECT_EQ(dot11WEPKeyMappingsTable_create_data_context(nullptr), nullptr);
    EXPECT_EQ(dot11WEPKeyMappingIndexMax, before + 3);
}

// -- the supported rates: the backend says when a group of rates ends

const TableHooks rate_tables[] = {HOOKS(dot11SupportedDataRatesRxTable), HOOKS(dot11SupportedDataRatesTxTable)};

TEST_F(AllTables, WalksOfTheTwoRateTablesDoNotDisturbEachOther) {
    Walk rx(rate_tables[0]);
    Walk tx(rate_tables[1]);
    rx.first();
    tx.first();
    EXPECT_NE(rx.loop(), tx.loop());
}

class Rates : public OnDevice, public testing::TestWithParam<TableHooks> {
  protected:
    // Groups of so many rates: w0 (11), w1 (12), ...
    void add_groups(std::initializer_list<unsigned> sizes) {
        unsigned group = 0;
        for (const unsigned size : sizes) {
            const std::string name = "w" + std::to_string(group);
            device.interfaces[name] = 11 + group++;
            for (unsigned i = 0; i < size; ++i)
                device.add("supported-rate", name);
            device.set("supported-rate", name, "rate", "110");
        }
    }

    Walk walk{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Tables, Rates, testing::ValuesIn(rate_tables),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(Rates, AWalkFindsEveryRateOfEveryGroup) {
    add_groups({3, 1, 9});
    EXPECT_THAT(walk.rows(), ElementsAre(Indexes{11, 1}, Indexes{11, 2}, Indexes{11, 3}, Indexes{12, 1}, Indexes{13, 1},
                                         Indexes{13, 2}, Indexes{13, 3}, Indexes{13, 4}, Indexes{13, 5}, Indexes{13, 6},
                                         Indexes{13, 7}, Indexes{13, 8}));
}

// A walk that is left in the middle of a group goes back to the first group, but not to its first rate.
TEST_P(Rates, AWalkThatBeginsAnewResetsThePositionOnly) {
    add_groups({3, 1});
    ASSERT_TRUE(walk.first());
    ASSERT_TRUE(walk.next());
    EXPECT_THAT(walk.rows(), ElementsAre(Indexes{11, 3}, Indexes{12, 1}));
    EXPECT_THAT(walk.rows(), ElementsAre(Indexes{11, 1}, Indexes{11, 2}, Indexes{11, 3}, Indexes{12, 1}));
}

TEST_P(Rates, WithoutRatesThereAreNoRows) {
    EXPECT_THAT(walk.rows(), IsEmpty());
}

TEST_P(Rates, ADataContextIsACopyOfTheRow) {
    add_groups({1});
    ASSERT_TRUE(walk.first());
    void* row = GetParam().convert(walk.loop(), nullptr);
    ASSERT_NE(row, nullptr);
    const uint32_t indexes[] = {11, 1};
    EXPECT_EQ(memcmp(row, indexes, sizeof indexes), 0);
    EXPECT_EQ(memcmp(row, static_cast<uint8_t*>(walk.loop()) + 4, 12), 0);
    GetParam().free(row, nullptr);
    device.fail_allocation(1);
    EXPECT_EQ(GetParam().convert(walk.loop(), nullptr), nullptr);
    EXPECT_FALSE(walk.data_touched());
}

TEST_P(Rates, NoRowIsMadeAndACommitDoesNothing) {
    EXPECT_EQ(GetParam().create(nullptr), nullptr);
    EXPECT_EQ(GetParam().commit(nullptr, 1), 0);
}

}  // namespace
