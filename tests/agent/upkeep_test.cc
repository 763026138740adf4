// Maintenance of a device while its agent runs: the module, the store and the interfaces go, come back and change. The
// agent keeps answering, with the module in the master agent and in a subagent.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Of w0, which has index 11, and of w1.
const std::string beacons = "1.1.1.12", beacon = beacons + ".11", other_beacon = beacons + ".12";

constexpr int64_t kept = 16;                   // seconds without a request, after which a table is read again
constexpr int64_t rates_kept = 51;             // seconds, after which the rates are
constexpr int64_t start_time = 2'000'000'000;  // later than the agent's start

std::string role_name(const testing::TestParamInfo<Role>& role) {
    return role.param == Role::agent ? "Agent" : "Subagent";
}

class Upkeep : public testing::TestWithParam<Role> {
  protected:
    void start(const std::string& configuration, const std::string& lines = "") {
        agent = std::make_unique<Agent>(configuration, GetParam(), lines);
        agent->control().now = start_time;
    }

    void wait_seconds(int64_t seconds) { agent->control().now = agent->control().now + seconds; }
    std::string get(const std::string& oid) { return agent->get({oid}).varbinds.at(0).value; }
    std::string get_read_again(const std::string& oid) {
        wait_seconds(kept);
        return get(oid);
    }

    void import(const std::string& configuration) {
        std::ofstream(agent->folder() + "/values.toml") << configuration;
        agent->configure("import --replace " + agent->folder() + "/values.toml");
        wait_seconds(rates_kept);
    }

    // The store's library pauses after a failure, and after loads that took long.
    template <class Condition>
    bool soon(Condition condition) {
        return wait_until([&] { return wait_seconds(rates_kept), condition(); }, std::chrono::seconds(120));
    }
    void expect_soon(const std::string& oid, const std::string& value) {
        EXPECT_TRUE(soon([&] { return get(oid) == value; })) << value;
    }

    // All cells of all columns, each column by a walk of its own.
    std::vector<Varbind> everything() {
        std::vector<Varbind> cells;
        for (const ColumnFact& column : column_facts())
            for (const Varbind& cell : agent->walk(column.oid, 10'000))
                cells.push_back(cell);
        return cells;
    }

    std::unique_ptr<Agent> agent;
};

// -- the module

class Module : public Upkeep {
  protected:
    Module() { add_interfaces(2); }
};

INSTANTIATE_TEST_SUITE_P(Roles, Module, testing::Values(Role::agent, Role::subagent), role_name);

// By UCD-DLMOD-MIB: dlmodStatus.1 is unload(5), then unloaded(2); load(4), then loaded(1). The module stays in memory
// and its tables stay registered.
TEST_P(Module, UnloadedAndLoadedBySnmp) {
    start(full_configuration(2));
    const std::string status = ".1.3.6.1.4.1.2021.13.14.2.1.5.1";
    // A subagent registers this table behind the module's.
    EXPECT_TRUE(wait_until([&] { return get(status) == "INTEGER 1"; }));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(agent->set({{status, Value::integer(5)}}).status, 0);
        EXPECT_EQ(get(status), "INTEGER 2");
        EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
        EXPECT_EQ(agent->set({{status, Value::integer(4)}}).status, 0);
        EXPECT_EQ(get(status), "INTEGER 1");
        EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    }
}

// The first build goes on serving: the tables are registered, and those of the new one are refused.
TEST_P(Module, ReplacedByANewBuild) {
    start(full_configuration(2));
    for (int i = 0; i < 3; ++i) {
        agent->replace_module();
        EXPECT_TRUE(agent->reload());
        EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    }
}

// The file of the agent's own line, and twice another.
TEST_P(Module, OfThreeLines) {
    const std::string line = "dlmod ieee802dot11 " + built_module() + "\n";
    start(full_configuration(2), line + line);
    ASSERT_TRUE(agent->daemon().wait_for("and dot11RegDomainsSupportedTable", 2));
    EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    EXPECT_TRUE(agent->reload(3));
    EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    EXPECT_THAT(agent->walk(beacons),
                ElementsAre(Varbind{beacon, "INTEGER 100"}, Varbind{other_beacon, "INTEGER 100"}));
}

// -- the store

class Store : public Upkeep {
  protected:
    Store() {
        add_interfaces(2);
        start(full_configuration(2));
        EXPECT_EQ(get(beacon), "INTEGER 100");
    }

    std::string path() const { return agent->folder() + "/store.db"; }

    void remove_store() const {
        for (const char* suffix : {"-journal", ""})
            std::filesystem::remove(path() + suffix);
    }

    static void scribble(const std::string& file) { std::ofstream(file, std::ios::trunc) << "scribbled over"; }

    // Puts another store in its place, with this beacon interval.
    void replace_store(const std::string& beacon_interval) const {
        agent->configure("init", "other.db");
        agent->configure("import " + agent->folder() + "/store.toml", "other.db");
        agent->configure("set radio rw0 beacon-interval " + beacon_interval, "other.db");
        remove_store();
        std::filesystem::rename(agent->folder() + "/other.db", path());
    }
};

INSTANTIATE_TEST_SUITE_P(Roles, Store, testing::Values(Role::agent, Role::subagent), role_name);

TEST_P(Store, Removed) {
    remove_store();
    wait_seconds(kept - 1);
    EXPECT_EQ(get(beacon), "INTEGER 100") << "not yet read again";
    EXPECT_EQ(get_read_again(beacon), "noSuchInstance");
    EXPECT_THAT(everything(), IsEmpty());
    replace_store("200");
    expect_soon(beacon, "INTEGER 200");
}

TEST_P(Store, ReplacedByAnother) {
    for (const std::string interval : {"200", "300", "400"}) {
        replace_store(interval);
        expect_soon(beacon, "INTEGER " + interval);
    }
}

TEST_P(Store, ReplacedByGarbage) {
    scribble(agent->folder() + "/text");
    remove_store();
    std::filesystem::rename(agent->folder() + "/text", path());
    expect_soon(beacon, "noSuchInstance");
    replace_store("200");
    expect_soon(beacon, "INTEGER 200");
}

TEST_P(Store, OverwrittenWithGarbage) {
    scribble(path());
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    replace_store("200");
    expect_soon(beacon, "INTEGER 200");
}

TEST_P(Store, CutOff) {
    std::filesystem::resize_file(path(), 1500);
    EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    std::filesystem::resize_file(path(), 0);
    EXPECT_EQ(get_read_again(beacon), "INTEGER 100");
    replace_store("200");
    expect_soon(beacon, "INTEGER 200");
}

// -- what the store holds

class Values : public Upkeep {
  protected:
    Values() { add_interfaces(2); }

    // The configuration with other values. Names of objects stay, and so do, unless it is `link`, those keys that lead
    // to other objects or make an interface a wireless one.
    static std::string with_values(const std::string& value, const std::string& link = "") {
        std::istringstream lines(full_configuration(2));
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            const size_t equals = line.find(" = ");
            const std::string key = line.substr(0, equals);
            const bool leads = key == "type" || key == "bss" || key == "radio";
            const bool stays = equals == std::string::npos || key == "name" || (leads ? key != link : !link.empty());
            text += (stays ? line : key + " = " + value) + "\n";
        }
        return text;
    }

    static std::string hexadecimal(const std::string& octets, size_t times) {
        std::string digits;
        for (size_t i = 0; i < times; ++i)
            digits += octets;
        return "{ hex = \"" + digits + "\" }";
    }

    // Backends.ServeAnyStore has more of them.
    static std::vector<std::string> values() {
        return {"\"\"", "\"%s%n%s%n\"", hexadecimal("39", 4096), hexadecimal("fe", 4096)};
    }
};

INSTANTIATE_TEST_SUITE_P(Roles, Values, testing::Values(Role::agent, Role::subagent), role_name);

// The rows are the same, whatever is in them.
TEST_P(Values, OfAnyKindForEveryKey) {
    start(full_configuration(2));
    const std::vector<Varbind> good = everything();
    for (const std::string& value : values()) {
        import(with_values(value));
        const std::vector<Varbind> cells = everything();
        ASSERT_EQ(cells.size(), good.size()) << value;
        for (size_t i = 0; i < cells.size(); ++i)
            EXPECT_EQ(cells[i].oid, good[i].oid) << value;
    }
    import(full_configuration(2));
    EXPECT_TRUE(soon([&] { return everything() == good; }));
}

TEST_P(Values, OfAnyKindForTheKeysThatLeadToOtherObjects) {
    start(full_configuration(2));
    const std::vector<Varbind> good = everything();
    for (const std::string link : {"type", "bss", "radio"})
        for (const std::string& value : values()) {
            import(with_values(value, link));
            EXPECT_TRUE(soon([&] { return everything().size() == (link == "type" ? 0U : good.size()); }))
                << link << " = " << value;
        }
    import(full_configuration(2));
    EXPECT_TRUE(soon([&] { return everything() == good; }));
}

// -- interfaces

class Interfaces : public Upkeep {
  protected:
    static std::string rate_groups(unsigned groups, unsigned objects_each) {
        std::string text;
        for (unsigned i = 0; i < groups; ++i)
            for (unsigned j = 0; j < objects_each; ++j)
                text += "[[supported-rate]]\nname = \"" + interface_name(i) + "\"\nrate = \"540\"\n";
        return text;
    }
};

INSTANTIATE_TEST_SUITE_P(Roles, Interfaces, testing::Values(Role::agent, Role::subagent), role_name);

// One more than a table holds leaves it without rows, and a clock that turns back then counts one more than there are.
TEST_P(Interfaces, OneTooManyAndTheClockBack) {
    const struct {
        const char* column;
        size_t rows;
    } tables[] = {{"1.1.1.12", 128}, {"1.2.1.2", 256}, {"1.3.1.2", 512}, {"1.5.1.1", 128}, {"2.1.1.2", 128},
                  {"2.2.1.1", 128},  {"4.1.1.2", 128}, {"4.5.1.1", 128}, {"4.7.1.2", 128}};
    add_interfaces(128);
    start(empty_configuration(129));
    for (const auto& table : tables)
        EXPECT_EQ(agent->walk(table.column, 1000).size(), table.rows) << table.column;
    add_interface(interface_name(128), interface_index(128));
    for (const auto& table : tables) {
        agent->control().now = start_time + kept;
        EXPECT_THAT(agent->walk(table.column, 1000), IsEmpty()) << table.column;
        agent->control().now = start_time;
        EXPECT_EQ(agent->walk(table.column, 1000).size(), table.rows) << table.column;
    }
}

TEST_P(Interfaces, NamedTwiceHaveOneRowInAWalk) {
    add_interfaces(2);
    const std::string twice = full_configuration(2);  // the system comes last
    start(twice + twice.substr(0, twice.find("[[system]]")));
    EXPECT_THAT(agent->walk(beacons),
                ElementsAre(Varbind{beacon, "INTEGER 100"}, Varbind{other_beacon, "INTEGER 100"}));
    EXPECT_EQ(agent->walk("1.3.1.2", 1000).size(), 8U);
    const std::vector<Varbind> cells = everything();
    std::set<std::string> oids;
    for (const Varbind& cell : cells)
        oids.insert(cell.oid);
    EXPECT_EQ(cells.size(), oids.size());
}

TEST_P(Interfaces, ThatChangeTheirIndex) {
    add_interfaces(2);
    start(full_configuration(2));
    EXPECT_EQ(get(beacon), "INTEGER 100");
    for (const unsigned index : {50U, 7U, 4000U, 11U}) {
        remove_interface(interface_name(0));
        add_interface(interface_name(0), index);
        EXPECT_EQ(get_read_again(beacons + "." + std::to_string(index)), "INTEGER 100") << index;
        EXPECT_EQ(agent->walk(beacons).size(), 2U) << index;
    }
}

// What the rates collect stands where the interfaces stand; each table collects them anew for itself.
TEST_P(Interfaces, WithTwentyGroupsOfRatesThatComeAndGo) {
    add_interfaces(20);
    start(full_configuration(20));
    const size_t cells = everything().size();
    const std::pair<unsigned, unsigned> groups[] = {{20, 1}, {0, 0}, {1, 1}, {20, 6}, {10, 12}, {0, 0}, {20, 1}};
    for (const auto& [count, objects_each] : groups) {
        import(empty_configuration(20) + rate_groups(count, objects_each));
        for (int i = 0; i < 2; ++i)
            for (const char* table : {"4.9", "4.10"})
                EXPECT_THAT(agent->walk(table), IsEmpty()) << "its one readable column is not answered";
        EXPECT_EQ(agent->walk(beacons).size(), 20U) << count;
        EXPECT_EQ(everything().size(), cells) << count;
    }
}

}  // namespace
