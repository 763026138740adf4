// The agent's memory after many requests, while everything happens that can happen to a device.
//
//   soak_agent_test --gtest_filter='*AMillion*'     or: ctest --preset dev -L long -R soak -V
//
// prints the resident memory after a tenth of the requests and at the end. They must be equal within 64 kB.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "columns.h"
#include "set_facts.h"

namespace {

constexpr long allowed_growth = 64;  // kB

// The agent's own ipAddressTable registers itself again at each SIGHUP and leaks 3 kB each time, with and without the
// module.
constexpr char options[] = "-I -ipAddressTable";

// So many SETs, and as many GETs and GETNEXTs, in rounds. In each round the clock moves so far that every table is
// reloaded, and wlan2 comes or goes.
struct Amount {
    size_t requests, rounds, hangups;
};

constexpr char more_configuration[] = R"(
[[interface]]
name = "wlan2"
type = "service-set"
bss = "b0"
wep-key-1 = "FAKE1"

[[supported-rate]]
name = "wlan0"
rate = "540"

[[supported-rate]]
name = "wlan2"
rate = "110"
)";

std::vector<Repeated> sets() {
    std::vector<Repeated> requests;
    for (const SetFact& fact : set_facts)
        if (!is_dropped(fact)) requests.push_back({SNMP_MSG_SET, fact.values, fact.status});
    return requests;
}

// Of each column of wlan0, with one index and with two.
std::vector<Repeated> gets() {
    std::vector<Repeated> requests;
    for (const ColumnFact& column : column_facts()) {
        const Value null = Value::of_type(ASN_NULL);
        requests.push_back({SNMP_MSG_GET, {{column.oid + ".11", null}, {column.oid + ".11.1", null}}});
    }
    return requests;
}

std::vector<Repeated> get_nexts() {
    std::vector<Repeated> requests;
    for (const ColumnFact& column : column_facts())
        requests.push_back({SNMP_MSG_GETNEXT, {{column.oid, Value::of_type(ASN_NULL)}}});
    return requests;
}

long resident_kilobytes(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    return -1;
}

class Soak : public testing::TestWithParam<Role> {
  protected:
    Soak() {
        add_interface("wlan0", 11);
        add_interface("wlan1", 12);
    }

    void change(size_t round) {
        agent.control().now = 2'000'000'000 + static_cast<int64_t>(round) * 60;
        if (round % 2 == 0)
            add_interface("wlan2", 13);
        else
            remove_interface("wlan2");
    }

    void run(const Amount& amount);

    Agent agent{std::string(hazard_configuration) + more_configuration, GetParam(), "", options};
};

void Soak::run(const Amount& amount) {
    const std::vector<Repeated> kinds[] = {gets(), get_nexts(), sets()};
    const size_t each = amount.requests / amount.rounds;
    long first = 0;
    for (size_t round = 0; round < amount.rounds; ++round) {
        if (round % (amount.rounds / amount.hangups) == 0) {
            ASSERT_TRUE(agent.reload());
        }
        change(round);
        for (const std::vector<Repeated>& requests : kinds)
            ASSERT_EQ(agent.exchange(requests, each), 0U) << round;
        if (round + 1 == amount.rounds / 10) first = resident_kilobytes(agent.daemon().pid());
    }
    const long last = resident_kilobytes(agent.daemon().pid());
    std::cout << amount.requests << " SETs, as many GETs and GETNEXTs, " << amount.rounds << " reloads, "
              << amount.hangups << " SIGHUPs: resident memory after a tenth " << first << " kB, at the end " << last
              << " kB\n";
    EXPECT_GT(first, 0);
    EXPECT_LE(std::abs(last - first), allowed_growth);
}

INSTANTIATE_TEST_SUITE_P(Roles, Soak, testing::Values(Role::agent, Role::subagent),
                         [](const auto& role) { return role.param == Role::agent ? "Agent" : "Subagent"; });

TEST_P(Soak, TwentyThousandRequestsEach) {
    run({20'000, 100, 20});
}

TEST_P(Soak, AMillionRequestsEach) {
    run({1'000'000, 500, 50});
}

}  // namespace
