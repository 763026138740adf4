// dot11StationConfigTable, as an SNMP manager sees it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

// w0 has every key (network.cc), w1 none, w2 a BSS without a radio. The name of the fourth interface is too long to be
// served, the fifth one is not in the system, the sixth is no service set.
const std::string configuration = full_configuration(1) + R"(
[[interface]]
name = "w1"
type = "service-set"

[[interface]]
name = "w2"
type = "service-set"
security = "plain-text"
bss = "b2"

[[interface]]
name = "wlan10"
type = "service-set"

[[interface]]
name = "wlan9"
type = "service-set"

[[interface]]
name = "eth0"
type = "wired"

[[bss]]
name = "b2"
dtim-period = "5"
)";

class StationConfig : public testing::Test {
  protected:
    StationConfig() {
        add_interfaces(3);
        add_interface("wlan10", 14);
        add_interface("eth0", 15);
    }
};

// Column 11 is never answered, nor is any column behind it in the same request.
std::vector<ColumnFact> answered_columns() {
    std::vector<ColumnFact> columns;
    for (const ColumnFact& column : column_facts())
        if (column.table() == "1.1" && column.is_answered()) columns.push_back(column);
    return columns;
}

// Of w1. The country is everybody's.
std::string empty_answer(const ColumnFact& column) {
    return column.name == "dot11CountryString" ? column.answers[0] : column.defaults[0];
}

// Of w2, which has keys of its own for two columns.
std::string half_linked_answer(const ColumnFact& column) {
    if (column.name == "dot11PrivacyOptionImplemented") return "INTEGER 2";
    if (column.name == "dot11DTIMPeriod") return "INTEGER 5";
    return empty_answer(column);
}

std::string cell(uint32_t column, int index) {
    return "1.1.1." + std::to_string(column) + "." + std::to_string(index);
}

std::vector<Varbind> cells_of(const ColumnFact& column) {
    return {{cell(column.number(), 11), example_answer(column, 0, 0)},
            {cell(column.number(), 12), empty_answer(column)},
            {cell(column.number(), 13), half_linked_answer(column)}};
}

TEST_F(StationConfig, EveryColumnAnswersAGetWithItsTypeAndValue) {
    Agent agent(configuration);
    for (const ColumnFact& column : answered_columns()) {
        const uint32_t number = column.number();
        const Response response = agent.get({cell(number, 11), cell(number, 12), cell(number, 13)});
        EXPECT_EQ(response.status, SNMP_ERR_NOERROR) << column.name;
        EXPECT_EQ(response.varbinds, cells_of(column)) << column.name;
    }
}

TEST_F(StationConfig, AnswersNothingForWhatItDoesNotServe) {
    Agent agent(configuration);
    const char* const missing[] = {"1.1.1.12.14", "1.1.1.12.15", "1.1.1.12.1", "1.1.1.12.99", "1.1.1.12.11.1"};
    for (const char* oid : missing)
        EXPECT_EQ(agent.get({oid}).varbinds[0].value, "noSuchInstance") << oid;
    EXPECT_EQ(agent.get({"1.1.1.24.11"}).varbinds[0].value, "noSuchObject");
}

// The rate set ends the handler, and the agent answers what it left without a value.
TEST_F(StationConfig, TheRateSetLeavesItselfAndWhatFollowsWithoutAValue) {
    Agent agent(configuration);
    EXPECT_THAT(agent.get({cell(10, 11), cell(11, 11), cell(12, 11)}).varbinds,
                testing::ElementsAre(Varbind{cell(10, 11), "INTEGER 1"}, Varbind{cell(11, 11), "noSuchInstance"},
                                     Varbind{cell(12, 11), "noSuchInstance"}));
}

TEST_F(StationConfig, AWalkOfAColumnGivesItsRowsInTheOrderOfTheirIndexes) {
    Agent agent(configuration);
    for (const ColumnFact& column : answered_columns())
        EXPECT_EQ(agent.walk(column.oid), cells_of(column)) << column.name;
    EXPECT_THAT(agent.walk("1.1.1.11"), testing::IsEmpty());
}

// The agent goes on to the next table where the rate set leaves it without a value.
TEST_F(StationConfig, AWalkOfTheTableReachesTheColumnsBeforeTheRateSet) {
    Agent agent(configuration);
    std::vector<Varbind> expected;
    for (const ColumnFact& column : answered_columns()) {
        if (column.number() > 11) break;
        const std::vector<Varbind> cells = cells_of(column);
        expected.insert(expected.end(), cells.begin(), cells.end());
    }
    EXPECT_EQ(agent.walk("1.1"), expected);
}

constexpr int no_error = SNMP_ERR_NOERROR, wrong_type = 7, wrong_value = 10, no_creation = 11, inconsistent_value = 12,
              not_writable = 17;

struct WriteFact {
    uint32_t column;
    Value value;
    int status;
};

Value octets(size_t count) {
    return Value::string(std::string(count, 'x'));
}

Value integer(int32_t value) {
    return Value::integer(value);
}

const std::vector<WriteFact> write_facts = {
    // Accepted values of writable columns are refused where they would be stored.
    {1, octets(6), not_writable},
    {1, octets(5), wrong_value},
    {1, octets(7), wrong_value},
    {1, integer(1), wrong_type},
    {2, integer(0), not_writable},
    {2, integer(1000), not_writable},
    {2, integer(-1), wrong_value},
    {2, integer(1001), wrong_value},
    {2, octets(4), wrong_type},
    {3, integer(1), not_writable},
    {4, integer(255), not_writable},
    {4, integer(256), wrong_value},
    {5, integer(65535), not_writable},
    {5, integer(65536), wrong_value},
    {6, integer(1), not_writable},
    {6, integer(0), wrong_value},
    {6, integer(2147483647), not_writable},
    {6, Value::of_type(ASN_GAUGE, Value::integer(5).octets), wrong_type},
    {7, integer(1), not_writable},
    {8, integer(1), not_writable},
    {8, integer(2), not_writable},
    {8, integer(0), inconsistent_value},
    {8, integer(3), inconsistent_value},
    {8, integer(-1), inconsistent_value},
    {9, octets(0), not_writable},
    {9, octets(32), not_writable},
    {9, octets(33), wrong_value},
    {9, integer(1), wrong_type},
    {10, integer(3), not_writable},
    {10, integer(4), inconsistent_value},
    // The rate set passes its check and is dropped.
    {11, octets(1), no_error},
    {11, octets(126), no_error},
    {11, octets(0), wrong_value},
    {11, octets(127), wrong_value},
    {11, integer(1), wrong_type},
    {12, integer(1), not_writable},
    {12, integer(65535), not_writable},
    {12, integer(0), wrong_value},
    {12, integer(65536), wrong_value},
    {13, integer(255), not_writable},
    {13, integer(256), wrong_value},
    {14, integer(1), not_writable},
    {14, integer(0), wrong_value},
    {15, integer(1), not_writable},
    {16, octets(6), not_writable},
    {17, integer(1), not_writable},
    {18, octets(6), not_writable},
    {19, integer(1), not_writable},
    {20, octets(6), not_writable},
    {21, integer(1), not_writable},
    {22, integer(1), not_writable},
    {23, octets(3), not_writable},
    {24, integer(1), not_writable},
};

TEST_F(StationConfig, ASetChangesNothingAndSaysWhy) {
    Agent agent(configuration);
    const std::string before = agent.exported();
    for (const WriteFact& fact : write_facts) {
        const Response response = agent.set({{cell(fact.column, 11), fact.value}});
        EXPECT_EQ(response.status, fact.status)
            << "column " << fact.column << ", type " << int{fact.value.type} << ", " << shown_octets(fact.value.octets);
        EXPECT_EQ(response.index, fact.status == no_error ? 0 : 1);
    }
    EXPECT_EQ(agent.exported(), before);
    EXPECT_EQ(agent.control().sets, 0U);
    EXPECT_EQ(agent.get({cell(12, 11)}).varbinds[0].value, "INTEGER 100");
}

TEST_F(StationConfig, ASetOfAMissingRowIsNoCreation) {
    Agent agent(configuration);
    for (const ColumnFact& column : answered_columns())
        EXPECT_EQ(agent.set({{cell(column.number(), 99), Value::integer(1)}}).status, no_creation) << column.name;
}

TEST_F(StationConfig, ReadsTheStoreAgainAfterMoreThan15SecondsWithoutARequest) {
    struct {
        int64_t seconds_later;
        bool reads;
    } const requests[] = {
        {0, true},       // the first request
        {10, false},     //
        {10, false},     // each request begins the 15 seconds anew
        {15, false},     //
        {16, true},      //
        {15, false},     //
        {-1000, false},  // a clock set back
        {16, true},
    };
    Agent agent(configuration);
    agent.control().now = 1'000'000'000;
    for (const auto& request : requests) {
        agent.control().now = agent.control().now + request.seconds_later;
        const uint32_t before = agent.control().grids;
        agent.get({cell(12, 11)});
        EXPECT_EQ(agent.control().grids > before, request.reads) << "at " << agent.control().now;
    }
}

TEST_F(StationConfig, ServesWhatIsWrittenIntoTheStoreAfterTheNextReading) {
    Agent agent(configuration);
    agent.control().now = 1'000'000'000;
    EXPECT_EQ(agent.get({cell(9, 11)}).varbinds[0].value, shown_octets("Lobby"));
    agent.configure("set interface w0 ssid Garden");
    EXPECT_EQ(agent.get({cell(9, 11)}).varbinds[0].value, shown_octets("Lobby"));
    agent.control().now = 1'000'000'016;
    EXPECT_EQ(agent.get({cell(9, 11)}).varbinds[0].value, shown_octets("Garden"));
}

}  // namespace
