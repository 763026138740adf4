// dot11Answers and dot11MaxAge in the agent's configuration: what they change, and that nothing else does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

using testing::HasSubstr;

constexpr char subtree[] = "1.2.840.10036";
constexpr char complete[] = "dot11Answers complete\n";

std::string text_of(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// What a command of Net-SNMP's prints of the agent.
std::string printed(const Agent& agent, const std::string& command, const std::string& arguments) {
    const std::string file = agent.folder() + "/printed";
    run("MIBS= " + command + " -v2c -c private -t 20 " + arguments + " >" + file);
    return text_of(file);
}

bool has_node_modules() {
    return std::filesystem::exists(NODE "/node_modules");
}

// -- dot11Answers

// Every column that is not answered, of the full configuration's first interface.
const struct {
    const char* oid;
    const char* standard;
    const char* complete;
} answers[] = {
    {"1.1.1.11.11", "noSuchInstance", "noSuchInstance"},
    {"3.1.2.1.1.11", "noSuchInstance", "STRING 30 30 3a 30 30 3a 35 65"},
    {"3.1.2.1.2.11", "noSuchInstance", "STRING 45 78 61 6d 70 6c 65 20 52 61 64 69 6f 73 20 4c 74 64"},
    {"3.1.2.1.3.11", "noSuchInstance", "STRING 45 52 2d 32 34"},
    {"3.1.2.1.4.11", "noSuchInstance", "STRING 31 2e 32 2e 30"},
    {"4.1.1.1.11", "noSuchInstance", "noSuchInstance"},
    {"4.3.1.1.11", "noSuchInstance", "INTEGER 4"},
    {"4.3.1.2.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.3.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.4.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.5.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.6.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.7.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.8.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.9.11", "noSuchInstance", "INTEGER 50"},
    {"4.3.1.10.11", "noSuchInstance", "INTEGER 2"},
    {"4.5.1.2.11", "noSuchInstance", "noSuchInstance"},
    {"4.5.1.3.11", "noSuchInstance", "noSuchInstance"},
    {"4.5.1.4.11", "noSuchInstance", "noSuchInstance"},
    {"4.9.1.2.11.1", "noSuchInstance", "noSuchInstance"},
    {"4.10.1.2.11.1", "noSuchInstance", "noSuchInstance"},
    {"4.12.1.1.11", "noSuchInstance", "noSuchInstance"},
};

TEST(Answers, OfColumnsThatAreNotAnswered) {
    add_interfaces(2);
    for (const bool is_complete : {false, true}) {
        Agent agent(full_configuration(2), Role::agent, is_complete ? complete : "");
        for (const auto& answer : answers)
            EXPECT_EQ(agent.get({answer.oid}).varbinds.at(0).value, is_complete ? answer.complete : answer.standard)
                << answer.oid;
    }
}

// Requests of one PDU for one table are one list.
TEST(Answers, OfLaterVarbindsOfTheRequest) {
    const struct {
        const char *not_answered, *behind, *answer;
    } lists[] = {
        {"1.1.1.11.11", "1.1.1.12.12", "INTEGER 100"}, {"4.1.1.1.11", "4.1.1.3.11", "INTEGER 2"},
        {"4.5.1.2.11", "4.5.1.1.12", "INTEGER 11"},    {"4.5.1.3.12", "4.5.1.1.12", "INTEGER 11"},
        {"4.5.1.4.11", "4.5.1.1.11", "INTEGER 11"},    {"3.1.2.1.1.99", "3.1.2.1.3.11", "STRING 45 52 2d 32 34"},
    };
    add_interfaces(2);
    Agent agent(full_configuration(2), Role::agent, complete);
    for (const auto& list : lists) {
        const Response response = agent.get({list.not_answered, list.behind});
        ASSERT_EQ(response.varbinds.size(), 2U);
        EXPECT_EQ(response.varbinds[0].value, "noSuchInstance") << list.not_answered;
        EXPECT_EQ(response.varbinds[1].value, list.answer) << list.behind;
    }
}

TEST(Answers, ASetIsTheSameWhateverTheyAre) {
    add_interfaces(1);
    const std::string rates = "\x02\x04";
    for (const char* lines : {"", complete}) {
        Agent agent(full_configuration(1), Role::agent, lines);
        EXPECT_EQ(agent.set({{"1.1.1.11.11", Value::string(rates)}}).status, 0);
        EXPECT_EQ(agent.set({{"1.1.1.11.11", Value::string("")}}).status, 10);
        EXPECT_EQ(agent.set({{"4.3.1.10.11", Value::integer(2)}}).status, 17);
        EXPECT_EQ(agent.set({{"4.3.1.10.11", Value::integer(9)}}).status, 10);
        EXPECT_EQ(agent.set({{"3.1.2.1.2.11", Value::string("maker")}}).status, 17);
        EXPECT_EQ(agent.set({{"4.5.1.3.11", Value::integer(1)}}).status, 17);
    }
}

class CompleteWalk : public testing::TestWithParam<unsigned> {
  protected:
    CompleteWalk() { add_interfaces(count); }

    // Every cell that a GET has a value for, in the order of a walk.
    std::vector<Varbind> cells() {
        std::vector<Varbind> found;
        for (const ColumnFact& column : column_facts()) {
            std::vector<std::string> oids;
            for (unsigned i = 0; i < count; ++i)
                for (const std::string& row : column.rows)
                    oids.push_back(column.oid + "." + std::to_string(interface_index(i)) + row);
            for (const Varbind& varbind : agent.get(oids).varbinds)
                if (varbind.value != "noSuchInstance") found.push_back(varbind);
        }
        return found;
    }

    // Every cell of the subtree, by GETNEXT.
    std::vector<Varbind> walked() {
        std::vector<Varbind> found;
        for (const char* root : {"1", "2", "3", "4"})
            for (const Varbind& varbind : agent.walk(root))
                found.push_back(varbind);
        return found;
    }

    const unsigned count = GetParam();
    Agent agent{full_configuration(count), Role::agent, complete};
};

INSTANTIATE_TEST_SUITE_P(Interfaces, CompleteWalk, testing::Values(1, 2, 128), testing::PrintToStringParamName());

TEST_P(CompleteWalk, ReachesWhateverAGetDoes) {
    const std::vector<Varbind> expected = cells();
    size_t rows = 0;
    for (const ColumnFact& column : column_facts())
        if (column.is_answered_completely() && column.has_rows) rows += column.rows.size();
    EXPECT_EQ(expected.size(), rows * count);
    EXPECT_EQ(walked(), expected);
}

std::string line_of(const Varbind& varbind) {
    return "." + std::string(subtree) + "." + varbind.oid;
}

// The OIDs that the tools print, one a line.
std::vector<std::string> oids_in(const std::string& text) {
    std::vector<std::string> oids;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (const size_t end = line.find(" = "); line.starts_with('.')) oids.push_back(line.substr(0, end));
    return oids;
}

class CompleteTools : public CompleteWalk {
  protected:
    std::vector<std::string> expected() {
        std::vector<std::string> oids;
        for (const Varbind& cell : cells())
            oids.push_back(line_of(cell));
        return oids;
    }
};

INSTANTIATE_TEST_SUITE_P(Interfaces, CompleteTools, testing::Values(2, 16), testing::PrintToStringParamName());

TEST_P(CompleteTools, ReachTheSame) {
    const std::vector<std::string> oids = expected();
    EXPECT_EQ(oids_in(printed(agent, "snmpwalk", "-On 127.0.0.1:1161 1.2.840.10036")), oids);
    for (const char* repetitions : {"", "-Cr1 ", "-Cr50 "})
        EXPECT_EQ(
            oids_in(printed(agent, "snmpbulkwalk", std::string(repetitions) + "-On 127.0.0.1:1161 1.2.840.10036")),
            oids)
            << repetitions;
}

TEST_P(CompleteTools, ASecondClientReachesTheSame) {
    if (!has_node_modules()) GTEST_SKIP() << "npm ci --prefix tests/node";
    const std::string file = agent.folder() + "/walk";
    run("echo walk 1.2.840.10036 | node " NODE "/client.js 127.0.0.1 1161 private >" + file);
    EXPECT_EQ(oids_in("." + std::regex_replace(text_of(file), std::regex("\n(?=1)"), "\n.")), expected());
}

// AgentX asks for what comes next in a way of its own.
TEST(Answers, OfASubagentAreWalkedAsThoseOfTheAgent) {
    add_interfaces(2);
    const auto walks = [](Role role) {
        const Agent agent(full_configuration(2), role, complete);
        return printed(agent, "snmpwalk", "-On 127.0.0.1:1161 1.2.840.10036") +
               printed(agent, "snmpbulkwalk", "-On 127.0.0.1:1161 1.2.840.10036");
    };
    const std::string of_the_agent = walks(Role::agent);
    EXPECT_EQ(oids_in(of_the_agent).size(), 2 * 2 * answered_cells(true));
    EXPECT_EQ(walks(Role::subagent), of_the_agent);
}

// The tables that have rows, and the cells of an interface in which snmptable finds no value.
TEST_P(CompleteTools, TablesHaveAValueInEveryColumnThatIsAnswered) {
    if (!has_node_modules()) GTEST_SKIP() << "npm ci --prefix tests/node";
    const struct {
        const char* table;
        unsigned rows, without_value;
    } facts[] = {
        {"dot11StationConfigTable", 1, 1},       {"dot11AuthenticationAlgorithmsTable", 2, 0},
        {"dot11WEPDefaultKeysTable", 4, 0},      {"dot11PrivacyTable", 1, 0},
        {"dot11OperationTable", 1, 0},           {"dot11CountersTable", 1, 0},
        {"dot11ResourceInfoTable", 1, 0},        {"dot11PhyOperationTable", 1, 1},
        {"dot11PhyTxPowerTable", 1, 0},          {"dot11PhyDSSSTable", 1, 3},
        {"dot11RegDomainsSupportedTable", 1, 0},
    };
    for (const auto& fact : facts) {
        const std::string file = agent.folder() + "/table";
        run("snmptable -M " MIBS ":" NODE
            "/node_modules/net-snmp/lib/mibs -m ACCESS-POINT-DOT11-MIB -v2c -c private -t 20 "
            "-CH -Cf '|' 127.0.0.1:1161 ACCESS-POINT-DOT11-MIB::" +
            std::string(fact.table) + " 2>/dev/null >" + file);
        std::istringstream lines(text_of(file));
        unsigned rows = 0;
        for (std::string line; std::getline(lines, line);) {
            if (line.find('|') == std::string::npos && line.empty()) continue;
            ++rows;
            std::istringstream fields(line);
            unsigned without = 0;
            for (std::string field; std::getline(fields, field, '|');)
                without += field == "?" ? 1 : 0;
            EXPECT_EQ(without, fact.without_value) << line;
        }
        EXPECT_EQ(rows, fact.rows * count) << fact.table;
    }
}

// -- dot11MaxAge

class MaxAge : public testing::Test {
  protected:
    MaxAge() { add_interfaces(2); }

    void start(const std::string& lines) {
        agent = std::make_unique<Agent>(full_configuration(2), Role::agent, lines);
        agent->control().now = 2'000'000'000;
        agent->control().monotonic = 1'000'000'000;
    }
    std::string get_after(int64_t seconds, const std::string& oid) {
        agent->control().now = agent->control().now + seconds;
        agent->control().monotonic = agent->control().monotonic + 1000 * seconds;
        return agent->get({oid}).varbinds.at(0).value;
    }
    bool reads_after(int64_t seconds, const std::string& oid) {
        const uint32_t before = agent->control().grids;
        get_after(seconds, oid);
        return agent->control().grids != before;
    }

    std::unique_ptr<Agent> agent;
};

constexpr char default_key[] = "1.5.1.2.11";

// Each polls every 20 seconds, and so the table is asked for every 10.
TEST_F(MaxAge, TwoPollersSeeAChangeAtTheFirstPollAfterIt) {
    start("dot11MaxAge 30\n");
    EXPECT_EQ(get_after(0, default_key), "INTEGER 3");
    agent->configure("set interface w0 wep-default-key 1");
    EXPECT_EQ(get_after(10, default_key), "INTEGER 3");
    EXPECT_EQ(get_after(10, default_key), "INTEGER 3");
    EXPECT_EQ(get_after(10, default_key), "INTEGER 1");
}

TEST_F(MaxAge, WithoutItTheyNeverDo) {
    start("");
    EXPECT_EQ(get_after(0, default_key), "INTEGER 3");
    agent->configure("set interface w0 wep-default-key 1");
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(get_after(10, default_key), "INTEGER 3");
    EXPECT_EQ(get_after(16, default_key), "INTEGER 1");
}

TEST_F(MaxAge, IsForEveryTableButTheRates) {
    start("dot11MaxAge 3\n");
    for (const char* cell : {"1.1.1.12.11", "1.2.1.2.11.1", "1.3.1.2.11.1", "1.5.1.1.11", "2.1.1.2.11", "2.2.1.1.11",
                             "3.1.2.1.1.11", "4.1.1.2.11", "4.3.1.1.11", "4.5.1.1.11", "4.7.1.2.11.1"}) {
        EXPECT_TRUE(reads_after(0, cell)) << cell;
        EXPECT_FALSE(reads_after(2, cell)) << cell;
        EXPECT_TRUE(reads_after(1, cell)) << cell;
        EXPECT_FALSE(reads_after(0, cell)) << cell;
    }
    for (const char* cell : {"4.9.1.2.11.1", "4.10.1.2.11.1"}) {
        EXPECT_TRUE(reads_after(0, cell)) << cell;
        EXPECT_FALSE(reads_after(40, cell)) << cell;
    }
}

// The clock of 15 seconds may be set; the age is counted by one that cannot.
TEST_F(MaxAge, DoesNotDependOnTheTimeOfDay) {
    start("dot11MaxAge 30\n");
    get_after(0, default_key);
    agent->control().now = 1000;
    EXPECT_FALSE(reads_after(29, default_key));
    agent->control().now = 1000;
    EXPECT_TRUE(reads_after(1, default_key));
}

TEST_F(MaxAge, WithCompleteWalksOf128Interfaces) {
    for (unsigned i = 2; i < 128; ++i)
        add_interface(interface_name(i), interface_index(i));
    agent = std::make_unique<Agent>(full_configuration(128), Role::agent, std::string(complete) + "dot11MaxAge 1\n");
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(oids_in(printed(*agent, "snmpbulkwalk", "-On 127.0.0.1:1161 1.2.840.10036")).size(),
                  128 * answered_cells(true));
}

// -- the configuration

class Configuration : public testing::TestWithParam<Role> {
  protected:
    Configuration() { add_interfaces(1); }

    void start(const std::string& lines) { agent = std::make_unique<Agent>(full_configuration(1), GetParam(), lines); }
    std::string file() const {
        return agent->folder() + (GetParam() == Role::agent ? "/agent.conf" : "/subagent.conf");
    }
    // The agent's file from then on, and a SIGHUP.
    void reconfigure(const std::string& lines) {
        const std::string text = text_of(file());
        std::ofstream(file()) << text.substr(0, text.find("dot11Answers")) << lines;
        EXPECT_TRUE(agent->reload());
    }
    std::string product() const { return agent->get({"3.1.2.1.3.11"}).varbinds.at(0).value; }

    std::unique_ptr<Agent> agent;
};

INSTANTIATE_TEST_SUITE_P(Roles, Configuration, testing::Values(Role::agent, Role::subagent), [](const auto& role) {
    return std::string(role.param == Role::agent ? "Agent" : "Subagent");
});

TEST_P(Configuration, EachReadingBeginsWithTheDefaults) {
    start("dot11Answers complete\ndot11MaxAge 1\n");
    EXPECT_EQ(product(), "STRING 45 52 2d 32 34");
    reconfigure("");
    EXPECT_EQ(product(), "noSuchInstance");
    agent->control().now = 2'000'000'000;
    agent->control().monotonic = 1'000'000'000;
    agent->get({default_key});
    agent->configure("set interface w0 wep-default-key 1");
    agent->control().monotonic = 2'000'000'000;
    EXPECT_EQ(agent->get({default_key}).varbinds.at(0).value, "INTEGER 3") << "no age is too old";
    agent->control().monotonic = 0;
}

TEST_P(Configuration, MayComeLater) {
    start("dot11Answers standard\n");
    EXPECT_EQ(product(), "noSuchInstance");
    reconfigure(complete);
    EXPECT_EQ(product(), "STRING 45 52 2d 32 34");
}

// A second copy of the module registers no table. The lines are for the first, whose tables the agent has.
TEST_P(Configuration, IsThatOfTheModuleThatServes) {
    start("dlmod ieee802dot11 " + built_module() + "\n" + complete);
    EXPECT_EQ(product(), "STRING 45 52 2d 32 34");
    EXPECT_TRUE(agent->reload(2));
    EXPECT_EQ(product(), "STRING 45 52 2d 32 34");
    reconfigure("");
    EXPECT_EQ(product(), "noSuchInstance");
}

TEST_P(Configuration, AWrongValueIsOneLineInTheLogAndChangesNothing) {
    const std::vector<std::string> wrong = {
        "dot11Answers all",
        "dot11Answers complete standard",
        "dot11Answers " + std::string(5000, 'c'),
        "dot11MaxAge 0",
        "dot11MaxAge 3601",
        "dot11MaxAge -1",
        "dot11MaxAge 5s",
        "dot11MaxAge 1 2",
        "dot11MaxAge 99999999999999999999",
    };
    std::string lines;
    for (const std::string& line : wrong)
        lines += line + "\n";
    start(lines);
    EXPECT_EQ(product(), "noSuchInstance");
    const std::string log = agent->daemon().log();
    const std::string before = text_of(file()).substr(0, text_of(file()).find("dot11Answers"));
    auto number = std::count(before.begin(), before.end(), '\n');
    for (const std::string& line : wrong) {
        const std::string place = file() + ": line " + std::to_string(++number) + ": ";
        const size_t at = log.find(place);
        ASSERT_NE(at, std::string::npos) << line.substr(0, 40);
        EXPECT_EQ(log.find(place, at + 1), std::string::npos) << line.substr(0, 40);
        const std::string token = line.substr(0, line.find(' '));
        EXPECT_THAT(log.substr(at, log.find('\n', at) - at), HasSubstr(token)) << line.substr(0, 40);
    }
}

// The module registers the tokens when its line is read, and stays loaded.
TEST(Order, ALineBeforeTheModulesIsUnknownAtTheStartOnly) {
    add_interfaces(1);
    Agent agent(full_configuration(1));
    const auto product = [&] { return agent.get({"3.1.2.1.3.11"}).varbinds.at(0).value; };
    const std::string file = agent.folder() + "/agent.conf";
    const std::string text = text_of(file);
    std::ofstream(file) << complete << text;
    agent.restart();
    EXPECT_THAT(agent.daemon().log(), HasSubstr(file + ": line 1: Warning: Unknown token: dot11Answers."));
    EXPECT_EQ(product(), "noSuchInstance");
    EXPECT_TRUE(agent.reload());
    EXPECT_EQ(product(), "STRING 45 52 2d 32 34");
}

TEST(Help, SnmpdListsTheTokens) {
    add_interfaces(1);
    Agent agent(full_configuration(1));
    const std::string file = agent.folder() + "/help";
    std::ofstream(agent.folder() + "/help.conf") << "dlmod ieee802dot11 " << built_module() << "\n";
    run("MIBS= SNMP_PERSISTENT_DIR=" + agent.folder() +
        " ASAN_OPTIONS=detect_leaks=0:detect_odr_violation=0 env LD_PRELOAD=" + PRELOAD " " SNMPD " -C -c " +
        agent.folder() + "/help.conf -H >" + file + " 2>&1 || true");
    EXPECT_THAT(text_of(file), HasSubstr("dot11Answers"));
    EXPECT_THAT(text_of(file), HasSubstr("standard | complete"));
    EXPECT_THAT(text_of(file), HasSubstr("dot11MaxAge"));
}

}  // namespace
