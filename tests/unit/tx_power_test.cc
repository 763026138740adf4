// The transmit power's rows and writer, on a scripted device.
#include "backend/phy/tx_power.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "row_facts.h"

using namespace dot11;

namespace {

using testing::Each;
using testing::ElementsAre;
using Row = TxPowerRow;

const Row& filled() {
    memset(ptinfo, 0x55, sizeof ptinfo);
    EXPECT_EQ(GetPhyTxPowerEntries(), 1);
    EXPECT_EQ(GetPhyTxPowerTableData(), 1);
    return ptinfo[0];
}

std::vector<int32_t> levels(const Row& row) {
    return {row.dot11TxPowerLevel1, row.dot11TxPowerLevel2, row.dot11TxPowerLevel3, row.dot11TxPowerLevel4,
            row.dot11TxPowerLevel5, row.dot11TxPowerLevel6, row.dot11TxPowerLevel7, row.dot11TxPowerLevel8};
}

TEST(TxPower, ReadsTheKeysInOrderAndOneOfThemForEachLevel) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",              //
                                          "get interface wlan0 num_supported_pow_level",  //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 tx-power",                 //
                                          "get interface wlan0 curr_tx_power_level"));
}

TEST(TxPower, Numbers) {
    const auto parse_level_1 = [](int32_t number) { return number < 0 ? 100 : number; };
    expect_numbers<Row>(
        {
            {"interface", "num_supported_pow_level", &Row::dot11NumberSupportedPowerLevels, 1, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel1, 100, parse_level_1},
            {"interface", "tx-power", &Row::dot11TxPowerLevel2, 100, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel3, 100, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel4, 100, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel5, 100, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel6, 100, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel7, 100, zero_when_negative},
            {"interface", "tx-power", &Row::dot11TxPowerLevel8, 100, zero_when_negative},
            {"interface", "curr_tx_power_level", &Row::dot11CurrentTxPowerLevel, 1, zero_when_negative},
        },
        filled);
}

TEST(TxPower, AllLevelsAreTheOneStored) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    device.set("interface", "wlan0", "tx-power", "17");
    EXPECT_THAT(levels(filled()), Each(17));
    device.set("interface", "wlan0", "tx-power", "-3");
    EXPECT_THAT(levels(filled()), ElementsAre(100, 0, 0, 0, 0, 0, 0, 0));
    device.unset("interface", "wlan0", "tx-power");
    EXPECT_THAT(levels(filled()), Each(100));
}

TEST(TxPower, WithoutMemoryForATextItsKeyCountsAsAbsent) {
    for (int failing = 1; failing <= 11; ++failing) {
        SCOPED_TRACE(failing);
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        for (const char* key : {"num_supported_pow_level", "tx-power", "curr_tx_power_level"})
            device.set("interface", "wlan0", key, "17");
        ASSERT_EQ(GetPhyTxPowerEntries(), 1);
        device.fail_allocation(failing);
        EXPECT_EQ(GetPhyTxPowerTableData(), 1);
        std::vector<int32_t> expected(8, 17);
        if (failing >= 2 && failing <= 9) expected[static_cast<size_t>(failing) - 2] = 100;
        EXPECT_EQ(levels(ptinfo[0]), expected);
        EXPECT_EQ(ptinfo[0].dot11NumberSupportedPowerLevels, failing == 1 ? 1 : 17);
        EXPECT_EQ(ptinfo[0].dot11CurrentTxPowerLevel, failing == 10 ? 1 : 17);
    }
}

TEST(TxPower, WritesTheCurrentLevel) {
    expect_number_written(SetCurrentPowerLevel, "curr_tx_power_level");
}

}  // namespace
