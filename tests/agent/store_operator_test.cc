// What an operator may do to the store of 128 interfaces while its agent runs, and what the agent answers meanwhile:
// one test for each row of the table in the manual.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "agent.h"
#include "cfql/surroundings.h"
#include "network.h"

namespace {

namespace fs = std::filesystem;
using store_test::overwrite;
using store_test::read_file;
using store_test::write_file;

constexpr unsigned interfaces = 128;
constexpr int64_t kept = 16;  // seconds without a request, after which a table is read again
constexpr int64_t start_time = 2'000'000'000;

const std::string beacons = "1.1.1.12";

// The numbers that a column's rows have, and how many rows that is: {{"INTEGER 100", 128}}.
using Counted = std::map<std::string, size_t>;

class Operator : public testing::Test {
  protected:
    Operator() { add_interfaces(interfaces); }
    ~Operator() override {
        agent.reset();
        if (other_place.empty()) return;
        unsetenv("TMPDIR");
        umount2(other_place.c_str(), MNT_DETACH);
        fs::remove(other_place);
    }

    void start(const std::string& lines = "") {
        agent = std::make_unique<Agent>(full_configuration(interfaces), Role::agent, lines);
        agent->control().now = start_time;
    }

    std::string path() const { return agent->folder() + "/store.db"; }

    Counted rows() {
        agent->control().now = agent->control().now + kept;
        Counted counted;
        for (const Varbind& cell : agent->walk(beacons, 1000))
            ++counted[cell.value];
        return counted;
    }
    static Counted all(const std::string& value) { return {{"INTEGER " + value, interfaces}}; }

    void expect_soon(const Counted& expected) {
        EXPECT_TRUE(wait_until([&] { return rows() == expected; })) << testing::PrintToString(rows());
    }

    // The same configuration with another beacon interval.
    void write_values(const std::string& beacon_interval) const {
        std::string text = full_configuration(interfaces);
        const std::string before = "beacon-interval = \"100\"", after = "beacon-interval = \"" + beacon_interval + "\"";
        for (size_t at = 0; (at = text.find(before, at)) != std::string::npos; at += after.size())
            text.replace(at, before.size(), after);
        write_file(agent->folder() + "/values.toml", text);
    }
    void import(const std::string& beacon_interval, const std::string& store = "store.db") const {
        write_values(beacon_interval);
        agent->configure("import --replace " + agent->folder() + "/values.toml", store);
    }
    void make_other(const std::string& beacon_interval) const {
        agent->configure("init", "other.db");
        import(beacon_interval, "other.db");
    }

    // The tool's exit status, where it is not to be 0.
    int tool_status(const std::string& arguments) const {
        const std::string command = "! " + agent->command(arguments) + " >>" + agent->folder() + "/cfql.log 2>&1";
        return system(command.c_str()) == 0 ? 1 : 0;
    }

    // A directory of a small file system, for the agent's files.
    void live_in_small_space(const char* options) {
        store_test::have_own_mounts();
        char name[] = "/tmp/agent-space-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        other_place = name;
        store_test::mount_tmpfs(name, options);
        setenv("TMPDIR", name, 1);
    }

    std::string other_place;
    std::unique_ptr<Agent> agent;
};

// Another process's transaction upon the store, with some of its pages written and the rest to come.
class Transaction {
  public:
    explicit Transaction(const std::string& path) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        child_ = fork();
        if (child_ == 0) _exit(write(path, ends[1]));
        close(ends[1]);
        char octet;
        EXPECT_EQ(::read(ends[0], &octet, 1), 1);
        close(ends[0]);
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction() { die(); }

    void die() {
        if (child_ < 0) return;
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
        child_ = -1;
    }

  private:
    // More changes than the cache holds are written before the commit.
    static int write(const std::string& path, int ready) {
        sqlite3* writer = nullptr;
        sqlite3_open(path.c_str(), &writer);
        sqlite3_busy_timeout(writer, 20'000);
        sqlite3_exec(writer,
                     "PRAGMA journal_mode=TRUNCATE; PRAGMA cache_size=1; BEGIN IMMEDIATE;"
                     "UPDATE attribute SET value = CAST('999' AS BLOB)",
                     nullptr, nullptr, nullptr);
        if (::write(ready, "x", 1) != 1) return 1;
        for (;;)
            pause();
    }

    pid_t child_ = -1;
};

TEST_F(Operator, RemovesTheStore) {
    start();
    EXPECT_EQ(rows(), all("100"));
    for (const char* suffix : {"-wal", "-shm", "-journal", ""})
        fs::remove(path() + suffix);
    EXPECT_EQ(rows(), Counted());
    agent->configure("init");
    import("200");
    expect_soon(all("200"));
}

TEST_F(Operator, ReplacesTheStore) {
    start();
    EXPECT_EQ(rows(), all("100"));
    for (const std::string interval : {"200", "300"}) {
        make_other(interval);
        for (const char* suffix : {"-wal", "-shm"})
            fs::remove(path() + suffix);
        fs::rename(agent->folder() + "/other.db", path());
        expect_soon(all(interval));
        for (const char* suffix : {"-wal", "-shm", "-journal"})
            fs::remove(agent->folder() + "/other.db" + suffix);
    }
}

// A file of an earlier day is copied over the store.
TEST_F(Operator, RestoresTheStore) {
    start();
    EXPECT_EQ(rows(), all("100"));
    make_other("200");
    overwrite(path(), read_file(agent->folder() + "/other.db"));
    expect_soon(all("200"));
    agent->configure("check");
}

TEST_F(Operator, FindsTheStoreDamaged) {
    start();
    EXPECT_EQ(rows(), all("100"));
    const std::string good = read_file(path());
    for (size_t page = 0; page < good.size() / 1024; page += 37) {
        std::string damaged = good;
        damaged.replace(page * 1024, 1024, std::string(1024, '\xee'));
        overwrite(path(), damaged);
        EXPECT_EQ(rows(), all("100")) << page;
        EXPECT_EQ(tool_status("check"), 1) << page;
    }
    overwrite(path(), good);
    agent->configure("check");
    import("200");
    expect_soon(all("200"));
}

TEST_F(Operator, FillsTheDisk) {
    live_in_small_space("size=64m");
    start();
    EXPECT_EQ(rows(), all("100"));
    const std::string ballast = agent->folder() + "/ballast";
    run("dd if=/dev/zero of=" + ballast + " bs=4k 2>/dev/null || true");
    EXPECT_EQ(tool_status("set interface w0 note " + std::string(4000, 'n')), 1);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(rows(), all("100"));
    fs::remove(ballast);
    agent->configure("check");
    import("200");
    expect_soon(all("200"));
}

// With a sanitizer, an agent that has changed its user cannot look for leaks, and fails.
#ifndef ADDRESS_SANITIZER
TEST_F(Operator, TakesTheRightsAway) {
    if (read_file("/proc/self/uid_map").find("4294967295") == std::string::npos) GTEST_SKIP() << "no other users";
    start("agentUser nobody\nagentGroup nogroup\n");
    EXPECT_EQ(rows(), Counted()) << "the agent may not enter the folder";
    fs::permissions(path(), fs::perms(0644));
    fs::permissions(agent->folder(), fs::perms(0755));
    expect_soon(all("100"));
    fs::permissions(path(), fs::perms(0600));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(rows(), all("100"));
    import("200");
    EXPECT_EQ(rows(), all("100"));
    fs::permissions(path(), fs::perms(0644));
    expect_soon(all("200"));
}
#endif

TEST_F(Operator, InterruptsAWrite) {
    start();
    EXPECT_EQ(rows(), all("100"));
    Transaction(path()).die();
    ASSERT_GT(fs::file_size(path() + "-journal"), 0U);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(rows(), all("100"));
    agent->configure("check");
    EXPECT_EQ(rows(), all("100"));
    import("200");
    expect_soon(all("200"));
}

TEST_F(Operator, StartsTheAgentAfterAnInterruptedWrite) {
    start();
    const std::string folder = agent->folder();
    Transaction(path()).die();
    agent->restart();
    EXPECT_EQ(rows(), Counted());
    agent->configure("check");
    expect_soon(all("100"));
}

TEST_F(Operator, WritesForALongWhile) {
    start();
    EXPECT_EQ(rows(), all("100"));
    Transaction transaction(path());
    const auto begin = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() < begin + std::chrono::seconds(8))
        EXPECT_EQ(rows(), all("100"));
    transaction.die();
    agent->configure("check");
    import("200");
    expect_soon(all("200"));
}

TEST_F(Operator, WritesWithoutPause) {
    start();
    EXPECT_EQ(rows(), all("100"));
    const pid_t writer = fork();
    if (writer == 0) {
        sqlite3* connection = nullptr;
        sqlite3_open(path().c_str(), &connection);
        sqlite3_exec(connection, "PRAGMA journal_mode=TRUNCATE", nullptr, nullptr, nullptr);
        sqlite3_busy_timeout(connection, 20'000);
        for (;;)
            sqlite3_exec(connection, "UPDATE attribute SET crc = 1 - crc WHERE key = CAST('ssid' AS BLOB)", nullptr,
                         nullptr, nullptr);
    }
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(rows(), all("100"));
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    tool_status("check");  // undoes what was cut off; a checksum is wrong after every second write
    import("200");
    expect_soon(all("200"));
}

}  // namespace
