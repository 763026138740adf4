// Bounds on what a request costs the agent, whatever the store holds and whoever writes to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "agent.h"
#include "cfql/crafted.h"
#include "network.h"

namespace {

using store_test::memory_of;
using store_test::number_of;
using store_test::overwrite;
using store_test::crafted::Crafted;
namespace crafted = store_test::crafted;

constexpr int64_t kept = 16;  // seconds without a request, after which a table is read again
constexpr int64_t start_time = 2'000'000'000;

class Bounds : public testing::Test {
  protected:
    void start(const std::string& configuration) {
        agent = std::make_unique<Agent>(configuration);
        agent->control().now = start_time;
    }

    std::string path() const { return agent->folder() + "/store.db"; }
    std::string beacon() {
        agent->control().now = agent->control().now + kept;
        return agent->get({"1.1.1.12.11"}).varbinds.at(0).value;
    }

    std::string of_process(const std::string& file) const {
        return "/proc/" + std::to_string(agent->daemon().pid()) + "/" + file;
    }
    int64_t octets_read() const { return number_of(of_process("io"), "rchar:"); }
    int64_t peak_kilobytes() const { return memory_of(std::to_string(agent->daemon().pid()), "VmHWM:"); }
    int64_t processor_milliseconds() const {
        clockid_t clock;
        timespec used = {};
        EXPECT_EQ(clock_getcpuclockid(agent->daemon().pid(), &clock), 0);
        clock_gettime(clock, &used);
        return used.tv_sec * 1000 + used.tv_nsec / 1'000'000;
    }

    std::unique_ptr<Agent> agent;
};

// -- crafted files

class CraftedStore : public Bounds, public testing::WithParamInterface<Crafted> {
  protected:
    CraftedStore() {
        add_interfaces(1);
        start(full_configuration(1));
        EXPECT_EQ(beacon(), "INTEGER 100");
    }

    void expect_answers(const std::string& expected, const std::string& or_this) {
        const int64_t before = processor_milliseconds(), memory = peak_kilobytes();
        for (int i = 0; i < 10; ++i)
            ASSERT_THAT(beacon(), testing::AnyOf(expected, or_this));
        EXPECT_LE(processor_milliseconds() - before, 500);
        EXPECT_LE(peak_kilobytes() - memory, 4096);
    }
};

INSTANTIATE_TEST_SUITE_P(Files, CraftedStore, testing::ValuesIn(crafted::files),
                         [](const auto& test) { return test.param.what; });

TEST_P(CraftedStore, UnderARunningAgentLeavesItsAnswers) {
    overwrite(path(), crafted::from(path(), GetParam()));
    expect_answers("INTEGER 100", GetParam().looks_sound ? "noSuchInstance" : "INTEGER 100");
}

TEST_P(CraftedStore, InPlaceOfTheOldOneLeavesTheAgentAlive) {
    const std::string next = agent->folder() + "/next.db";
    store_test::write_file(next, crafted::from(path(), GetParam()));
    std::filesystem::rename(next, path());
    expect_answers("noSuchInstance", "noSuchInstance");
}

// -- loads

// Another process that commits without pause.
class Writer {
  public:
    explicit Writer(const std::string& path) : child_(fork()) {
        if (child_ == 0) write(path);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }

  private:
    [[noreturn]] static void write(const std::string& path) {
        sqlite3* connection = nullptr;
        sqlite3_open(path.c_str(), &connection);
        sqlite3_exec(connection, "PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=OFF", nullptr, nullptr, nullptr);
        sqlite3_busy_timeout(connection, 20'000);
        for (;;)
            sqlite3_exec(connection, "UPDATE attribute SET crc = 1 - crc WHERE key = CAST('ssid' AS BLOB)", nullptr,
                         nullptr, nullptr);
    }

    const pid_t child_;
};

// No table has rows, and each column of each table asks the store for them.
class WithoutRows : public Bounds {
  protected:
    int64_t load() const { return static_cast<int64_t>(std::filesystem::file_size(path())); }

    int64_t octets_for(const std::vector<std::string>& oids) {
        agent->control().now = agent->control().now + kept;
        const int64_t before = octets_read();
        EXPECT_EQ(agent->get_next(oids).status, 0);
        return octets_read() - before;
    }

    // Two loads, and one for each second that the request takes on this machine.
    void expect_two_loads(const std::vector<std::string>& oids) {
        using Clock = std::chrono::steady_clock;
        EXPECT_EQ(beacon(), "noSuchInstance");
        const Writer writer(path());
        for (int i = 0; i < 5; ++i) {
            const Clock::time_point begin = Clock::now();
            const int64_t octets = octets_for(oids);
            const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin).count();
            EXPECT_LE(octets, (2 + seconds) * load() + files_of_the_agent);
        }
    }

    static constexpr int64_t files_of_the_agent = 16384;
    const std::vector<std::string> tables = {"1.1", "1.2", "1.3", "1.4", "1.5", "2.1",  "2.2",  "2.3", "3.1.2",
                                             "4.1", "4.3", "4.5", "4.7", "4.9", "4.10", "4.12", "4.14"};
};

std::string without_service_sets(std::string configuration) {
    const std::string type = "type = \"service-set\"";
    for (size_t at = 0; (at = configuration.find(type, at)) != std::string::npos;)
        configuration.replace(at, type.size(), "type = \"other\"");
    return configuration;
}

TEST_F(WithoutRows, ARequestTakesTwoLoadsAtMost) {
    start(without_service_sets(full_configuration(128)));
    expect_two_loads({"1"});
    expect_two_loads(tables);
}

// Between two readings of the store, the system is asked for 128 interfaces that are not there: time for more loads.
TEST_F(WithoutRows, ARequestForInterfacesThatAreNotThereTakesTwoLoadsAtMost) {
    start(full_configuration(128));
    expect_two_loads({"1"});
    expect_two_loads(tables);
}

TEST_F(WithoutRows, AStoreThatNobodyWritesIsNotRead) {
    start(full_configuration(128));
    // It is read for the last time when the last change is three seconds old.
    const auto settled = std::chrono::steady_clock::now() + std::chrono::seconds(4);
    EXPECT_TRUE(wait_until(
        [&] { return octets_for({"1"}) < files_of_the_agent && std::chrono::steady_clock::now() > settled; }));
    for (int i = 0; i < 5; ++i)
        EXPECT_LE(octets_for({"1"}), files_of_the_agent);
}

// -- the log

TEST_F(Bounds, AFullSystemLogHoldsNoRequestUp) {
    char name[] = "/tmp/agent-log-XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    const store_test::SystemLog log(name);
    log.fill();
    add_interfaces(1);
    start(full_configuration(1));
    EXPECT_EQ(beacon(), "INTEGER 100");
    overwrite(path(), "scribbled over");
    for (int i = 0; i < 10; ++i)
        ASSERT_EQ(beacon(), "INTEGER 100");
    EXPECT_NE(log.lines(), std::vector<std::string>());
}

// -- memory

int64_t anonymous_kilobytes(pid_t pid) {
    return memory_of(std::to_string(pid), "RssAnon:");
}

TEST_F(Bounds, DescriptorsAndMemoryStayWhileTheStoreChanges) {
    add_interfaces(8);
    start(full_configuration(8));
    const auto size = static_cast<int64_t>(std::filesystem::file_size(path()));
    const auto descriptors = [&] {
        const std::filesystem::directory_iterator all(of_process("fd"));
        return std::distance(begin(all), end(all));
    };
    int64_t memory = 0;
    int64_t files = 0;
    for (int round = 0; round < 300; ++round) {
        const timespec times[] = {{0, UTIME_OMIT}, {1'600'000'000 + round, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path().c_str(), times, 0), 0);
        agent->control().monotonic = 1'000'000'000 + 2000 * round;  // time for the next load
        const int64_t before = octets_read();
        ASSERT_EQ(beacon(), "INTEGER 100");
        ASSERT_GE(octets_read() - before, size) << "it is not loaded";
        if (round != 100) continue;
        memory = anonymous_kilobytes(agent->daemon().pid());
        files = descriptors();
    }
    EXPECT_LE(anonymous_kilobytes(agent->daemon().pid()), memory + 64);
    // Now and then the agent has a few more open for a moment, and had them when they were counted.
    EXPECT_TRUE(wait_until([&] { return descriptors() <= files; })) << descriptors() << " after " << files;
}

}  // namespace
