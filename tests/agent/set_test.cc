// SETs of every column, made by an SNMP manager: the answer to each, and that none changes anything.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

constexpr int no_error = 0, generic_error = 5, wrong_type = 7, wrong_value = 10, no_creation = 11,
              inconsistent_value = 12, undo_failed = 15, not_writable = 17;
// Row-status columns have facts of their own.
std::vector<ColumnFact> columns_of(bool row_status) {
    std::vector<ColumnFact> columns;
    for (const ColumnFact& column : column_facts())
        if (column.is_writable() && (column.check.kind == CheckFact::row_status) == row_status)
            columns.push_back(column);
    return columns;
}
const std::vector<ColumnFact> columns = columns_of(false), row_status_columns = columns_of(true);

int answer_of(const ColumnFact& column) {
    return column.set == "refused" ? not_writable : no_error;
}

// A cell of the interface 11, or of another row than its table has.
std::string cell(const ColumnFact& column, const std::string& interface = ".11") {
    return column.oid + interface + column.rows.back();
}

std::set<int64_t> accepted_numbers(const CheckFact& check) {
    return check.kind == CheckFact::one_of ? check.members : std::set<int64_t>{check.lowest, check.highest};
}

std::set<int64_t> refused_numbers(const CheckFact& check) {
    std::set<int64_t> numbers = {check.lowest - 1, check.highest + 1};
    if (check.kind == CheckFact::octets) {
        numbers.erase(-1);
        return numbers;
    }
    numbers.insert({-1, 3, 32, 33, INT32_MIN, INT32_MAX});
    std::erase_if(numbers, [&](int64_t number) {
        const bool is_member = check.kind == CheckFact::one_of ? check.members.contains(number)
                                                               : number >= check.lowest && number <= check.highest;
        return is_member || number != static_cast<int32_t>(number);
    });
    return numbers;
}

Value value_of(const ColumnFact& column, int64_t size_or_number) {
    return column.check.kind == CheckFact::octets ? Value::string(std::string(static_cast<size_t>(size_or_number), 'x'))
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

TEST_F(Set, ValuesUpToTheBoundsPassTheCheck) {
    for (const ColumnFact& column : columns)
        for (const int64_t value : accepted_numbers(column.check))
            EXPECT_EQ(status(cell(column), value_of(column, value)), answer_of(column)) << column.name << " " << value;
}

TEST_F(Set, ValuesPastTheBoundsDoNot) {
    for (const ColumnFact& column : columns) {
        const int expected = column.check.kind == CheckFact::one_of ? inconsistent_value : wrong_value;
        for (const int64_t value : refused_numbers(column.check))
            EXPECT_EQ(status(cell(column), value_of(column, value)), expected) << column.name << " " << value;
    }
}

TEST_F(Set, ValuesOfAnotherTypeDoNot) {
    const std::string five = Value::integer(5).octets;
    for (const ColumnFact& column : columns) {
        const Value other = column.check.kind == CheckFact::octets ? Value::integer(1) : Value::string("x");
        EXPECT_EQ(status(cell(column), other), wrong_type) << column.name;
        for (const u_char type : {u_char{ASN_GAUGE}, u_char{ASN_COUNTER}, u_char{ASN_TIMETICKS}})
            EXPECT_EQ(status(cell(column), Value::of_type(type, five)), wrong_type)
                << column.name << " type " << int{type};
    }
}

// noSuchObject and the like have no value. A NULL has none either, but recent agents refuse it themselves.
TEST_F(Set, AVarbindWithoutAValueIsAGenericError) {
    for (const ColumnFact& column : column_facts()) {
        if (!column.is_writable()) continue;
        for (const u_char type : {u_char{SNMP_NOSUCHOBJECT}, u_char{SNMP_NOSUCHINSTANCE}, u_char{SNMP_ENDOFMIBVIEW}})
            EXPECT_EQ(status(cell(column), Value::of_type(type)), generic_error)
                << column.name << " type " << int{type};
        EXPECT_THAT(status(cell(column), Value::of_type(ASN_NULL)), testing::AnyOf(generic_error, wrong_type))
            << column.name;
    }
}

TEST_F(Set, ARowThatIsMissingIsRefusedWhereATableHasRows) {
    for (const ColumnFact& column : columns)
        EXPECT_EQ(status(cell(column, ".99"), value_of(column, column.check.lowest)),
                  column.has_rows ? no_creation : no_error)
            << column.name;
}

TEST_F(Set, ReadOnlyColumnsAreNotWritable) {
    for (const ColumnFact& column : column_facts()) {
        if (column.is_writable()) continue;
        for (const Value& value : {Value::integer(1), Value::string("x"), Value::of_type(SNMP_NOSUCHINSTANCE)})
            EXPECT_EQ(status(cell(column), value), not_writable) << column.name;
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
    for (const ColumnFact& column : row_status_columns)
        EXPECT_EQ(status(cell(column), Value::string("x")), wrong_type) << column.name;
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
