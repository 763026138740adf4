// Requests that no manager should make, and what the agent does of them: it answers as stated, and goes on. Each SET is
// followed by one that must be refused and a GET that must be right. In the agent that is asked, and in a subagent.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <fstream>

#include "agent.h"

namespace {

constexpr char configuration[] = R"(
[[interface]]
name = "wlan0"
type = "service-set"
bss = "b0"

[[interface]]
name = "wlan1"
type = "service-set"

[[bss]]
name = "b0"
radio = "r0"

[[radio]]
name = "r0"
beacon-interval = "100"
)";

constexpr int no_error = 0, gen_err = 5, wrong_type = 7, wrong_value = 10, no_creation = 11, inconsistent = 12,
              undo_failed = 15, not_writable = 17;

using Values = std::vector<std::pair<std::string, Value>>;

struct SetFact {
    const char* what;
    Values values;
    int status;
    int index;  // of the varbind that the status is about
    bool beyond_32_bits = false;
};

// A message with a number larger than the agent's long is dropped before any module sees it.
bool is_dropped(const SetFact& fact) {
    return fact.beyond_32_bits && long_bits_of_agent() == 32;
}

Value integer(int64_t number) {
    return Value::integer(number);
}

Value octets(size_t count) {
    return Value::string(std::string(count, 'k'));
}

// wlan0 has index 11; 99 is no interface. The unbacked tables have no rows.
const std::string beacon = "1.1.1.12.11", rate_set = "1.1.1.11.11", privacy = "1.5.1.1.11",
                  authentication = "1.2.1.3.11.1", key_address = "1.4.1.2.11.1", key_on = "1.4.1.3.11.1",
                  key_value = "1.4.1.4.11.1", key_status = "1.4.1.5.11.1", group_address = "2.3.1.2.11.1",
                  group_status = "2.3.1.3.11.1", erp_enabled = "4.14.1.2.11";

const std::vector<SetFact> set_facts = {
    // A table without rows takes a value, into a row of its own that nothing reads.
    {"group address", {{group_address, octets(6)}}, no_error, 0},
    {"group address, short", {{group_address, octets(5)}}, wrong_value, 1},
    {"group status createAndGo", {{group_status, integer(4)}}, no_error, 0},
    {"group status createAndWait", {{group_status, integer(5)}}, no_error, 0},
    {"group status active, without a row", {{group_status, integer(1)}}, inconsistent, 1},
    {"group status out of range", {{group_status, integer(7)}}, inconsistent, 1},
    {"ERP 1", {{"4.14.1.1.11", integer(1)}}, not_writable, 1},
    {"ERP 2", {{erp_enabled, integer(1)}}, no_error, 0},
    {"ERP 2, out of range", {{erp_enabled, integer(3)}}, inconsistent, 1},
    {"ERP 3", {{"4.14.1.3.11", integer(1)}}, not_writable, 1},
    {"ERP 4", {{"4.14.1.4.11", integer(2)}}, no_error, 0},
    {"ERP 5", {{"4.14.1.5.99", integer(1)}}, no_error, 0},
    {"ERP 6", {{"4.14.1.6.11", integer(1)}}, no_error, 0},
    {"key address", {{key_address, octets(6)}}, no_error, 0},
    {"key on", {{key_on, integer(2)}}, no_error, 0},
    {"key value", {{key_value, octets(5)}}, no_error, 0},
    {"key value of 13 octets", {{key_value, octets(13)}}, wrong_value, 1},
    // A key mapping's status always reads active.
    {"key status active", {{key_status, integer(1)}}, no_error, 0},
    {"key status destroy", {{key_status, integer(6)}}, no_error, 0},
    {"key status createAndGo", {{key_status, integer(4)}}, inconsistent, 1},
    {"key mapping whole",
     {{key_address, octets(6)}, {key_on, integer(1)}, {key_value, octets(5)}, {key_status, integer(1)}},
     no_error,
     0},

    // The first table's UNDO empties the stores, and the second table finds nothing to undo.
    {"beacon, key on", {{beacon, integer(100)}, {key_on, integer(1)}}, undo_failed, 2},
    {"key on, beacon", {{key_on, integer(1)}, {beacon, integer(100)}}, undo_failed, 2},
    {"beacon, privacy", {{beacon, integer(100)}, {privacy, integer(1)}}, undo_failed, 2},
    {"privacy, beacon", {{privacy, integer(1)}, {beacon, integer(100)}}, undo_failed, 2},
    {"authentication, key status", {{authentication, integer(1)}, {key_status, integer(1)}}, undo_failed, 2},
    {"key address, beacon", {{key_address, octets(6)}, {beacon, integer(100)}}, undo_failed, 2},
    {"key on, key value, beacon",
     {{key_on, integer(1)}, {key_value, octets(5)}, {beacon, integer(100)}},
     undo_failed,
     3},

    // The first table's COMMIT empties the stores, and the second table has nothing left to commit.
    {"rate set, key on", {{rate_set, octets(3)}, {key_on, integer(1)}}, no_error, 0},
    {"key on, rate set", {{key_on, integer(1)}, {rate_set, octets(3)}}, no_error, 0},
    {"key on, group address", {{key_on, integer(1)}, {group_address, octets(6)}}, no_error, 0},
    {"group address, ERP", {{group_address, octets(6)}, {erp_enabled, integer(1)}}, no_error, 0},
    {"ERP, key value", {{erp_enabled, integer(1)}, {key_value, octets(5)}}, no_error, 0},

    // The agent refuses the first varbind, and the list still begins with it.
    {"the entry, beacon", {{"1.1.1", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"the table, beacon", {{"1.1", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"a wrong entry, beacon", {{"1.1.2.12.11", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"a column too high, beacon", {{"1.1.1.99.11", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"the table, key on", {{"1.4", integer(1)}, {key_on, integer(1)}}, not_writable, 1},
    {"a column too high, key value", {{"1.4.1.99.11.1", integer(1)}, {key_value, octets(5)}}, not_writable, 1},
    {"a column too high, authentication",
     {{"1.2.1.99.11.1", integer(1)}, {authentication, integer(1)}},
     not_writable,
     1},
    {"no index", {{"1.1.1.12", integer(1)}, {beacon, integer(100)}}, no_creation, 1},
    {"too long an index", {{"1.1.1.12.11.5", integer(1)}, {beacon, integer(100)}}, no_creation, 1},
    {"too short an index", {{"1.4.1.3.11", integer(1)}, {key_on, integer(1)}}, no_creation, 1},

    // The rate set ends the handler: what stands behind it is not tried.
    {"beacon, rate set", {{beacon, integer(100)}, {rate_set, octets(3)}}, not_writable, 1},
    {"rate set, beacon", {{rate_set, octets(3)}, {beacon, integer(100)}}, no_error, 0},

    // One row for all, that of the first varbind.
    {"beacon of two rows", {{beacon, integer(100)}, {"1.1.1.12.12", integer(100)}}, not_writable, 1},
    {"beacon twice", {{beacon, integer(100)}, {beacon, integer(200)}}, not_writable, 1},
    {"beacon, of a missing row", {{beacon, integer(100)}, {"1.1.1.12.99", integer(100)}}, no_creation, 2},

    // Numbers count in their 32-bit form.
    {"4294967295 is -1", {{privacy, integer(4294967295)}}, inconsistent, 1, true},
    {"4294967295 is -1, as length", {{"1.5.1.3.11", integer(4294967295)}}, wrong_value, 1, true},
    {"-1", {{privacy, integer(-1)}}, inconsistent, 1},
    {"NULL", {{beacon, Value::of_type(ASN_NULL)}}, wrong_type, 1},
    {"Counter32", {{beacon, Value::of_type(ASN_COUNTER, integer(100).octets)}}, wrong_type, 1},
};

Values hundred_varbinds() {
    Values values;
    for (int i = 1; i <= 100; ++i)
        values.emplace_back("1.4.1.3.11." + std::to_string(i), integer(1 + i % 2));
    return values;
}

class Hazards : public testing::TestWithParam<Role> {
  protected:
    Hazards() {
        add_interface("wlan0", 11);
        add_interface("wlan1", 12);
    }

    static void expect_right_answers(Agent& agent, const std::string& after) {
        EXPECT_EQ(agent.set({{beacon, integer(100)}}).status, not_writable) << after;
        EXPECT_EQ(agent.set({{key_on, integer(1)}}).status, no_error) << after;
        EXPECT_THAT(agent.get({beacon, "1.1.1.12.12", key_on}).varbinds,
                    testing::ElementsAre(Varbind{beacon, "INTEGER 100"}, Varbind{"1.1.1.12.12", "INTEGER 1"},
                                         Varbind{key_on, "noSuchInstance"}))
            << after;
    }
};

INSTANTIATE_TEST_SUITE_P(Roles, Hazards, testing::Values(Role::agent, Role::subagent),
                         [](const auto& role) { return role.param == Role::agent ? "Agent" : "Subagent"; });

TEST_P(Hazards, EverySetIsAnsweredAsStatedAndSurvived) {
    Agent agent(configuration, GetParam());
    for (const SetFact& fact : set_facts) {
        if (is_dropped(fact)) continue;
        const Response response = agent.set(fact.values);
        EXPECT_EQ(response.status, fact.status) << fact.what;
        EXPECT_EQ(response.index, fact.index) << fact.what;
        expect_right_answers(agent, fact.what);
    }
    EXPECT_EQ(agent.control().sets, 0U);
}

// An exception in place of a value comes to the module without a value; through AgentX it comes with an empty one.
TEST_P(Hazards, ExceptionsInPlaceOfAValue) {
    Agent agent(configuration, GetParam());
    const u_char exceptions[] = {SNMP_NOSUCHOBJECT, SNMP_NOSUCHINSTANCE, SNMP_ENDOFMIBVIEW};
    for (const u_char type : exceptions)
        for (const std::string& column : {beacon, rate_set, key_on, key_value, group_status}) {
            const int expected = GetParam() == Role::agent ? gen_err : wrong_type;
            EXPECT_EQ(agent.set({{column, Value::of_type(type)}}).status, expected) << column;
            expect_right_answers(agent, column);
        }
}

TEST_P(Hazards, AHundredVarbinds) {
    Agent agent(configuration, GetParam());
    EXPECT_EQ(agent.set(hundred_varbinds()).status, no_error);
    expect_right_answers(agent, "a hundred varbinds");
}

TEST_P(Hazards, RequestsGivenToTheHandlerOneByOne) {
    Agent agent(configuration, GetParam(),
                "injectHandler serialize dot11StationConfigTable\ninjectHandler serialize dot11WEPKeyMappingsTable\n");
    for (const SetFact& fact : set_facts) {
        if (is_dropped(fact)) continue;
        EXPECT_NE(agent.set(fact.values).status, -1) << fact.what;
        expect_right_answers(agent, fact.what);
    }
}

// The agent hears the signal only once it serves requests, and may go to sleep between the signal and its look for one.
bool reloads(Agent& agent, size_t times) {
    for (int second = 0; second < 30; ++second) {
        kill(agent.daemon().pid(), SIGHUP);
        agent.get({beacon});
        if (agent.daemon().wait_for("and dot11RegDomainsSupportedTable", times, std::chrono::seconds(1))) return true;
    }
    return false;
}

// The agent loads the module of each "dlmod" line again, which registers its tables again and is refused.
TEST_P(Hazards, TheModuleLoadedAgainFiftyTimes) {
    Agent agent(configuration, GetParam());
    for (size_t times = 1; times <= 50; ++times) {
        ASSERT_TRUE(reloads(agent, times)) << times;
        ASSERT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100") << times;
    }
    expect_right_answers(agent, "fifty times SIGHUP");
}

TEST_P(Hazards, ClocksThatStandStillLeapAndTurnBack) {
    Agent agent(configuration, GetParam());
    // Within 15 seconds of the epoch nothing has been read yet.
    agent.control().now = 15;
    EXPECT_EQ(agent.get({beacon}).varbinds[0].value, "noSuchInstance");
    agent.control().now = 31;
    const int64_t times[] = {31,         100,        2147483628, 2147483647, 2147483648, 2147483668, 4294967295,
                             4294967296, 4294967312, 1,          946684800,  1 << 30,    16};
    for (const int64_t now : times) {
        agent.control().now = now;
        EXPECT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100") << now;
        EXPECT_EQ(agent.walk("1.1.1.12").size(), 2U) << now;
        EXPECT_LT(agent.walk("1").size(), 1000U) << now;
    }
}

TEST_P(Hazards, InterfacesThatVanishInTheMiddleOfAWalk) {
    Agent agent(configuration, GetParam());
    agent.control().now = 1'000'000'000;
    EXPECT_EQ(agent.get_next({"1.1.1.12"}).varbinds[0].oid, beacon);
    remove_interface("wlan1");
    agent.control().now = 1'500'000'000;
    EXPECT_NE(agent.get_next({beacon}).varbinds[0].oid, "1.1.1.12.12");
    add_interface("wlan1", 7);
    agent.control().now = 1'600'000'000;
    EXPECT_THAT(agent.walk("1.1.1.12"),
                testing::ElementsAre(Varbind{"1.1.1.12.7", "INTEGER 1"}, Varbind{beacon, "INTEGER 100"}));
}

// Behind a master that dies and comes back.
TEST(Subagent, OutlivesItsMaster) {
    add_interface("wlan0", 11);
    add_interface("wlan1", 12);
    Agent agent(configuration, Role::subagent);
    EXPECT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100");
    agent.restart_master();
    EXPECT_EQ(agent.set({{key_on, integer(1)}}).status, no_error);
    EXPECT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100");
}

}  // namespace
