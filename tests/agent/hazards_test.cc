// Requests that no manager should make: the agent answers as stated, and keeps running. Each SET is followed by one
// that must be refused and a GET that must be right. With the module in the master agent, and in a subagent.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "set_facts.h"

namespace {

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
    Agent agent(hazard_configuration, GetParam());
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
    Agent agent(hazard_configuration, GetParam());
    const u_char exceptions[] = {SNMP_NOSUCHOBJECT, SNMP_NOSUCHINSTANCE, SNMP_ENDOFMIBVIEW};
    for (const u_char type : exceptions)
        for (const std::string& column : {beacon, rate_set, key_on, key_value, group_status}) {
            const int expected = GetParam() == Role::agent ? gen_err : wrong_type;
            EXPECT_EQ(agent.set({{column, Value::of_type(type)}}).status, expected) << column;
            expect_right_answers(agent, column);
        }
}

TEST_P(Hazards, AHundredVarbinds) {
    Agent agent(hazard_configuration, GetParam());
    EXPECT_EQ(agent.set(hundred_varbinds()).status, no_error);
    expect_right_answers(agent, "a hundred varbinds");
}

TEST_P(Hazards, RequestsGivenToTheHandlerOneByOne) {
    Agent agent(hazard_configuration, GetParam(),
                "injectHandler serialize dot11StationConfigTable\ninjectHandler serialize dot11WEPKeyMappingsTable\n");
    for (const SetFact& fact : set_facts) {
        if (is_dropped(fact)) continue;
        EXPECT_NE(agent.set(fact.values).status, -1) << fact.what;
        expect_right_answers(agent, fact.what);
    }
}

// The agent loads the module of each "dlmod" line again, which registers its tables again and is refused.
TEST_P(Hazards, TheModuleLoadedAgainFiftyTimes) {
    Agent agent(hazard_configuration, GetParam());
    for (size_t times = 1; times <= 50; ++times) {
        ASSERT_TRUE(agent.reload()) << times;
        ASSERT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100") << times;
    }
    expect_right_answers(agent, "fifty times SIGHUP");
}

TEST_P(Hazards, ClocksThatStandStillLeapAndTurnBack) {
    Agent agent(hazard_configuration, GetParam());
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
    Agent agent(hazard_configuration, GetParam());
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
    Agent agent(hazard_configuration, Role::subagent);
    EXPECT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100");
    agent.restart_master();
    EXPECT_EQ(agent.set({{key_on, integer(1)}}).status, no_error);
    EXPECT_EQ(agent.get({beacon}).varbinds[0].value, "INTEGER 100");
}

}  // namespace
