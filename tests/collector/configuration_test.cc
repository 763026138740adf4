// The operator's configuration file.
#include "configuration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "failure.h"

namespace {

using collector::Configuration;
using collector::load_configuration;
using collector::read_configuration;

TEST(ReadConfiguration, Reads) {
    const struct {
        const char* text;
        Configuration configuration;
    } cases[] = {
        {"", {}},
        {"# nothing\n", {}},
        {"['*']\n", {}},
        {"['*']\nwep-default-key = '1'\n", {{{"*", {{"wep-default-key", "1"}}}}, {}}},
        {"[wlan0]\nname = 'lobby'\n", {{}, {{"wlan0", "lobby"}}}},
        {"[phy0-ap0]\nname = 'ap'\ndot11d = 'up'\n", {{{"phy0-ap0", {{"dot11d", "up"}}}}, {{"phy0-ap0", "ap"}}}},
        {"[wlan0]\nmanufacturer-name = \"\\u00e9\"\n", {{{"wlan0", {{"manufacturer-name", "\xc3\xa9"}}}}, {}}},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text);
        EXPECT_EQ(read_configuration(expected.text, "f"), expected.configuration);
    }
}

std::string refusal(const std::string& text) {
    try {
        read_configuration(text, "f");
        return "was accepted";
    } catch (const collector::Failure& failure) {
        EXPECT_EQ(failure.exit(), collector::Exit::configuration);
        return failure.what();
    }
}

TEST(ReadConfiguration, RefusesWithPlaceAndRemedy) {
    const struct {
        std::string text;
        std::string message;
    } cases[] = {
        {"k = 'v'", "f:1:1: \"k\" belongs to no interface: put it below [\"*\"] or [wlan0]"},
        {"[[wlan0]]", "f:1:3: \"wlan0\" belongs to no interface: put it below [\"*\"] or [wlan0]"},
        {"[wlan0]\nchannel = 6", "f:2:11: the value of \"channel\" is not a string: put it in quotes"},
        {"[wlan0]\nchanel = '6'",
         "f:2:1: \"chanel\" is not a key that can be given here; man cfql-collector lists them"},
        {"[wlan0]\nbss = 'x'", "f:2:1: \"bss\" is not a key that can be given here; man cfql-collector lists them"},
        {"[wlan0]\ntype = 'x'", "f:2:1: \"type\" is not a key that can be given here; man cfql-collector lists them"},
        {"[wlan0]\nrate = '1'", "f:2:1: \"rate\" is not a key that can be given here; man cfql-collector lists them"},
        {"[wlan0]\norigin = 'x'",
         "f:2:1: \"origin\" is not a key that can be given here; man cfql-collector lists them"},
        {"['*']\nname = 'x'", "f:2:1: \"name\" is for one interface: put it below [wlan0_1]"},
        {"[wlan0]\nname = 'sixsix'",
         "f:2:1: \"sixsix\" cannot be served: a name has 1 to 5 letters, digits, \"-\" or \"_\""},
        {"[wlan0]\nname = ''", "f:2:1: \"\" cannot be served: a name has 1 to 5 letters, digits, \"-\" or \"_\""},
        {"[wlan0]\nname = \"a\\u001b\"",
         "f:2:1: \"a\\x1b\" cannot be served: a name has 1 to 5 letters, digits, \"-\" or \"_\""},
        {"[a]\nname = 'x'\n[b]\nname = 'x'", "f:4:1: \"x\" is the name of \"a\" already"},
        {"[wlan0123456789ab]\n", "f:1:2: \"wlan0123456789ab\" is not an interface's name: 1 to 15 octets, or \"*\""},
        {"[wlan0]\nwep-key-1 = \"\\u0000\"", "f:2:1: the value contains a NUL"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text);
        EXPECT_EQ(refusal(expected.text), expected.message);
    }
}

TEST(ReadConfiguration, RefusesWhatIsNotToml) {
    for (const char* text : {"[", "[wlan0\n", "[wlan0]\nk=", "\xff", "[wlan0]\n[wlan0]", "[wlan0]\nk='v'\nk='v'"})
        EXPECT_TRUE(refusal(text).starts_with("f:")) << text;
}

TEST(Configuration, AnInterfacesValueWins) {
    const Configuration configuration = read_configuration("['*']\ndot11d='up'\n[wlan0]\ndot11d='down'\n", "f");
    EXPECT_EQ(*configuration.find("wlan0", "dot11d"), "down");
    EXPECT_EQ(*configuration.find("wlan1", "dot11d"), "up");
    EXPECT_EQ(configuration.find("wlan1", "channel"), nullptr);
}

struct Files : testing::Test {
    Files() {
        char name[] = "/tmp/cfql-test-XXXXXX";
        directory = mkdtemp(name);
    }
    ~Files() override { std::filesystem::remove_all(directory); }

    std::string refusal(const std::string& path) const {
        try {
            load_configuration(path);
            return "was accepted";
        } catch (const collector::Failure& failure) {
            return failure.what();
        }
    }

    std::string directory;
};

TEST_F(Files, AnAbsentFileIsAnEmptyOne) {
    EXPECT_EQ(load_configuration(directory + "/none"), Configuration());
}

TEST_F(Files, IsReadByItsPath) {
    std::ofstream(directory + "/c") << "[wlan0]\nx = 'y'\n";
    EXPECT_TRUE(refusal(directory + "/c").starts_with(directory + "/c:2:1: "));
    std::ofstream(directory + "/c") << "[wlan0]\nname = 'x'\n";
    EXPECT_EQ(load_configuration(directory + "/c").aliases.at("wlan0"), "x");
}

TEST_F(Files, WhatIsNoFileIsRefusedAtOnce) {
    EXPECT_EQ(refusal(directory), directory + ": not a file; name another with --config");
    mkfifo((directory + "/fifo").c_str(), 0600);
    EXPECT_EQ(refusal(directory + "/fifo"), directory + "/fifo: not a file; name another with --config");
    EXPECT_EQ(refusal("/dev/zero"), "/dev/zero: not a file; name another with --config");
}

TEST_F(Files, HugeFilesAreRefused) {
    std::ofstream(directory + "/c") << std::string(65537, '#');
    EXPECT_EQ(refusal(directory + "/c"), directory + "/c: longer than 64 kB; name another with --config");
    std::ofstream(directory + "/c") << std::string(65536, '#');
    EXPECT_EQ(load_configuration(directory + "/c"), Configuration());
}

}  // namespace
