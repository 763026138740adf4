// The privacy table's rows, on a scripted device.
#include "backend/smt/privacy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "row_facts.h"
#include "rows.h"
#include "scripted.h"

using namespace dot11;

namespace {

using std::to_string;
using testing::ElementsAre;

class Privacy : public testing::Test {
  protected:
    Privacy() { device.add_interface("wlan0", 3); }

    int fill() {
        EXPECT_EQ(GetPrivacyEntries(), 1);
        const int result = GetPrivacyTableData();
        EXPECT_TRUE(all_released(priv_info));
        return result;
    }

    static Fields shown() {
        const PrivacyRow& row = pinfo[0];
        return {
            {"ifIndex", to_string(row.ifIndex)},
            {"dot11PrivacyInvoked", to_string(row.dot11PrivacyInvoked)},
            {"dot11WEPDefaultKeyID", to_string(row.dot11WEPDefaultKeyID)},
            {"dot11WEPKeyMappingLength", to_string(row.dot11WEPKeyMappingLength)},
            {"dot11ExcludeUnencrypted", to_string(row.dot11ExcludeUnencrypted)},
            {"dot11WEPICVErrorCount", to_string(row.dot11WEPICVErrorCount)},
            {"dot11WEPExcludedCount", to_string(row.dot11WEPExcludedCount)},
        };
    }

    Fields filled() {
        EXPECT_EQ(fill(), 1);
        return shown();
    }

    void set(const std::string& key, const std::string& value) { device.set("interface", "wlan0", key, value); }

    ScriptedDevice device;
};

const Fields defaults = {
    {"ifIndex", "3"},
    {"dot11PrivacyInvoked", "2"},
    {"dot11WEPDefaultKeyID", "0"},
    {"dot11WEPKeyMappingLength", "10"},
    {"dot11ExcludeUnencrypted", "2"},
    {"dot11WEPICVErrorCount", "0"},
    {"dot11WEPExcludedCount", "0"},
};

TEST_F(Privacy, ReadsTheKeysInOrder) {
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",            //
                                          "get interface wlan0 dot11-privacy-invoked",  //
                                          "get interface wlan0 wep-default-key",        //
                                          "get interface wlan0 wep-key-mapping-length"));
}

TEST_F(Privacy, HasADefaultForEveryMissingKey) {
    memset(&pinfo[0], 0xee, sizeof pinfo[0]);
    EXPECT_EQ(filled(), defaults);
}

TEST_F(Privacy, ServesEveryKeyUntilItVanishes) {
    set("dot11-privacy-invoked", "1");
    set("wep-default-key", "3");
    set("wep-key-mapping-length", "26");
    EXPECT_EQ(
        differences(defaults, filled()),
        (Fields{{"dot11PrivacyInvoked", "1"}, {"dot11WEPDefaultKeyID", "3"}, {"dot11WEPKeyMappingLength", "26"}}));
    device.clear_store();
    device.add_interface("wlan0", 3);
    EXPECT_EQ(filled(), defaults);
}

TEST_F(Privacy, HasNoNegativeNumbers) {
    using Row = PrivacyRow;
    // clang-format off
    expect_numbers<Row>(
        device,
        {
            {"interface", "dot11-privacy-invoked", &Row::dot11PrivacyInvoked, 2, zero_when_negative},
            {"interface", "wep-default-key", &Row::dot11WEPDefaultKeyID, 0, zero_when_negative},
            {"interface", "wep-key-mapping-length", &Row::dot11WEPKeyMappingLength, 10, zero_when_negative},
        },
        [this]() -> const Row& { filled(); return pinfo[0]; });
    // clang-format on
}

// The first two allocations are the enumeration's.
TEST_F(Privacy, LosesOneFieldWithoutMemoryForIt) {
    set("dot11-privacy-invoked", "1");
    set("wep-default-key", "3");
    set("wep-key-mapping-length", "26");
    const Losses losses = {
        Fields{},
        Fields{},
        Fields{{"dot11PrivacyInvoked", "2"}},
        Fields{{"dot11WEPDefaultKeyID", "0"}},
        Fields{{"dot11WEPKeyMappingLength", "10"}},
    };
    expect_losses(
        device, losses, [this] { return fill(); }, shown);
}

}  // namespace
