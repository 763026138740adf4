// The DSSS channel's rows, on a scripted device with the driver's files.
#include "backend/phy/dsss.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "row_facts.h"

using namespace dot11;

namespace {

using testing::ElementsAre;
using Row = DsssRow;

const std::string first_file = "/proc/net/mura/wlan0.11/info";
const std::string second_file = "/proc/net/mura/wlan1.11/info";

const Row& filled() {
    memset(pdsssinfo, 0, sizeof pdsssinfo);
    pdsssinfo[0].dot11CurrentChannel = pdsssinfo[0].dot11EDThreshold = 0x55;
    EXPECT_EQ(GetPhyDsssEntries(), 1);
    EXPECT_EQ(GetPhyDsssTableData(), 1);
    return pdsssinfo[0];
}

TEST(Dsss, ReadsTheChannelOfTheRadioWithTheInterfacesName) {
    ScriptedDevice device;
    device.add_interface("wlan1", 4);
    device.add_interface("wlan0", 3);
    device.set("radio", "wlan0", "channel", "11");
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",  //
                                          "get radio wlan1 channel",          //
                                          "get radio wlan0 channel"));
    EXPECT_EQ(pdsssinfo[0].dot11CurrentChannel, 6);
    EXPECT_EQ(pdsssinfo[1].dot11CurrentChannel, 11);
}

TEST(Dsss, HandsBackTheChannelsAnswerBehindTheFile) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    device.set("radio", "wlan0", "channel", "11");
    device.shows_releases = true;
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",  //
                                          "release interface",                //
                                          "get radio wlan0 channel",          //
                                          "open " + first_file,               //
                                          "release radio wlan0 channel"));
}

TEST(Dsss, Numbers) {
    expect_numbers<Row>({{"radio", "channel", &Row::dot11CurrentChannel, 6, as_it_is}}, filled);
}

TEST(Dsss, AChannelIsNotTakenFromTheRowBefore) {
    for (const Nodes& absent : absent_answers("channel")) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.add_interface("wlan1", 4);
        device.set("radio", "wlan0", "channel", "11");
        device.answer("radio", "wlan1", "channel", absent);
        EXPECT_EQ(filled().dot11CurrentChannel, 11);
        EXPECT_EQ(pdsssinfo[1].dot11CurrentChannel, 6) << testing::PrintToString(absent);
    }
}

TEST(Dsss, NeverWritesTheCcaModes) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    pdsssinfo[0].dot11CCAModeSupported = 17;
    pdsssinfo[0].dot11CurrentCCAMode = 18;
    ASSERT_EQ(GetPhyDsssEntries(), 1);
    ASSERT_EQ(GetPhyDsssTableData(), 1);
    EXPECT_EQ(pdsssinfo[0].dot11CCAModeSupported, 17);
    EXPECT_EQ(pdsssinfo[0].dot11CurrentCCAMode, 18);
}

TEST(Dsss, FilesAreNumberedByTheRowsPosition) {
    ScriptedDevice device;
    device.add_interface("wlan1", 4);
    device.add_interface("wlan0", 3);
    device.files = {{first_file, "caThreshold=-60\n"}, {second_file, "caThreshold=-61\n"}};
    filled();
    EXPECT_THAT(device.opened, ElementsAre(first_file, second_file));
    EXPECT_EQ(pdsssinfo[0].dot11EDThreshold, -60);
    EXPECT_EQ(pdsssinfo[1].dot11EDThreshold, -61);
    device.files.erase(first_file);
    filled();
    EXPECT_EQ(pdsssinfo[0].dot11EDThreshold, 0);
    EXPECT_EQ(pdsssinfo[1].dot11EDThreshold, -61);
}

TEST(Dsss, TheLastRowsFile) {
    ScriptedDevice device;
    device.interfaces["wlan0"] = 3;
    device.answer_grid("interface", Nodes(128, {"name", "wlan0"}));
    filled();
    EXPECT_EQ(device.opened.size(), 128U);
    EXPECT_EQ(device.opened.back(), "/proc/net/mura/wlan127.11/info");
}

using namespace std::string_literals;
const std::string other_lines(1023, '\n');
const struct {
    std::string file;
    int32_t threshold;
} thresholds[] = {
    {"caThreshold=-62\n", -62},
    {"caThreshold=-62", -62},
    {"caThreshold=+7\n", 7},
    {"noise=3\r\ncaThreshold=-62\r\nrate=4\r\n", -62},
    {"xcaThresholdOld=5\ncaThreshold=-70\n", 5},  // anywhere in a line, and the first such line alone counts
    {"caThreshold\ncaThreshold=-70\n", 0},        // though it has no value
    {"caThreshold = -70\n", -70},
    {"caThreshold=\t\v -70\n", -70},
    {"caThreshold=- 70\n", 0},
    {"caThreshold=12dBm\n", 12},
    {"caThreshold=high\n", 0},
    {"caThreshold=\n", 0},
    {"caThreshold=\n5\n", 0},
    {"caThreshold=", 0},
    {"caThreshold:5\n", 0},
    {"a=9 caThreshold=4\n", 9},  // the line's first '='
    {"CATHRESHOLD=5\n", 0},
    {"noise=3\n", 0},
    {"", 0},
    {"caThreshold=2147483647\n", INT32_MAX},
    {"caThreshold=2147483648\n", INT32_MAX},
    {"caThreshold=-2147483648\n", INT32_MIN},
    {"caThreshold=-99999999999\n", INT32_MIN},
    {"caThreshold=9999999999999999\n", INT32_MAX},
    {"caThreshold=" + std::string(400, '9') + "\n", INT32_MAX},
    {"caThreshold=0000000000000042\n", 42},          // sixteen characters
    {"caThreshold=00000000000000042\n", 4},          // are all that is taken
    {"caThreshold=               -5\n", 0},          // blanks count too
    {"caThreshold=              -5\n", -5},          //
    {std::string(499, 'x') + "caThreshold=5\n", 0},  // '=' is the 511th character: the line ends behind it
    {std::string(498, 'x') + "caThreshold=57\n", 5},
    {std::string(505, 'x') + "caThreshold=5\n", 0},  // the key stands in two pieces of the line
    {std::string(511, 'x') + "caThreshold=5\n", 5},
    {"\0caThreshold=5\n"s, 0},
    {"caThreshold\0=5\n"s, 0},
    {"caThreshold=\0005\n"s, 0},
    {"\xff\xfe\x80\ncaThreshold=5\n", 5},
    {std::string(100'000, '\xff') + "\ncaThreshold=5\n", 5},
    {std::string(10'000, '\0') + "\ncaThreshold=5\n", 5},
    {other_lines + "caThreshold=5\n", 5},
    {other_lines + "\ncaThreshold=5\n", 0},  // the 1025th line
    {std::string(2'000'000, 'x') + "\ncaThreshold=5\n", 0},
};

TEST(Dsss, Threshold) {
    for (const auto& fact : thresholds) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.files[first_file] = fact.file;
        EXPECT_EQ(filled().dot11EDThreshold, fact.threshold) << fact.file.substr(0, 40);
    }
}

TEST(Dsss, WithoutMemoryATextCountsAsAbsent) {
    const struct {
        int failing;
        int32_t channel, threshold;
    } facts[] = {{1, 6, -62}, {2, 11, 0}, {3, 11, -62}};
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.failing);
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.set("radio", "wlan0", "channel", "11");
        device.files[first_file] = "caThreshold=-62\n";
        ASSERT_EQ(GetPhyDsssEntries(), 1);
        device.fail_allocation(fact.failing);
        EXPECT_EQ(GetPhyDsssTableData(), 1);
        EXPECT_EQ(pdsssinfo[0].dot11CurrentChannel, fact.channel);
        EXPECT_EQ(pdsssinfo[0].dot11EDThreshold, fact.threshold);
    }
}

TEST(Dsss, TheThresholdsLengthIsFourWhereThereIsALine) {
    const struct {
        const char* file;
        uint32_t length;  // of a scratch whose length was 9
    } facts[] = {{"noise=3\n", 9}, {"caThreshold\n", 4}, {"caThreshold=0\n", 4}};
    for (const auto& fact : facts) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.files[first_file] = fact.file;
        phy_dsss_info.ca_threshold.length = 9;
        filled();
        EXPECT_EQ(phy_dsss_info.ca_threshold.length, fact.length) << fact.file;
    }
}

TEST(Dsss, KeepsNoTextPastTheFill) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    device.set("radio", "wlan0", "channel", "11");
    device.files[first_file] = "caThreshold=-62\n";
    filled();
    EXPECT_EQ(phy_dsss_info.channel.text, nullptr);
    EXPECT_EQ(phy_dsss_info.ca_threshold.text, nullptr);
    EXPECT_EQ(phy_dsss_info.ca_threshold.length, 4U);
}

}  // namespace
