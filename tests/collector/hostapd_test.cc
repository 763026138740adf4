// hostapd's answers, and a hostapd that is slow, hung, dead, strange or huge.
#include "hostapd.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <thread>

#include "clock.h"

namespace {

using namespace collector;

TEST(Unescaped, Octets) {
    const struct {
        const char* escaped;
        std::string octets;
    } cases[] = {
        {"", ""},
        {"plain", "plain"},
        {R"(a\\b)", "a\\b"},
        {R"(\")", "\""},
        {R"(\e\n\r\t)", "\033\n\r\t"},
        {R"(\x00\xc3\xA4)", std::string("\0\xc3\xa4", 3)},
        {R"(a\\b\xc3\xa4 \x01)", "a\\b\xc3\xa4 \x01"},
        {R"(\x4)", "x4"},
        {R"(\x)", "x"},
        {R"(\xzz)", "xzz"},
        {"\\", "\\"},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(unescaped(expected.escaped), expected.octets) << expected.escaped;
}

constexpr char status[] =
    "state=ENABLED\nphy=phy0\nfreq=2437\nnum_sta_non_erp=0\nbeacon_int=100\ndtim_period=2\n"
    "supported_rates=02 04 0b 16\nmax_txpower=20\n"
    "bss[0]=wlan0\nbssid[0]=02:00:00:00:00:00\nssid[0]=lab\nnum_sta[0]=1\n"
    "bss[1]=wlan0_1\nbssid[1]=02:00:00:00:00:01\nssid[1]=gu\\x65sts=\\\\\nnum_sta[1]=0\n";
constexpr char config[] =
    "bssid=02:00:00:00:00:00\nssid=lab\nwpa=2\nkey_mgmt=WPA-PSK SAE \ngroup_cipher=CCMP\nrsn_pairwise_cipher=CCMP\n";

TEST(ReadStatus, OfTheInterfaceAsked) {
    HostapdBss bss;
    ASSERT_TRUE(read_status(status, "wlan0_1", bss));
    EXPECT_TRUE(bss.enabled);
    EXPECT_EQ(bss.ssid, "guests=\\");
    EXPECT_EQ(bss.beacon, 100U);
    EXPECT_EQ(bss.dtim, 2U);
    ASSERT_TRUE(read_status(status, "wlan0", bss));
    EXPECT_EQ(bss.ssid, "lab");
}

TEST(ReadStatus, WhatIsWrongIsAbsent) {
    const struct {
        const char* name;
        std::string answer;
        bool is_answer, enabled;
        std::optional<std::uint32_t> beacon;
        std::optional<std::string> ssid;
    } cases[] = {
        {"nothing", "", false, false, {}, {}},
        {"unknown command", "UNKNOWN COMMAND\n", false, false, {}, {}},
        {"failure", "FAIL\n", false, false, {}, {}},
        {"not enabled", "state=DISABLED\n", true, false, {}, {}},
        {"beacon 0", "state=ENABLED\nbeacon_int=0\n", true, true, {}, {}},
        {"beacon too large", "state=ENABLED\nbeacon_int=65536\n", true, true, {}, {}},
        {"beacon no number", "state=ENABLED\nbeacon_int=1x\n", true, true, {}, {}},
        {"another's SSID", "state=ENABLED\nbss[0]=wlan9\nssid[0]=x\n", true, true, {}, {}},
        {"a long SSID",
         "state=ENABLED\nbss[0]=wlan0\nssid[0]=" + std::string(100, 'x'),
         true,
         true,
         {},
         std::string(32, 'x')},
        {"an empty SSID", "state=ENABLED\nbss[0]=wlan0\nssid[0]=\n", true, true, {}, {}},
        {"an SSID with NUL", "state=ENABLED\nbss[0]=wlan0\nssid[0]=a\\x00b\n", true, true, {}, "a"},
        {"an SSID that looks like a line",
         "state=ENABLED\nbss[0]=wlan0\nssid[0]=x\\nbeacon_int=7\n",
         true,
         true,
         {},
         "x\nbeacon_int=7"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        HostapdBss bss;
        EXPECT_EQ(read_status(expected.answer, "wlan0", bss), expected.is_answer);
        EXPECT_EQ(bss.enabled, expected.enabled);
        EXPECT_EQ(bss.beacon, expected.beacon);
        EXPECT_EQ(bss.ssid, expected.ssid);
    }
}

TEST(ReadConfig, Security) {
    const struct {
        const char* name;
        std::string answer;
        bool is_answer;
        std::uint8_t wpa;
        std::optional<std::string> suites;
    } cases[] = {
        {"WPA2", config, true, 2, "WPA-PSK SAE"},
        {"open", "bssid=02:00:00:00:00:00\nssid=lab\n", true, 0, ""},
        {"octets for a terminal", "ssid=x\nwpa=2\nkey_mgmt=\x1b[31m\n", true, 2, ""},
        {"too long", "ssid=x\nwpa=2\nkey_mgmt=" + std::string(129, 'A') + "\n", true, 2, ""},
        {"wpa out of range", "ssid=x\nwpa=4\nkey_mgmt=SAE\n", true, 0, "SAE"},
        {"failure", "FAIL\n", false, 0, {}},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        HostapdBss bss;
        EXPECT_EQ(read_config(expected.answer, bss), expected.is_answer);
        EXPECT_EQ(bss.wpa, expected.wpa);
        EXPECT_EQ(bss.suites, expected.suites);
    }
}

// ---- Sockets

// A directory with sockets; one thread answers on all of them.
class Peer {
  public:
    using Reply = std::function<std::optional<std::string>(const std::string& command)>;

    explicit Peer(const std::string& path, Reply reply) : path_(path), reply_(std::move(reply)) {
        socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) abort();
        if (reply_) thread_ = std::thread([this] { serve(); });
    }
    ~Peer() {
        ended_ = true;
        if (thread_.joinable()) thread_.join();
        close(socket_);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    int asked() const { return asked_; }

  private:
    void serve() {
        while (!ended_) {
            pollfd wanted = {socket_, POLLIN, 0};
            if (poll(&wanted, 1, 10) <= 0) continue;
            char buffer[256];
            sockaddr_un from = {};
            socklen_t length = sizeof from;
            const ssize_t size =
                recvfrom(socket_, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&from), &length);
            if (size <= 0) continue;
            ++asked_;
            const std::optional<std::string> answer = reply_({buffer, static_cast<std::size_t>(size)});
            if (answer) {
                sendto(socket_, answer->data(), answer->size(), 0, reinterpret_cast<sockaddr*>(&from), length);
            }
        }
    }

    std::string path_;
    Reply reply_;
    int socket_ = -1;
    std::atomic<bool> ended_ = false;
    std::atomic<int> asked_ = 0;
    std::thread thread_;
};

std::optional<std::string> well(const std::string& command) {
    if (command == "STATUS") return status;
    if (command == "GET_CONFIG") return config;
    return "UNKNOWN COMMAND\n";
}

struct Sockets : testing::Test {
    Sockets() {
        char name[] = "/tmp/cfql-test-XXXXXX";
        directory = mkdtemp(name);
    }
    ~Sockets() override { std::filesystem::remove_all(directory); }

    std::string at(const std::string& interface) const { return directory + '/' + interface; }

    std::string directory;
    HostapdBss bss;
};

TEST_F(Sockets, Answers) {
    const Peer peer(at("wlan0"), well);
    Hostapd hostapd(directory);
    hostapd.begin_pass(0);
    ASSERT_EQ(hostapd.ask("wlan0", 0, bss), Answer::told);
    EXPECT_EQ(bss.ssid, "lab");
    EXPECT_EQ(bss.suites, "WPA-PSK SAE");
    EXPECT_EQ(bss.wpa, 2);
}

TEST_F(Sockets, LeavesNoFileBehind) {
    const Peer peer(at("wlan0"), well);
    Hostapd hostapd(directory);
    hostapd.begin_pass(0);
    hostapd.ask("wlan0", 0, bss);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory), {}), 1);
}

TEST_F(Sockets, Absent) {
    Hostapd hostapd(directory);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::absent);
    EXPECT_EQ(hostapd.ask(std::string(200, 'x'), 0, bss), Answer::absent);
}

TEST_F(Sockets, DeadLeavesItsSocket) {
    { const Peer peer(at("wlan0"), well); }
    Hostapd hostapd(directory);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::dead);
}

TEST_F(Sockets, Strange) {
    const struct {
        const char* name;
        Peer::Reply reply;
    } cases[] = {
        {"another program", [](const std::string&) { return std::optional<std::string>("hello"); }},
        {"nothing in it", [](const std::string&) { return std::optional<std::string>(""); }},
        {"FAIL", [](const std::string&) { return std::optional<std::string>("FAIL\n"); }},
        {"huge",
         [](const std::string&) { return std::optional<std::string>(std::string(status) + std::string(9000, 'x')); }},
        {"no configuration",
         [](const std::string& command) {
             return std::optional<std::string>(command == "STATUS" ? status : "FAIL\n");
         }},
    };
    int i = 0;
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        const std::string interface = "w" + std::to_string(i++);
        const Peer peer(at(interface), expected.reply);
        Hostapd hostapd(directory);
        hostapd.begin_pass(0);
        EXPECT_EQ(hostapd.ask(interface, 0, bss), Answer::garbage);
        EXPECT_EQ(bss.ssid, std::nullopt);
    }
}

TEST_F(Sockets, ASocketOfAnotherKindIsStrange) {
    const int other = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    at("wlan0").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(other, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    listen(other, 1);
    Hostapd hostapd(directory);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::garbage);
    close(other);
}

TEST_F(Sockets, Forbidden) {
    if (geteuid() != 0) GTEST_SKIP() << "only root becomes another user";
    const Peer peer(at("wlan0"), well);
    ASSERT_EQ(chmod(directory.c_str(), 0755), 0);
    ASSERT_EQ(chmod(at("wlan0").c_str(), 0770), 0);
    const pid_t child = fork();
    if (child == 0) {
        if (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0) _exit(99);
        Hostapd hostapd(directory);
        _exit(hostapd.ask("wlan0", 0, bss) == Answer::forbidden ? 0 : 1);
    }
    int result = 0;
    waitpid(child, &result, 0);
    EXPECT_EQ(result, 0);
}

TEST_F(Sockets, HungIsNotAskedAgainInThePass) {
    const Peer hung(at("wlan0"), nullptr), same_radio(at("wlan0_1"), nullptr);
    const Peer other(at("wlan1"), well);
    Hostapd hostapd(directory);
    hostapd.begin_pass(0);
    const std::int64_t begin = now_ms();
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::late);
    EXPECT_GE(now_ms() - begin, 200);
    EXPECT_EQ(hostapd.ask("wlan0_1", 0, bss), Answer::skipped);
    EXPECT_EQ(hostapd.ask("wlan1", 1, bss), Answer::told);
}

TEST_F(Sockets, OneHostapdOfTwoRadiosIsKnownByItsProcess) {
    std::atomic<bool> hung = false;
    const auto answer = [&](const std::string& command) { return hung ? std::nullopt : well(command); };
    const Peer first(at("wlan0"), answer), second(at("wlan1"), answer);
    Hostapd hostapd(directory);
    hostapd.begin_pass(0);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::told);
    EXPECT_EQ(hostapd.ask("wlan1", 1, bss), Answer::told);
    hung = true;
    hostapd.begin_pass(10000);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::late);
    EXPECT_EQ(hostapd.ask("wlan1", 1, bss), Answer::skipped);
}

TEST_F(Sockets, AfterThreeLatePassesAMinutePasses) {
    std::atomic<bool> hung = true;
    const Peer peer(at("wlan0"), [&](const std::string& command) { return hung ? std::nullopt : well(command); });
    Hostapd hostapd(directory);
    const struct {
        std::int64_t now;
        Answer answer;
    } passes[] = {
        {0, Answer::late},        {10000, Answer::late}, {20000, Answer::late},    {30000, Answer::skipped},
        {79999, Answer::skipped}, {80000, Answer::late}, {90000, Answer::skipped}, {140000, Answer::late},
    };
    for (const auto& pass : passes) {
        hostapd.begin_pass(pass.now);
        EXPECT_EQ(hostapd.ask("wlan0", 0, bss), pass.answer) << pass.now;
        EXPECT_EQ(hostapd.is_hung("wlan0", 0), pass.now >= 20000) << pass.now;
    }
    hung = false;
    hostapd.begin_pass(200000);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::told);
    EXPECT_FALSE(hostapd.is_hung("wlan0", 0));
    hostapd.begin_pass(210000);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::told);
}

// It reads no more: its queue fills, and sending fails instead of waiting.
TEST_F(Sockets, AFullQueueIsLate) {
    const Peer peer(at("wlan0"), nullptr);
    Hostapd hostapd(directory);
    for (int i = 0; i < 3000; ++i) {
        const int filler = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        at("wlan0").copy(address.sun_path, sizeof address.sun_path - 1);
        const bool full = sendto(filler, "x", 1, 0, reinterpret_cast<sockaddr*>(&address), sizeof address) < 0;
        close(filler);
        if (full) break;
    }
    hostapd.begin_pass(0);
    EXPECT_EQ(hostapd.ask("wlan0", 0, bss), Answer::late);
}

}  // namespace
