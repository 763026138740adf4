// SETs of every column, as an SNMP manager makes them: what each is answered, and that none changes anything.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "agent.h"
#include "network.h"
#include "surface.h"

namespace {

constexpr int no_error = 0, generic_error = 5, wrong_type = 7, wrong_value = 10, no_creation = 11,
              inconsistent_value = 12, undo_failed = 15, not_writable = 17;
constexpr long largest = 2147483647;

// Columns of tables without data behind them accept; the others refuse where the value would be stored.
constexpr int accepted = no_error, refused = not_writable;

constexpr char subtree[] = "1.2.840.10036.";

// A writable column, the values that its check accepts, and what an accepted one is answered.
struct Writable {
    enum Rule { range, one_of, octets, any };

    const char* column;  // below 1.2.840.10036
    const char* row;     // one that is there, where the table has any
    int answer;
    Rule rule;
    long lowest, highest;  // numbers, or the count of octets
};
using enum Writable::Rule;

// Row-status columns have facts of their own.
constexpr Writable columns[] = {
    {"1.1.1.1", ".11", refused, octets, 6, 6},
    {"1.1.1.2", ".11", refused, range, 0, 1000},
    {"1.1.1.4", ".11", refused, range, 0, 255},
    {"1.1.1.5", ".11", refused, range, 0, 65535},
    {"1.1.1.6", ".11", refused, range, 1, largest},
    {"1.1.1.8", ".11", refused, one_of, 1, 2},
    {"1.1.1.9", ".11", refused, octets, 0, 32},
    {"1.1.1.10", ".11", refused, one_of, 1, 3},
    {"1.1.1.11", ".11", no_error, octets, 1, 126},  // dropped
    {"1.1.1.12", ".11", refused, range, 1, 65535},
    {"1.1.1.13", ".11", refused, range, 1, 255},
    {"1.1.1.14", ".11", refused, range, 1, largest},
    {"1.2.1.3", ".11.1", refused, one_of, 1, 2},
    {"1.3.1.2", ".11.4", refused, octets, 5, 5},
    {"1.4.1.2", ".11.1", accepted, octets, 6, 6},
    {"1.4.1.3", ".11.1", accepted, one_of, 1, 2},
    {"1.4.1.4", ".11.1", accepted, octets, 5, 5},
    {"1.5.1.1", ".11", refused, one_of, 1, 2},
    {"1.5.1.2", ".11", refused, range, 0, 3},
    {"1.5.1.3", ".11", refused, range, 10, largest},
    {"1.5.1.4", ".11", refused, one_of, 1, 2},
    {"2.1.1.2", ".11", refused, range, 0, 2347},
    {"2.1.1.3", ".11", refused, range, 1, 255},
    {"2.1.1.4", ".11", refused, range, 1, 255},
    {"2.1.1.5", ".11", refused, range, 256, 2346},
    {"2.1.1.6", ".11", refused, range, 1, largest},
    {"2.1.1.7", ".11", refused, range, 1, largest},
    {"2.3.1.2", ".11.1", accepted, octets, 6, 6},
    {"4.1.1.2", ".11", refused, any, -largest - 1, largest},
    {"4.3.1.10", ".11", refused, range, 1, 8},
    {"4.5.1.1", ".11", refused, range, 1, 14},
    {"4.5.1.3", ".11", refused, one_of, 1, 2},  // and 4
    {"4.5.1.4", ".11", refused, any, -largest - 1, largest},
    {"4.14.1.2", ".11", accepted, one_of, 1, 2},
    {"4.14.1.4", ".11", accepted, one_of, 1, 2},
    {"4.14.1.5", ".11", accepted, one_of, 1, 2},
    {"4.14.1.6", ".11", accepted, one_of, 1, 2},
};

const char* const row_status_columns[] = {"1.4.1.5", "2.3.1.3"};

// A row that the column's table does not have.
std::string missing_row(const std::string& row) {
    return ".99" + row.substr(3);
}

Value value_of(const Writable& column, long size_or_number) {
    return column.rule == octets ? Value::string(std::string(static_cast<size_t>(size_or_number), 'x'))
                                 : Value::integer(size_or_number);
}

class Set : public testing::Test {
  protected:
    Set() {
        add_interfaces(2);
        before = agent.exported();
    }
    ~Set() override {
        EXPECT_EQ(agent.exported(), before);
        EXPECT_EQ(agent.control().sets, 0U);
        EXPECT_EQ(agent.get({"1.1.1.12.11"}).varbinds[0].value, "INTEGER 100");
    }

    int status(const std::string& oid, const Value& value) { return agent.set({{oid, value}}).status; }

    Agent agent{full_configuration(2)};
    std::string before;
};

TEST_F(Set, AllWritableColumnsHaveFacts) {
    std::set<std::string> tested(std::begin(row_status_columns), std::end(row_status_columns));
    for (const Writable& column : columns)
        tested.insert(column.column);
    std::set<std::string> writable;
    for (const SurfaceColumn& column : read_surface())
        if (column.is_writable()) writable.insert(column.oid.substr(sizeof subtree - 1));
    EXPECT_EQ(tested, writable);
}

TEST_F(Set, ValuesUpToTheBoundsPassTheCheck) {
    for (const Writable& column : columns)
        for (const long value : {column.lowest, column.highest})
            EXPECT_EQ(status(column.column + std::string(column.row), value_of(column, value)), column.answer)
                << column.column << " " << value;
    for (const long mode : {1, 2, 4})
        EXPECT_EQ(status("4.5.1.3.11", Value::integer(mode)), refused);
}

TEST_F(Set, ValuesPastTheBoundsDoNot) {
    for (const Writable& column : columns) {
        if (column.rule == any) continue;
        const int expected = column.rule == one_of ? inconsistent_value : wrong_value;
        const std::string oid = column.column + std::string(column.row);
        if (column.rule != octets || column.lowest > 0) {
            EXPECT_EQ(status(oid, value_of(column, column.lowest - 1)), expected) << column.column;
        }
        if (column.highest < largest) {
            EXPECT_EQ(status(oid, value_of(column, column.highest + 1)), expected) << column.column;
        }
        if (column.rule == octets) continue;
        EXPECT_EQ(status(oid, Value::integer(-1)), expected) << column.column;
        EXPECT_EQ(status(oid, Value::integer(-largest - 1)), expected) << column.column;
    }
    for (const long mode : {0, 3, 5, 32, 33})
        EXPECT_EQ(status("4.5.1.3.11", Value::integer(mode)), inconsistent_value) << mode;
}

TEST_F(Set, ValuesOfAnotherTypeDoNot) {
    const std::string five = Value::integer(5).octets;
    for (const Writable& column : columns) {
        const std::string oid = column.column + std::string(column.row);
        const Value other = column.rule == octets ? Value::integer(1) : Value::string("x");
        EXPECT_EQ(status(oid, other), wrong_type) << column.column;
        for (const u_char type : {u_char{ASN_GAUGE}, u_char{ASN_COUNTER}, u_char{ASN_TIMETICKS}})
            EXPECT_EQ(status(oid, Value::of_type(type, five)), wrong_type) << column.column << " type " << int{type};
    }
}

// noSuchObject and the like have no value. A NULL has none either, but recent agents refuse it themselves.
TEST_F(Set, AVarbindWithoutAValueIsAGenericError) {
    std::vector<std::string> oids;
    for (const char* column : row_status_columns)
        oids.push_back(column + std::string(".11.1"));
    for (const Writable& column : columns)
        oids.push_back(column.column + std::string(column.row));
    for (const std::string& oid : oids) {
        for (const u_char type : {u_char{SNMP_NOSUCHOBJECT}, u_char{SNMP_NOSUCHINSTANCE}, u_char{SNMP_ENDOFMIBVIEW}})
            EXPECT_EQ(status(oid, Value::of_type(type)), generic_error) << oid << " type " << int{type};
        EXPECT_THAT(status(oid, Value::of_type(ASN_NULL)), testing::AnyOf(generic_error, wrong_type)) << oid;
    }
}

TEST_F(Set, ARowThatIsMissingIsRefusedWhereATableHasRows) {
    for (const Writable& column : columns) {
        const bool has_rows = column.answer == refused || column.column == std::string("1.1.1.11");
        EXPECT_EQ(status(column.column + missing_row(column.row), value_of(column, column.lowest)),
                  has_rows ? no_creation : accepted)
            << column.column;
    }
}

TEST_F(Set, ReadOnlyColumnsAreNotWritable) {
    for (const SurfaceColumn& column : read_surface()) {
        if (column.is_writable()) continue;
        const std::string oid = column.oid.substr(sizeof subtree - 1);
        const bool two_indexes =
            oid.starts_with("1.2.") || oid.starts_with("4.7.") || oid.starts_with("4.9.") || oid.starts_with("4.10.");
        const std::string row = oid + (two_indexes ? ".11.1" : ".11");
        for (const Value& value : {Value::integer(1), Value::string("x"), Value::of_type(SNMP_NOSUCHINSTANCE)})
            EXPECT_EQ(status(row, value), not_writable) << column.name;
    }
}

// A key mapping always counts as active, a group address as a row that is not there.
TEST_F(Set, RowStatusFollowsItsTransitions) {
    const struct {
        long status;
        int key_mapping, group_address;
    } facts[] = {
        {0, inconsistent_value, inconsistent_value},   //
        {1, no_error, inconsistent_value},             // active
        {2, no_error, inconsistent_value},             // notInService
        {3, wrong_value, wrong_value},                 // notReady
        {4, inconsistent_value, no_error},             // createAndGo
        {5, inconsistent_value, no_error},             // createAndWait
        {6, no_error, no_error},                       // destroy
        {7, inconsistent_value, inconsistent_value},   //
        {-1, inconsistent_value, inconsistent_value},  //
    };
    for (const auto& fact : facts) {
        EXPECT_EQ(status("1.4.1.5.11.1", Value::integer(fact.status)), fact.key_mapping) << fact.status;
        EXPECT_EQ(status("2.3.1.3.11.1", Value::integer(fact.status)), fact.group_address) << fact.status;
    }
    for (const char* column : row_status_columns)
        EXPECT_EQ(status(column + std::string(".11.1"), Value::string("x")), wrong_type);
}

TEST_F(Set, WithSeveralVarbinds) {
    const auto number = Value::integer;
    const auto text = Value::string;
    const struct {
        const char* what;
        std::vector<std::pair<std::string, Value>> varbinds;
        int status, index;
    } facts[] = {
        {"two columns of a row", {{"1.1.1.12.11", number(100)}, {"1.1.1.13.11", number(2)}}, not_writable, 1},
        {"the second one's value wrong", {{"1.1.1.12.11", number(100)}, {"1.1.1.13.11", number(0)}}, wrong_value, 2},
        {"two rows", {{"2.1.1.2.11", number(1)}, {"2.1.1.2.12", number(2)}}, not_writable, 1},
        {"the second row missing", {{"2.1.1.2.11", number(1)}, {"2.1.1.2.99", number(2)}}, no_creation, 2},
        {"read-only behind writable", {{"1.1.1.12.11", number(100)}, {"1.1.1.3.11", number(1)}}, not_writable, 2},
        {"two columns without data", {{"1.4.1.3.11.1", number(1)}, {"1.4.1.4.11.1", text("12345")}}, no_error, 0},
        {"two rows without data", {{"4.14.1.2.11", number(1)}, {"4.14.1.4.12", number(2)}}, no_error, 0},
        {"two tables without data", {{"1.4.1.3.11.1", number(1)}, {"2.3.1.2.11.1", text("abcdef")}}, no_error, 0},
        {"all three of them",
         {{"1.4.1.3.11.1", number(1)}, {"2.3.1.2.11.1", text("abcdef")}, {"4.14.1.6.11", number(2)}},
         no_error,
         0},
        {"the rate set and a table without data",
         {{"1.1.1.11.11", text("ab")}, {"1.4.1.3.11.1", number(1)}},
         no_error,
         0},
        {"the same the other way round", {{"1.4.1.3.11.1", number(1)}, {"1.1.1.11.11", text("ab")}}, no_error, 0},
        {"the rate set hides what follows", {{"1.1.1.11.11", text("ab")}, {"1.1.1.12.11", number(100)}}, no_error, 0},
    };
    for (const auto& fact : facts) {
        const Response response = agent.set(fact.varbinds);
        EXPECT_EQ(response.status, fact.status) << fact.what;
        EXPECT_EQ(response.index, fact.index) << fact.what;
    }
}

// The first table's undo empties the stores for both.
TEST_F(Set, AnUndoOfTwoTablesFails) {
    EXPECT_EQ(agent.set({{"1.1.1.12.11", Value::integer(100)}, {"1.4.1.3.11.1", Value::integer(1)}}).status,
              undo_failed);
    EXPECT_EQ(agent.set({{"1.1.1.12.11", Value::integer(100)}, {"1.5.1.1.11", Value::integer(1)}}).status, undo_failed);
}

TEST_F(Set, WhatIsAcceptedIsStoredNowhere) {
    EXPECT_EQ(status("1.4.1.3.11.1", Value::integer(1)), no_error);
    EXPECT_EQ(status("2.3.1.2.11.1", Value::string("abcdef")), no_error);
    EXPECT_EQ(status("4.14.1.2.11", Value::integer(1)), no_error);
    EXPECT_EQ(status("1.1.1.11.11", Value::string("ab")), no_error);
    for (const char* oid : {"1.4.1.3.11.1", "2.3.1.2.11.1", "4.14.1.2.11", "1.1.1.11.11"})
        EXPECT_EQ(agent.get({oid}).varbinds[0].value, "noSuchInstance") << oid;
    for (const char* table : {"1.4", "2.3", "4.14", "1.1.1.11"})
        EXPECT_THAT(agent.walk(table), testing::IsEmpty()) << table;
}

}  // namespace
