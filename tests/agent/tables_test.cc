// Every table, as an SNMP manager reads it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "agent.h"
#include "network.h"
#include "surface.h"

namespace {

using testing::IsEmpty;

// What a column answers. In `full`, XX stands for the interface's number, in hexadecimal.
struct ColumnFact {
    const char* column;  // below 1.2.840.10036
    int second_index;    // 0: the table has one index
    const char* full;
    const char* empty;
};

constexpr char no_mac[] = "STRING 00 00 00 00 00 00";
constexpr char no_key[] = "STRING 00 00 00 00 00";
constexpr char maker[] = "STRING 56 61 6e 74 6f 72 69 78";
constexpr char product[] = "STRING 51 75 69 6c 6c 6e 65 74 20 41 50";

// In the order of a walk. Columns that are not answered are left out.
constexpr ColumnFact facts[] = {
    {"1.1.1.1", 0, "STRING 00 00 5e 00 53 XX", no_mac},
    {"1.1.1.2", 0, "INTEGER 100", "INTEGER 100"},
    {"1.1.1.3", 0, "INTEGER 1", "INTEGER 2"},
    {"1.1.1.4", 0, "INTEGER 0", "INTEGER 0"},
    {"1.1.1.5", 0, "INTEGER 0", "INTEGER 0"},
    {"1.1.1.6", 0, "Gauge32 60", "Gauge32 1"},
    {"1.1.1.7", 0, "INTEGER 1", "INTEGER 2"},
    {"1.1.1.8", 0, "INTEGER 1", "INTEGER 1"},
    {"1.1.1.9", 0, "STRING 4c 6f 62 62 79", "STRING 30"},
    {"1.1.1.10", 0, "INTEGER 1", "INTEGER 1"},
    {"1.1.1.12", 0, "INTEGER 100", "INTEGER 1"},
    {"1.1.1.13", 0, "INTEGER 2", "INTEGER 1"},
    {"1.1.1.14", 0, "Gauge32 70", "Gauge32 1"},
    {"1.1.1.15", 0, "INTEGER 8", "INTEGER 0"},
    {"1.1.1.16", 0, "STRING 00 11 22 33 44 55", no_mac},
    {"1.1.1.17", 0, "INTEGER 3", "INTEGER 0"},
    {"1.1.1.18", 0, "STRING 66 77 88 99 aa bb", no_mac},
    {"1.1.1.19", 0, "INTEGER 13", "INTEGER 0"},
    {"1.1.1.20", 0, "STRING cc dd ee ff 00 01", no_mac},
    {"1.1.1.21", 0, "INTEGER 1", "INTEGER 2"},
    {"1.1.1.22", 0, "INTEGER 1", "INTEGER -1"},
    {"1.1.1.23", 0, "STRING 43 48 20", "STRING 3f 3f 3f"},
    {"1.2.1.2", 1, "INTEGER 1", "INTEGER 1"},
    {"1.2.1.2", 2, "INTEGER 2", "INTEGER 2"},
    {"1.2.1.3", 1, "INTEGER 1", "INTEGER 2"},
    {"1.2.1.3", 2, "INTEGER 2", "INTEGER 2"},
    {"1.3.1.2", 1, "STRING 46 41 4b 45 31", no_key},
    {"1.3.1.2", 2, "STRING 46 41 4b 45 32", no_key},
    {"1.3.1.2", 3, "STRING 46 41 4b 45 2d 4b 45 59 2d 31 32 33 34", no_key},
    {"1.3.1.2", 4, "STRING 46 41 4b 45 34", no_key},
    {"1.5.1.1", 0, "INTEGER 1", "INTEGER 2"},
    {"1.5.1.2", 0, "INTEGER 3", "INTEGER 0"},
    {"1.5.1.3", 0, "Gauge32 20", "Gauge32 10"},
    {"1.5.1.4", 0, "INTEGER 2", "INTEGER 2"},
    {"1.5.1.5", 0, "Counter32 0", "Counter32 0"},
    {"1.5.1.6", 0, "Counter32 0", "Counter32 0"},
    {"2.1.1.1", 0, "STRING 00 00 5e 00 53 XX", no_mac},
    {"2.1.1.2", 0, "INTEGER 2000", "INTEGER 2346"},
    {"2.1.1.3", 0, "INTEGER 5", "INTEGER 7"},
    {"2.1.1.4", 0, "INTEGER 3", "INTEGER 4"},
    {"2.1.1.5", 0, "INTEGER 1500", "INTEGER 0"},
    {"2.1.1.6", 0, "Gauge32 1024", "Gauge32 512"},
    {"2.1.1.7", 0, "Gauge32 2048", "Gauge32 512"},
    {"2.1.1.8", 0, maker, maker},
    {"2.1.1.9", 0, product, product},
    {"2.2.1.1", 0, "Counter32 1001", "Counter32 0"},
    {"2.2.1.2", 0, "Counter32 1002", "Counter32 0"},
    {"2.2.1.3", 0, "Counter32 1003", "Counter32 0"},
    {"2.2.1.4", 0, "Counter32 1004", "Counter32 0"},
    {"2.2.1.5", 0, "Counter32 1005", "Counter32 0"},
    {"2.2.1.6", 0, "Counter32 1006", "Counter32 0"},
    {"2.2.1.7", 0, "Counter32 1007", "Counter32 0"},
    {"2.2.1.8", 0, "Counter32 1008", "Counter32 0"},
    {"2.2.1.9", 0, "Counter32 1009", "Counter32 0"},
    {"2.2.1.10", 0, "Counter32 1010", "Counter32 0"},
    {"2.2.1.11", 0, "Counter32 1011", "Counter32 0"},
    {"2.2.1.12", 0, "Counter32 1012", "Counter32 0"},
    {"2.2.1.13", 0, "Counter32 1013", "Counter32 0"},
    {"2.2.1.14", 0, "Counter32 2147483647", "Counter32 0"},
    {"4.1.1.2", 0, "INTEGER 48", "INTEGER 0"},
    {"4.1.1.3", 0, "INTEGER 2", "INTEGER 1"},
    {"4.5.1.1", 0, "INTEGER 11", "INTEGER 6"},
    {"4.7.1.2", 1, "INTEGER 48", "INTEGER 16"},
};

// Where a walk goes on at the next table, because a column that is not answered follows, or leads the table.
const std::set<std::string> columns_no_walk_reaches = {
    "1.1.1.12", "1.1.1.13", "1.1.1.14", "1.1.1.15", "1.1.1.16", "1.1.1.17", "1.1.1.18",
    "1.1.1.19", "1.1.1.20", "1.1.1.21", "1.1.1.22", "1.1.1.23", "4.1.1.2",  "4.1.1.3",
};

constexpr char subtree[] = "1.2.840.10036.";

std::string cell(const ColumnFact& fact, unsigned interface) {
    std::string oid = fact.column + std::string(".") + std::to_string(interface_index(interface));
    return fact.second_index ? oid + "." + std::to_string(fact.second_index) : oid;
}

Varbind answer(const ColumnFact& fact, unsigned interface, bool full) {
    std::string value = full ? fact.full : fact.empty;
    if (const size_t place = value.find("XX"); place != std::string::npos) {
        char hexadecimal[3];
        snprintf(hexadecimal, sizeof hexadecimal, "%02x", interface & 0xFF);
        value.replace(place, 2, hexadecimal);
    }
    return {cell(fact, interface), value};
}

std::set<std::string> fact_columns() {
    std::set<std::string> columns;
    for (const ColumnFact& fact : facts)
        columns.insert(fact.column);
    return columns;
}

// A column's cells, or those of all columns that a walk reaches, as a walk finds them.
std::vector<Varbind> cells_of(const std::string& column, unsigned interfaces, bool full) {
    std::vector<Varbind> cells;
    for (unsigned i = 0; i < interfaces; ++i)
        for (const ColumnFact& fact : facts)
            if (fact.column == column) cells.push_back(answer(fact, i, full));
    return cells;
}

std::vector<Varbind> cells_a_walk_reaches(unsigned interfaces, bool full) {
    std::vector<Varbind> cells;
    std::string last;
    for (const ColumnFact& fact : facts) {
        if (fact.column == last || columns_no_walk_reaches.contains(fact.column)) continue;
        last = fact.column;
        for (const Varbind& varbind : cells_of(last, interfaces, full))
            cells.push_back(varbind);
    }
    return cells;
}

TEST(Facts, HoldEveryColumnThatIsAnswered) {
    std::set<std::string> answered;
    for (const SurfaceColumn& column : read_surface()) {
        const bool has_rows = !column.oid.starts_with("1.2.840.10036.1.4.") &&
                              !column.oid.starts_with("1.2.840.10036.2.3.") &&
                              !column.oid.starts_with("1.2.840.10036.4.14.");
        if (column.is_answered() && has_rows) answered.insert(column.oid.substr(sizeof subtree - 1));
    }
    EXPECT_EQ(fact_columns(), answered);
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
    for (const ColumnFact& fact : facts) {
        std::vector<std::string> oids;
        std::vector<Varbind> expected;
        for (unsigned i = 0; i < count; ++i) {
            oids.push_back(cell(fact, i));
            expected.push_back(answer(fact, i, full));
        }
        const Response response = agent.get(oids);
        EXPECT_EQ(response.status, 0) << fact.column;
        EXPECT_EQ(response.varbinds, expected) << fact.column;
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
    for (const std::string& column : fact_columns())
        EXPECT_EQ(agent.walk(column), cells_of(column, 2, true)) << column;
}

TEST_F(TwoInterfaces, ColumnsThatAreNotAnsweredHaveNoValueAndNothingIsFoundInThem) {
    for (const SurfaceColumn& column : read_surface()) {
        if (column.is_answered()) continue;
        const std::string oid = column.oid.substr(sizeof subtree - 1);
        EXPECT_EQ(agent.get({oid + ".11"}).varbinds[0].value, "noSuchInstance") << column.name;
        EXPECT_EQ(agent.get({oid + ".11.1"}).varbinds[0].value, "noSuchInstance") << column.name;
        EXPECT_THAT(agent.walk(oid), IsEmpty()) << column.name;
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
    for (const ColumnFact& fact : facts) {
        const std::string column = fact.column;
        const std::vector<std::string> indexes =
            fact.second_index ? std::vector<std::string>{".13.1", ".11.0", ".11.5", ".11", ".11.1.1", ".1.1"}
                              : std::vector<std::string>{".13", ".10", ".0", ".11.1", ".4294967295"};
        for (const std::string& index : indexes)
            EXPECT_EQ(agent.get({column + index}).varbinds[0].value, "noSuchInstance") << column << index;
    }
}

TEST_F(TwoInterfaces, ColumnsThatAreNotThereAreNoObject) {
    for (const char* oid : {"1.1.1.0.11", "1.1.1.24.11", "1.2.1.1.11.1", "1.2.1.4.11.1", "1.3.1.3.11.1", "1.5.1.7.11",
                            "2.1.1.10.11", "2.2.1.15.11", "4.1.1.4.11", "4.5.1.5.11", "4.7.1.1.11.1", "4.7.1.3.11.1"})
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
    for (const ColumnFact& fact : facts)
        for (unsigned i = 0; i < 2; ++i) {
            requests += "get " + (subtree + cell(fact, i)) + "\n";
            expected += line_of(answer(fact, i, true)) + "end\n";
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
    EXPECT_EQ(agent.get({"1.5.1.1.12"}).varbinds[0].value, "INTEGER 1");
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
