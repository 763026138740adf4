// The PHY operation's rows and writer, on a scripted device.
#include "backend/phy/phy_operation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "row_facts.h"

using namespace dot11;

namespace {

using testing::ElementsAre;
using Row = PhyOperationRow;

const Row& filled() {
    memset(poinfo, 0x55, sizeof poinfo);
    EXPECT_EQ(GetPhyOperationsEntries(), 1);
    EXPECT_EQ(GetPhyOperationsTableData(), 1);
    return poinfo[0];
}

TEST(PhyOperation, ReadsTheKeysInOrder) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",               //
                                          "get interface wlan0 dot11-current-reg-domain",  //
                                          "get interface wlan0 dot11-temp-type",           //
                                          "get interface wlan0 dot11-phy-type"));
}

TEST(PhyOperation, Numbers) {
    const auto phy_type = [](int32_t number) { return number == 0 || number == 3 ? number : 1; };
    expect_numbers<Row>(
        {
            {"interface", "dot11-phy-type", &Row::dot11PHYType, 1, phy_type},
            {"interface", "dot11-current-reg-domain", &Row::dot11CurrentRegDomain, 0, zero_when_negative},
            {"interface", "dot11-temp-type", &Row::dot11TempType, 1, zero_when_negative},
        },
        filled);
}

TEST(PhyOperation, OnlyFourPhyTypes) {
    const struct {
        const char* stored;
        int32_t served;
    } facts[] = {{"-1", 1}, {"0", 0}, {"1", 1}, {"2", 2}, {"3", 3}, {"4", 1}, {"5", 1}, {"6", 1}, {"7", 1}};
    for (const auto& fact : facts) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.set("interface", "wlan0", "dot11-phy-type", fact.stored);
        EXPECT_EQ(filled().dot11PHYType, fact.served) << fact.stored;
    }
}

TEST(PhyOperation, GoesBackToTheDefaultsWhenValuesVanish) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    device.set("interface", "wlan0", "dot11-phy-type", "2");
    device.set("interface", "wlan0", "dot11-current-reg-domain", "48");
    device.set("interface", "wlan0", "dot11-temp-type", "2");
    filled();
    EXPECT_EQ(poinfo[0].dot11PHYType, 2);
    EXPECT_EQ(poinfo[0].dot11CurrentRegDomain, 48);
    EXPECT_EQ(poinfo[0].dot11TempType, 2);
    device.clear_store();
    device.add("interface", "wlan0");
    filled();
    EXPECT_EQ(poinfo[0].dot11PHYType, 1);
    EXPECT_EQ(poinfo[0].dot11CurrentRegDomain, 0);
    EXPECT_EQ(poinfo[0].dot11TempType, 1);
}

TEST(PhyOperation, WithoutMemoryForATextItsKeyCountsAsAbsent) {
    const struct {
        int failing;
        int32_t reg_domain, temp_type, phy_type;
    } facts[] = {{1, 0, 2, 2}, {2, 2, 1, 2}, {3, 2, 2, 1}, {4, 2, 2, 2}};
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.failing);
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        for (const char* key : {"dot11-phy-type", "dot11-current-reg-domain", "dot11-temp-type"})
            device.set("interface", "wlan0", key, "2");
        ASSERT_EQ(GetPhyOperationsEntries(), 1);
        device.fail_allocation(fact.failing);
        EXPECT_EQ(GetPhyOperationsTableData(), 1);
        EXPECT_EQ(poinfo[0].dot11CurrentRegDomain, fact.reg_domain);
        EXPECT_EQ(poinfo[0].dot11TempType, fact.temp_type);
        EXPECT_EQ(poinfo[0].dot11PHYType, fact.phy_type);
    }
}

TEST(PhyOperation, WritesTheRegulatoryDomain) {
    expect_number_written(SetCurrentRegDomain, "dot11-current-reg-domain");
}

}  // namespace
