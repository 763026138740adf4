// Names of at most five octets: made, found again, refused.
#include "names.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {

using namespace collector;

TEST(MadeName, IsShortAndNobodyElses) {
    const struct {
        std::uint32_t radio;
        unsigned nth;
        std::optional<std::string> name;
    } cases[] = {
        {0, 0, "0ap0"},   {0, 1, "0ap1"},           {9, 99, "9ap99"}, {10, 0, "10ap0"},
        {10, 9, "10ap9"}, {10, 10, "11ap0"},        {99, 9, "99ap9"}, {99, 10, "10ap0"},
        {100, 0, "0ap0"}, {4294967295, 0, "95ap0"}, {0, 100, {}},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(made_name(expected.radio, expected.nth), expected.name) << expected.radio << ' ' << expected.nth;
}

TEST(MadeName, AllAreMadeNames) {
    for (std::uint32_t radio = 0; radio < 200; ++radio) {
        for (unsigned nth = 0; nth < 100; ++nth)
            ASSERT_TRUE(is_made_name(*made_name(radio, nth))) << radio << ' ' << nth;
    }
}

TEST(MadeName, OthersAreNot) {
    for (const char* name : {"", "ap0", "0ap", "ap", "0ab0", "wlan0", "0ap0x", "1000ap1", "0ap00000", "x0ap0"})
        EXPECT_FALSE(is_made_name(name)) << name;
}

// Links in memory.
struct FakeLinks : Links {
    std::uint32_t index_of(const std::string& name) override { return names.contains(name) ? names[name] : 0; }
    int alternative_names(std::uint32_t interface, std::vector<std::string>& found) override {
        for (const auto& [name, index] : names) {
            if (index == interface) found.push_back(name);
        }
        return 0;
    }
    int add_name(std::uint32_t interface, const std::string& name) override {
        ++added;
        if (error != 0) return error;
        return names.emplace(name, interface).second ? 0 : EEXIST;
    }
    int remove_name(std::uint32_t, const std::string& name) override { return names.erase(name) == 1 ? 0 : ENOENT; }

    std::map<std::string, std::uint32_t> names;
    int error = 0;
    int added = 0;
};

struct NamesTest : testing::Test {
    FakeLinks links;
    Names names{links, Names::Mode::set};
};

TEST_F(NamesTest, FiveOctetsAreServedAsTheyAre) {
    EXPECT_EQ(names.served(3, "wlan0", 0, nullptr).name, "wlan0");
    EXPECT_EQ(links.added, 0);
}

TEST_F(NamesTest, LongerOnesGetAName) {
    EXPECT_EQ(names.served(3, "wlan0_1", 0, nullptr).name, "0ap0");
    EXPECT_EQ(names.served(4, "wlan0_2", 0, nullptr).name, "0ap1");
    EXPECT_EQ(names.served(3, "wlan0_1", 0, nullptr).name, "0ap0");
    EXPECT_EQ(links.names, (std::map<std::string, std::uint32_t>{{"0ap0", 3}, {"0ap1", 4}}));
}

TEST_F(NamesTest, AreFoundAgain) {
    links.names = {{"0ap7", 3}, {"enp3s0f1", 3}};
    EXPECT_EQ(names.served(3, "wlan0_1", 0, nullptr).name, "0ap7");
    EXPECT_EQ(links.added, 0);
}

TEST_F(NamesTest, AreSetAgainWhenTheInterfaceIsMadeAnew) {
    names.served(6, "wlan0_1", 0, nullptr);
    links.names.clear();
    names.forget([](std::uint32_t index) { return index == 6; });
    EXPECT_EQ(names.served(7, "wlan0_1", 0, nullptr).name, "0ap0");
    EXPECT_EQ(links.names, (std::map<std::string, std::uint32_t>{{"0ap0", 7}}));
}

TEST_F(NamesTest, AreSetAgainWhenSomebodyRemovedThem) {
    names.served(6, "wlan0_1", 0, nullptr);
    links.names.clear();
    EXPECT_EQ(names.served(6, "wlan0_1", 0, nullptr).name, "0ap0");
    EXPECT_EQ(links.names.size(), 1U);
}

TEST_F(NamesTest, TheOperatorsName) {
    const std::string lobby = "lobby", hall = "hall";
    EXPECT_EQ(names.served(3, "wlan0_1", 0, &lobby).name, "lobby");
    EXPECT_EQ(names.served(3, "wlan0_1", 0, &hall).name, "hall");
    EXPECT_EQ(names.served(4, "wlan1", 0, &lobby).cause,
              "the name \"lobby\" of the configuration is another interface's: choose another for \"wlan1\"");
}

TEST_F(NamesTest, Refusals) {
    const struct {
        int error;
        const char* beginning;
    } cases[] = {
        {EPERM, "its name is longer than 5 characters, and setting a short one takes CAP_NET_ADMIN"},
        {EOPNOTSUPP, "its name is longer than 5 characters, and kernels before 5.5 have no alternative names"},
        {EEXIST, "every short name is taken"},
        {ENOMEM, "no short name can be set: Cannot allocate memory"},
    };
    for (const auto& expected : cases) {
        links.error = expected.error;
        const Names::Served served = names.served(3, "wlan0_1", 0, nullptr);
        EXPECT_EQ(served.name, "");
        EXPECT_TRUE(served.cause.starts_with(expected.beginning)) << served.cause;
    }
    EXPECT_LE(links.added, 103);
}

TEST_F(NamesTest, WithoutSettingNamesThoseThatAreThereAreTaken) {
    Names quiet(links, Names::Mode::refused);
    EXPECT_EQ(quiet.served(3, "wlan0_1", 0, nullptr).cause,
              "its name is longer than 5 characters, and --no-aliases is given");
    EXPECT_EQ(links.added, 0);
    links.names = {{"0ap7", 3}};
    EXPECT_EQ(quiet.served(3, "wlan0_1", 0, nullptr).name, "0ap7");
}

TEST_F(NamesTest, RemovesItsOwn) {
    const std::string lobby = "lobby";
    links.names = {{"0ap7", 3}, {"lobby", 3}, {"enp3s0f1", 3}, {"0ap8", 4}};
    EXPECT_EQ(names.remove(3, &lobby), (std::vector<std::string>{"0ap7", "lobby"}));
    EXPECT_EQ(links.names, (std::map<std::string, std::uint32_t>{{"enp3s0f1", 3}, {"0ap8", 4}}));
}

// ---- The kernel's, on real interfaces in a network namespace of the test's own.

template <class Body>
int in_namespace(Body body) {
    const pid_t child = fork();
    if (child == 0) {
        if (unshare(CLONE_NEWNET) != 0) _exit(99);
        if (system("ip link add phy0-ap0 type veth peer name phy0-ap1") != 0) _exit(98);
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

#define REQUIRE(condition) \
    if (!(condition)) return fprintf(stderr, "%d: not so: %s\n", __LINE__, #condition), 1

struct KernelNames : testing::Test {
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root makes network interfaces";
    }
};

TEST_F(KernelNames, AreSetFoundAndRemoved) {
    EXPECT_EQ(
        in_namespace([] {
            KernelLinks links;
            const std::uint32_t first = if_nametoindex("phy0-ap0"), second = if_nametoindex("phy0-ap1");
            {
                Names names(links, Names::Mode::set);
                REQUIRE(names.served(first, "phy0-ap0", 0, nullptr).name == "0ap0");
                REQUIRE(names.served(second, "phy0-ap1", 0, nullptr).name == "0ap1");
            }
            REQUIRE(if_nametoindex("0ap0") == first && if_nametoindex("0ap1") == second);
            Names again(links, Names::Mode::set);
            REQUIRE(again.served(second, "phy0-ap1", 0, nullptr).name == "0ap1");
            const std::string lobby = "lobby";
            REQUIRE(again.served(first, "phy0-ap0", 0, &lobby).name == "lobby");
            REQUIRE(if_nametoindex("lobby") == first);
            REQUIRE(again.served(second, "phy0-ap1", 0, &lobby).name.empty());
            REQUIRE(again.remove(first, &lobby).size() == 2);
            REQUIRE(if_nametoindex("0ap0") == 0 && if_nametoindex("lobby") == 0 && if_nametoindex("0ap1") == second);
            return 0;
        }),
        0);
}

TEST_F(KernelNames, ErrorsOfTheKernel) {
    EXPECT_EQ(in_namespace([] {
                  KernelLinks links;
                  const std::uint32_t first = if_nametoindex("phy0-ap0");
                  REQUIRE(links.add_name(first, "phy0-ap1") == EEXIST);
                  REQUIRE(links.add_name(first, "x") == 0 && links.add_name(first, "x") == EEXIST);
                  REQUIRE(links.remove_name(first, "y") == ENOENT);
                  REQUIRE(links.add_name(first, std::string(127, 'a')) == 0);
                  REQUIRE(links.add_name(first, std::string(128, 'b')) == EINVAL);
                  REQUIRE(links.add_name(first, "") == EINVAL);
                  REQUIRE(links.add_name(4711, "z") == ENODEV || links.add_name(4711, "z") == EINVAL);
                  std::vector<std::string> names;
                  REQUIRE(links.alternative_names(4711, names) == ENODEV);
                  REQUIRE(links.alternative_names(first, names) == 0 && names.size() == 2);
                  return 0;
              }),
              0);
}

TEST_F(KernelNames, WithoutTheRightTheRowIsLeftOut) {
    EXPECT_EQ(in_namespace([] {
                  const std::uint32_t first = if_nametoindex("phy0-ap0");
                  REQUIRE(setuid(65534) == 0);
                  KernelLinks links;
                  Names names(links, Names::Mode::set);
                  const Names::Served served = names.served(first, "phy0-ap0", 0, nullptr);
                  REQUIRE(served.name.empty() && served.cause.find("CAP_NET_ADMIN") != std::string::npos);
                  return 0;
              }),
              0);
}

}  // namespace
