// The built program on this machine, which has no access point: its command line, files and behaviour.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "place.h"

namespace {

using Words = std::vector<std::string>;

// The program, running; its standard output and error come together.
class Running {
  public:
    explicit Running(const Words& words, const Words& environment = {}) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) abort();
        child_ = fork();
        if (child_ == 0) {
            for (const std::string& variable : environment)
                putenv(const_cast<char*>(variable.c_str()));
            std::vector<char*> arguments = {const_cast<char*>(COLLECTOR)};
            for (const std::string& word : words)
                arguments.push_back(const_cast<char*>(word.c_str()));
            arguments.push_back(nullptr);
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            execv(COLLECTOR, arguments.data());
            _exit(127);
        }
        close(ends[1]);
        output_ = ends[0];
    }
    ~Running() {
        if (child_ > 0) {
            kill(child_, SIGKILL);
            wait();
        }
        close(output_);
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void signal(int number) const { kill(child_, number); }

    // Everything that it says until it ends.
    std::string rest() {
        char buffer[4096];
        for (ssize_t got = 0; (got = read(output_, buffer, sizeof buffer)) > 0;)
            said_.append(buffer, static_cast<std::size_t>(got));
        return said_;
    }

    std::string until(const std::string& text) {
        char buffer[4096];
        while (said_.find(text) == std::string::npos) {
            const ssize_t got = read(output_, buffer, sizeof buffer);
            if (got <= 0) break;
            said_.append(buffer, static_cast<std::size_t>(got));
        }
        return said_;
    }

    int wait() {
        int status = 0;
        waitpid(child_, &status, 0);
        child_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    }

  private:
    pid_t child_;
    int output_;
    std::string said_;
};

struct Program : testing::Test {
    Words with(const Words& more) const {
        Words all = {"--store", place.store, "--config", place.directory + "/collector.toml"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::pair<int, std::string> run(const Words& words) const {
        Running program(words);
        std::string said = program.rest();
        return {program.wait(), said};
    }

    void configure(const std::string& text) const { std::ofstream(place.directory + "/collector.toml") << text; }

    template <class Condition>
    static bool eventually(Condition condition) {
        for (int i = 0; i < 20000; ++i) {
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }

    Place place;
};

TEST_F(Program, UsageErrorsAre2) {
    const struct {
        Words words;
        const char* line;
    } cases[] = {
        {{"--bad"},
         "<3>cfql-collector: The following argument was not expected: --bad; see \"cfql-collector --help\"\n"},
        {{"x"}, "<3>cfql-collector: The following argument was not expected: x; see \"cfql-collector --help\"\n"},
        {{"--interval", "1"}, nullptr},
        {{"--interval", "3601"}, nullptr},
        {{"--interval", "x"}, nullptr},
        {{"--interval"}, nullptr},
        {{"--store", ""}, nullptr},
        {{"--once", "--list"},
         "<3>cfql-collector: --once, --dry-run, --list and --remove-aliases exclude each other\n"},
    };
    for (const auto& expected : cases) {
        const auto [status, said] = run(expected.words);
        EXPECT_EQ(status, 2) << said;
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
        EXPECT_TRUE(expected.line == nullptr || said == expected.line) << said;
    }
}

TEST_F(Program, HelpAndVersion) {
    EXPECT_EQ(run({"--version"}), std::pair(0, std::string("cfql-collector " COLLECTOR_VERSION "\n")));
    const auto [status, said] = run({"--help"});
    EXPECT_EQ(status, 0);
    for (const char* option : {"--interval", "--hostapd", "--store", "--config", "--no-aliases", "--once", "--dry-run",
                               "--list", "--remove-aliases", "--version", "--help"})
        EXPECT_NE(said.find(option), std::string::npos) << option;
}

TEST_F(Program, ConfigurationErrorsAre4) {
    configure("[wlan0]\nchanel = '6'\n");
    const auto [status, said] = run(with({"--once"}));
    EXPECT_EQ(status, 4);
    EXPECT_EQ(
        said,
        "<3>cfql-collector: " + place.directory +
            "/collector.toml:2:1: \"chanel\" is not a key that can be given here; man cfql-collector lists them\n");
    EXPECT_FALSE(std::filesystem::exists(place.store));
}

TEST_F(Program, StoreErrorsAre3) {
    EXPECT_EQ(run({"--store", "/nonexistent/store.db", "--once"}).first, 3);
    std::ofstream(place.store) << "not a store, but longer than nothing";
    const auto [status, said] = run(with({"--once"}));
    EXPECT_EQ(status, 3);
    EXPECT_NE(said.find(place.store + ": "), std::string::npos) << said;
}

TEST_F(Program, ASecondCollectorEndsWith1) {
    Running first(with({}));
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(place.store); }));
    const auto [status, said] = run(with({"--once"}));
    EXPECT_EQ(status, 1);
    EXPECT_EQ(said, "<3>cfql-collector: " + place.store +
                        ": another collector fills it; end that one, or name another store with --store\n");
    EXPECT_EQ(run(with({"--list"})).first, 0);
    first.signal(SIGTERM);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(run(with({"--once"})).first, 0);
}

TEST_F(Program, OnceMakesTheStore) {
    EXPECT_EQ(run(with({"--once"})).first, 0);
    EXPECT_EQ(place.lines(), Words{});
}

TEST_F(Program, RemovesWhatIsNoMore) {
    place.make();
    place.set("interface", "gone0", "origin", "cfql-collector");
    place.set("interface", "stays", "ssid", "theirs");
    EXPECT_EQ(run(with({"--dry-run"})).second.find("unset\tinterface\tgone0") == std::string::npos, false);
    EXPECT_EQ(place.lines().size(), 2U);
    EXPECT_EQ(run(with({"--once"})).first, 0);
    EXPECT_EQ(place.lines(), Words{"interface stays: ssid=theirs"});
}

TEST_F(Program, LooksWithoutWriting) {
    EXPECT_EQ(run(with({"--list"})).first, 0);
    EXPECT_EQ(run(with({"--dry-run"})).first, 0);
    EXPECT_EQ(run(with({"--remove-aliases"})).first, 0);
    EXPECT_TRUE(std::filesystem::is_empty(place.directory));
}

TEST_F(Program, StampsEveryPass) {
    Running program(with({"--interval", "2"}));
    const auto stamp = [&] {
        std::string line;
        std::ifstream file(place.store + ".collector");
        std::getline(file, line);
        return line;
    };
    ASSERT_TRUE(eventually([&] { return stamp().size() == 26; })) << stamp();
    const std::string first = stamp();
    EXPECT_TRUE(first.ends_with(" 00002")) << first;
    EXPECT_TRUE(eventually([&] { return stamp() > first; }));
}

// What the service manager hears, on a socket of the test's own.
TEST_F(Program, TellsTheServiceManager) {
    const int manager = socket(AF_UNIX, SOCK_DGRAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string path = place.directory + "/notify";
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(manager, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    timeval limit = {20, 0};
    setsockopt(manager, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    const auto hear = [&] {
        char buffer[256];
        const ssize_t got = recv(manager, buffer, sizeof buffer, 0);
        return std::string(buffer, got > 0 ? static_cast<std::size_t>(got) : 0);
    };
    Running program(with({}), {"NOTIFY_SOCKET=" + path, "WATCHDOG_USEC=100000"});
    EXPECT_EQ(hear(), "READY=1");
    EXPECT_EQ(hear(), "WATCHDOG=1");
    EXPECT_EQ(hear(), "WATCHDOG=1");
    program.signal(SIGTERM);
    std::string last;
    for (int i = 0; i < 1000 && last != "STOPPING=1"; ++i)
        last = hear();
    EXPECT_EQ(last, "STOPPING=1");
    EXPECT_EQ(program.wait(), 0);
    close(manager);
}

TEST_F(Program, ReadsItsConfigurationAgain) {
    Running program(with({}));
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(place.store); }));
    configure("[wlan0]\nchanel = '6'\n");
    program.signal(SIGHUP);
    program.until("stays");
    configure("");
    program.signal(SIGHUP);
    EXPECT_NE(program.until("read again").find("collector.toml: read again"), std::string::npos);
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(Program, SaysWhenThereIsNoNl80211) {
    if (std::filesystem::exists("/sys/class/ieee80211")) GTEST_SKIP() << "this kernel has nl80211";
    EXPECT_EQ(
        run(with({"--once"})).second,
        "<4>cfql-collector: this kernel has no nl80211, so there are no access points; load cfg80211 and the radio's "
        "driver\n");
    EXPECT_EQ(
        run(with({"--list"})).second,
        "<4>cfql-collector: this kernel has no nl80211, so there are no access points; load cfg80211 and the radio's "
        "driver\nno wireless interfaces\n");
}

}  // namespace
