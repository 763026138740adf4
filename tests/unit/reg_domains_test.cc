// The supported regulatory domains' rows, on a scripted device.
#include "backend/phy/reg_domains.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "row_facts.h"

using namespace dot11;

namespace {

using testing::ElementsAre;
using Row = RegDomainsRow;

const Row& filled() {
    memset(rdinfo, 0x55, sizeof rdinfo);
    EXPECT_EQ(GetRegDomainSupportedEntries(), 1);
    EXPECT_EQ(GetRegDomainSupportedTableData(), 1);
    return rdinfo[0];
}

TEST(RegDomains, ReadsOneKey) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    filled();
    EXPECT_THAT(device.calls,
                ElementsAre("grid interface type=service-set", "get interface wlan0 dot11-current-reg-domain"));
}

TEST(RegDomains, Numbers) {
    expect_numbers<Row>(
        {{"interface", "dot11-current-reg-domain", &Row::dot11RegDomainsSupportValue, 16, zero_when_negative}}, filled);
}

// The code is not compared with those that there are.
TEST(RegDomains, OneDomainForEachInterface) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    device.add_interface("wlan1", 4);
    device.set("interface", "wlan0", "dot11-current-reg-domain", "48");
    device.set("interface", "wlan1", "dot11-current-reg-domain", "12345");
    filled();
    EXPECT_EQ(rdinfo[0].ifIndex, 3U);
    EXPECT_EQ(rdinfo[0].dot11RegDomainsSupportIndex, 1);
    EXPECT_EQ(rdinfo[0].dot11RegDomainsSupportValue, 48);
    EXPECT_EQ(rdinfo[1].ifIndex, 4U);
    EXPECT_EQ(rdinfo[1].dot11RegDomainsSupportIndex, 1);
    EXPECT_EQ(rdinfo[1].dot11RegDomainsSupportValue, 12345);
    device.unset("interface", "wlan1", "dot11-current-reg-domain");
    filled();
    EXPECT_EQ(rdinfo[1].dot11RegDomainsSupportValue, 16);
}

TEST(RegDomains, WithoutMemoryForTheTextTheKeyCountsAsAbsent) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    device.set("interface", "wlan0", "dot11-current-reg-domain", "48");
    ASSERT_EQ(GetRegDomainSupportedEntries(), 1);
    device.fail_allocation(1);
    EXPECT_EQ(GetRegDomainSupportedTableData(), 1);
    EXPECT_EQ(rdinfo[0].dot11RegDomainsSupportValue, 16);
}

}  // namespace
