// Every table, as an SNMP manager reads it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

using testing::IsEmpty;

constexpr char subtree[] = "1.2.840.10036.";

// The columns that have a value for each interface, in the order of a walk.
std::vector<ColumnFact> answered_columns() {
    std::vector<ColumnFact> columns;
    for (const ColumnFact& column : column_facts())
        if (column.is_answered() && column.has_rows) columns.push_back(column);
    return columns;
}

std::string cell(const ColumnFact& column, size_t row, unsigned interface) {
    return column.oid + "." + std::to_string(interface_index(interface)) + column.rows[row];
}

// One row of each of the interfaces, or all of their rows, as a walk finds them.
std::vector<Varbind> cells_of_row(const ColumnFact& column, size_t row, unsigned interfaces, bool full) {
    std::vector<Varbind> cells;
    for (unsigned i = 0; i < interfaces; ++i)
        cells.push_back({cell(column, row, i), full ? example_answer(column, row, i) : column.defaults[row]});
    return cells;
}

std::vector<Varbind> cells_of(const ColumnFact& column, unsigned interfaces, bool full) {
    std::vector<Varbind> cells;
    for (unsigned i = 0; i < interfaces; ++i)
        for (size_t row = 0; row < column.rows.size(); ++row)
            cells.push_back(cells_of_row(column, row, interfaces, full)[i]);
    return cells;
}

// A column that is not answered ends the walk of its table.
std::vector<Varbind> cells_a_walk_reaches(unsigned interfaces, bool full) {
    std::vector<Varbind> cells;
    std::set<std::string> ended;
    for (const ColumnFact& column : column_facts()) {
        if (!column.is_answered()) ended.insert(column.table());
        if (!column.has_rows || ended.contains(column.table())) continue;
        for (const Varbind& varbind : cells_of(column, interfaces, full))
            cells.push_back(varbind);
    }
    return cells;
}

TEST(ColumnFacts, AreWhole) {
    for (const ColumnFact& column : answered_columns()) {
        EXPECT_EQ(column.defaults.size(), column.rows.size()) << "tests/columns.tsv: default of " << column.name;
        EXPECT_EQ(column.answers.size(), column.rows.size()) << "tests/columns.tsv: answer of " << column.name;
    }
    for (const ColumnFact& column : column_facts())
        EXPECT_EQ(column.stored.size(), column.keys.size()) << "tests/columns.tsv: stored of " << column.name;
}

struct Size {
    unsigned interfaces;
    bool full;
};
void PrintTo(const Size& size, std::ostream* out) {
    *out << size.interfaces << (size.full ? " full" : " empty");
}

class Tables : public testing::TestWithParam<Size> {
  protected:
    Tables() { add_interfaces(count); }

    const unsigned count = GetParam().interfaces;
    const bool full = GetParam().full;
    Agent agent{full ? full_configuration(count) : empty_configuration(count)};
};

INSTANTIATE_TEST_SUITE_P(Sizes, Tables,
                         testing::Values(Size{1, true}, Size{2, true}, Size{16, true}, Size{128, true}, Size{1, false},
                                         Size{2, false}, Size{16, false}, Size{128, false}),
                         [](const auto& test) {
                             return std::to_string(test.param.interfaces) + (test.param.full ? "Full" : "Empty");
                         });

TEST_P(Tables, EveryCellAnswersAGetWithItsTypeAndValue) {
    for (const ColumnFact& column : answered_columns())
        for (size_t row = 0; row < column.rows.size(); ++row) {
            const std::vector<Varbind> expected = cells_of_row(column, row, count, full);
            std::vector<std::string> oids;
            for (const Varbind& varbind : expected)
                oids.push_back(varbind.oid);
            const Response response = agent.get(oids);
            EXPECT_EQ(response.status, 0) << column.name;
            EXPECT_EQ(response.varbinds, expected) << column.name;
        }
}

bool is_in(const Varbind& varbind, const std::string& root) {
    return varbind.oid.starts_with(root + ".") && varbind.value != "endOfMibView";
}

// All varbinds below an OID, by GETBULK. Ends after so many requests.
std::vector<Varbind> bulk_walk(Agent& agent, const std::string& root) {
    std::vector<Varbind> found;
    std::string at = root;
    for (int requests = 0; requests < 2500; ++requests) {
        const Response response = agent.get_bulk({at}, 40);
        EXPECT_EQ(response.status, 0) << at;
        for (const Varbind& varbind : response.varbinds) {
            if (!is_in(varbind, root)) return found;
            found.push_back(varbind);
        }
        if (response.varbinds.empty()) break;
        at = response.varbinds.back().oid;
    }
    ADD_FAILURE() << "a walk of " << root << " does not end";
    return found;
}

// The subtree's parts, and every table.
constexpr const char* roots[] = {"1",   "2",     "3",   "4",   "1.1", "1.2", "1.3", "1.4",  "1.5",  "2.1", "2.2",
                                 "2.3", "3.1.2", "4.1", "4.3", "4.5", "4.7", "4.9", "4.10", "4.12", "4.14"};

TEST_P(Tables, WalksEndAndReachWhatTheyAlwaysDo) {
    const std::vector<Varbind> reached = cells_a_walk_reaches(count, full);
    for (const std::string root : roots) {
        std::vector<Varbind> cells;
        for (const Varbind& varbind : reached)
            if (is_in(varbind, root)) cells.push_back(varbind);
        EXPECT_EQ(bulk_walk(agent, root), cells) << root;
        EXPECT_EQ(agent.walk(root), cells) << root;
    }
}

class TwoInterfaces : public testing::Test {
  protected:
    TwoInterfaces() { add_interfaces(2); }
    Agent agent{full_configuration(2)};
};

TEST_F(TwoInterfaces, AWalkOfAColumnReachesAlsoThoseBehindOnesThatAreNotAnswered) {
    for (const ColumnFact& column : answered_columns())
        EXPECT_EQ(agent.walk(column.oid), cells_of(column, 2, true)) << column.name;
}

TEST_F(TwoInterfaces, ColumnsThatAreNotAnsweredHaveNoValueAndNothingIsFoundInThem) {
    for (const ColumnFact& column : column_facts()) {
        if (column.is_answered()) continue;
        EXPECT_EQ(agent.get({column.oid + ".11"}).varbinds[0].value, "noSuchInstance") << column.name;
        EXPECT_EQ(agent.get({column.oid + ".11.1"}).varbinds[0].value, "noSuchInstance") << column.name;
        EXPECT_THAT(agent.walk(column.oid), IsEmpty()) << column.name;
    }
}

// Requests of one PDU for one table are one list, which such a column ends.
TEST_F(TwoInterfaces, ColumnsThatAreNotAnsweredLeaveLaterOnesOfTheirTableWithoutAValue) {
    const struct {
        const char *before, *not_answered, *behind;
    } lists[] = {
        {"1.1.1.12.11", "1.1.1.11.11", "1.1.1.12.12"}, {"4.1.1.2.11", "4.1.1.1.11", "4.1.1.3.11"},
        {"4.5.1.1.11", "4.5.1.2.11", "4.5.1.1.12"},    {"4.5.1.1.11", "4.5.1.3.12", "4.5.1.1.12"},
        {"4.5.1.1.11", "4.5.1.4.11", "4.5.1.1.11"},
    };
    for (const auto& list : lists) {
        const Response response = agent.get({list.before, list.not_answered, list.behind, "1.5.1.1.11"});
        ASSERT_EQ(response.varbinds.size(), 4U);
        EXPECT_NE(response.varbinds[0].value, "noSuchInstance") << list.not_answered;
        EXPECT_EQ(response.varbinds[1].value, "noSuchInstance") << list.not_answered;
        EXPECT_EQ(response.varbinds[2].value, "noSuchInstance") << list.not_answered;
        EXPECT_EQ(response.varbinds[3].value, "INTEGER 1") << "another table is another list";
    }
}

TEST_F(TwoInterfaces, RowsThatAreNotThereHaveNoInstance) {
    for (const ColumnFact& column : answered_columns()) {
        const std::vector<std::string> indexes =
            column.has_second_index() ? std::vector<std::string>{".13.1", ".11.0", ".11.5", ".11", ".11.1.1", ".1.1"}
                                      : std::vector<std::string>{".13", ".10", ".0", ".11.1", ".4294967295"};
        for (const std::string& index : indexes)
            EXPECT_EQ(agent.get({column.oid + index}).varbinds[0].value, "noSuchInstance") << column.name << index;
    }
}

TEST_F(TwoInterfaces, ColumnsThatAreNotThereAreNoObject) {
    std::map<std::string, uint32_t> last;  // column of each table
    for (const ColumnFact& column : column_facts())
        last[column.table()] = column.number();
    for (const auto& [table, number] : last)
        for (const char* index : {".11", ".11.1"})
            EXPECT_EQ(agent.get({table + ".1." + std::to_string(number + 1) + index}).varbinds[0].value, "noSuchObject")
                << table;
    for (const char* oid : {"1.1.1.0.11", "1.2.1.1.11.1", "1.3.1.1.11.1", "4.7.1.1.11.1"})
        EXPECT_EQ(agent.get({oid}).varbinds[0].value, "noSuchObject") << oid;
}

TEST_F(TwoInterfaces, TablesWithoutRowsAreWalkedThrough) {
    for (const char* table : {"1.4", "2.3", "4.12", "4.14"}) {
        EXPECT_THAT(agent.walk(table), IsEmpty()) << table;
        EXPECT_EQ(agent.get({table + std::string(".1.2.11")}).varbinds[0].value, "noSuchInstance") << table;
    }
}

// -- a second client, so that one library is not all that is believed

// What tests/node/client.js prints for these requests.
std::string asked_of_second_client(const Agent& agent, const std::string& requests) {
    const std::string folder = agent.folder();
    std::ofstream(folder + "/requests") << requests;
    run("node " NODE_CLIENT " 127.0.0.1 1161 private <" + folder + "/requests >" + folder + "/answers");
    std::ifstream answers(folder + "/answers");
    return {std::istreambuf_iterator<char>(answers), {}};
}

bool has_second_client() {
    return std::filesystem::exists(std::filesystem::path(NODE_CLIENT).replace_filename("node_modules"));
}

std::string line_of(const Varbind& varbind) {
    return subtree + varbind.oid + " = " + varbind.value + "\n";
}

TEST_F(TwoInterfaces, ASecondClientReadsTheSame) {
    if (!has_second_client()) GTEST_SKIP() << "npm ci --prefix tests/node";
    std::string requests, expected;
    for (const ColumnFact& column : answered_columns())
        for (const Varbind& varbind : cells_of(column, 2, true)) {
            requests += "get " + (subtree + varbind.oid) + "\n";
            expected += line_of(varbind) + "end\n";
        }
    requests += "walk 1.2.840.10036\n";
    for (const Varbind& varbind : cells_a_walk_reaches(2, true))
        expected += line_of(varbind);
    EXPECT_EQ(asked_of_second_client(agent, requests), expected + "end\n");
}

TEST_F(TwoInterfaces, ASecondClientIsAnsweredTheSame) {
    if (!has_second_client()) GTEST_SKIP() << "npm ci --prefix tests/node";
    const struct {
        const char *request, *answer;
    } facts_of_requests[] = {
        {"get 1.2.840.10036.1.1.1.11.11", "1.2.840.10036.1.1.1.11.11 = noSuchInstance"},
        {"get 1.2.840.10036.1.1.1.12.99", "1.2.840.10036.1.1.1.12.99 = noSuchInstance"},
        {"get 1.2.840.10036.1.1.1.24.11", "1.2.840.10036.1.1.1.24.11 = noSuchObject"},
        {"set 1.2.840.10036.1.1.1.12.11 integer 100", "status 17"},
        {"set 1.2.840.10036.1.1.1.12.11 integer 0", "status 10"},
        {"set 1.2.840.10036.1.1.1.12.11 octets 00", "status 7"},
        {"set 1.2.840.10036.1.1.1.12.99 integer 100", "status 11"},
        {"set 1.2.840.10036.1.1.1.10.11 integer 4", "status 12"},
        {"set 1.2.840.10036.1.1.1.11.11 octets 82848b96", "status 0"},
        {"set 1.2.840.10036.1.4.1.4.11.1 octets 6b65793030", "status 0"},
        {"set 1.2.840.10036.2.2.1.1.11 integer 1", "status 17"},
    };
    std::string requests, expected;
    for (const auto& fact : facts_of_requests) {
        requests += fact.request + std::string("\n");
        expected += fact.answer + std::string("\nend\n");
    }
    EXPECT_EQ(asked_of_second_client(agent, requests), expected);
}

// -- when the store is read again

class Reload : public TwoInterfaces {
  protected:
    Reload() { agent.control().now = 1'000'000'000; }

    // Whether the store was asked for its interfaces, that many seconds after the request before.
    bool reads(const char* oid, int64_t seconds_later) {
        agent.control().now = agent.control().now + seconds_later;
        const uint32_t before = agent.control().grids;
        agent.get({oid});
        return agent.control().grids != before;
    }

    // A cell of every table that the iterator reloads.
    static constexpr const char* cells[] = {"1.1.1.12.11", "1.2.1.2.11.1", "1.3.1.2.11.1", "1.5.1.1.11",
                                            "2.1.1.2.11",  "2.2.1.1.11",   "3.1.2.1.1.11", "4.1.1.2.11",
                                            "4.3.1.1.11",  "4.5.1.1.11",   "4.7.1.2.11.1"};
};

TEST_F(Reload, MoreThanFifteenSecondsAfterTheLatestRequest) {
    for (const char* cell : cells) {
        EXPECT_TRUE(reads(cell, 0)) << cell;
        EXPECT_FALSE(reads(cell, 10)) << cell;
        EXPECT_FALSE(reads(cell, 10)) << cell;
        EXPECT_FALSE(reads(cell, 15)) << cell;
        EXPECT_TRUE(reads(cell, 16)) << cell;
        EXPECT_FALSE(reads(cell, -1000)) << cell;
    }
}

TEST_F(Reload, EachTableByItself) {
    for (const char* cell : cells)
        reads(cell, 0);
    for (const char* asked : cells) {
        reads(asked, 10);
        agent.control().now = agent.control().now + 10;
        for (const char* cell : cells)
            EXPECT_EQ(reads(cell, 0), cell != asked) << cell << " after " << asked;
    }
}

TEST_F(Reload, AFailureIsTriedAgainAtOnce) {
    agent.configure("set interface w0 type off");
    agent.configure("set interface w1 type off");
    for (const char* cell : cells)
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(reads(cell, 0)) << cell;
    agent.configure("set interface w1 type service-set");
    // The store is not checked more often than twenty times a second.
    EXPECT_TRUE(wait_until([&] { return agent.get({"1.5.1.1.12"}).varbinds[0].value == "INTEGER 1"; }));
}

// However many requests come in between.
TEST_F(Reload, OfTheRatesAfterMoreThanFiftySeconds) {
    for (const char* cell : {"4.9.1.2.11.1", "4.10.1.2.11.1"}) {
        EXPECT_TRUE(reads(cell, 0)) << cell;
        EXPECT_FALSE(reads(cell, 25)) << cell;
        EXPECT_FALSE(reads(cell, 25)) << cell;
        EXPECT_TRUE(reads(cell, 1)) << cell;
        EXPECT_FALSE(reads(cell, 50)) << cell;
    }
}

}  // namespace
