// The WEP default keys' rows, on a scripted device.
#include "backend/smt/wep_default_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "rows.h"
#include "scripted.h"

using namespace dot11;

namespace {

using testing::ElementsAre;

class WEPDefaultKeys : public testing::Test {
  protected:
    WEPDefaultKeys() {
        memset(winfo, 0, sizeof winfo);
        device.add_interface("wlan0", 3);
    }

    void fill() {
        ASSERT_EQ(GetDefaultWEPKeysEntries(), 1);
        ASSERT_EQ(GetDefaultWEPKeysTableData(), 1);
        ASSERT_TRUE(all_released(wep_info));
    }

    void set(const std::string& key, const std::string& value) { device.set("interface", "wlan0", key, value); }

    static std::string value_of(const WEPDefaultKeysRow& row) {
        EXPECT_LE(row.dot11WEPDefaultKeyValueLen, 64U);
        return {reinterpret_cast<const char*>(row.dot11WEPDefaultKeyValue), row.dot11WEPDefaultKeyValueLen};
    }

    std::string filled(uint32_t number = 1) {
        fill();
        return value_of(winfo[number - 1]);
    }

    ScriptedDevice device;
};

const std::string missing(5, '\0');

TEST_F(WEPDefaultKeys, ReadsTheKeysInOrder) {
    fill();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",  //
                                          "get interface wlan0 wep-key-1",    //
                                          "get interface wlan0 wep-key-2",    //
                                          "get interface wlan0 wep-key-3",    //
                                          "get interface wlan0 wep-key-4"));
}

TEST_F(WEPDefaultKeys, HasFourRowsForEveryInterface) {
    device.add_interface("wlan1", 5);
    for (const char* key : {"wep-key-1", "wep-key-2", "wep-key-4"})
        set(key, std::string("key ") + key[8]);
    device.set("interface", "wlan1", "wep-key-2", "other");
    winfo[8].ifIndex = 77;
    fill();
    const struct {
        uint32_t interface, number;
        std::string value;
    } expected[] = {
        {3, 1, "key 1"}, {3, 2, "key 2"}, {3, 3, missing}, {3, 4, "key 4"},
        {5, 1, missing}, {5, 2, "other"}, {5, 3, missing}, {5, 4, missing},
    };
    for (size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(winfo[i].ifIndex, expected[i].interface) << i;
        EXPECT_EQ(winfo[i].dot11WEPDefaultKeyIndex, expected[i].number) << i;
        EXPECT_EQ(value_of(winfo[i]), expected[i].value) << i;
    }
    EXPECT_EQ(winfo[8].ifIndex, 77U);
}

TEST_F(WEPDefaultKeys, ServesKeysAsTheyAreStored) {
    for (const size_t length : {1U, 5U, 10U, 13U, 26U, 58U, 63U, 64U}) {
        const std::string value = std::string(length - 1, 'k') + "\xff";
        set("wep-key-1", value);
        EXPECT_EQ(filled(), value);
    }
}

TEST_F(WEPDefaultKeys, ClipsKeys) {
    for (const size_t length : {65U, 100U, 4096U}) {
        set("wep-key-1", std::string(length, 'k'));
        EXPECT_EQ(filled(), std::string(64, 'k')) << length;
        EXPECT_EQ(winfo[1].ifIndex, 3U);
    }
}

// A key that vanishes leaves all but its first octet, and is served as five octets.
TEST_F(WEPDefaultKeys, KeepsTheRestOfAVanishedKey) {
    set("wep-key-2", "0123456789");
    EXPECT_EQ(filled(2), "0123456789");
    device.unset("interface", "wlan0", "wep-key-2");
    EXPECT_EQ(filled(2), (std::string{'\0', '1', '2', '3', '4'}));
    EXPECT_EQ(hex(winfo[1].dot11WEPDefaultKeyValue + 5, 5), "35 36 37 38 39");
}

TEST_F(WEPDefaultKeys, AcceptsTheFirstNodeOfAnyDefaultKey) {
    const struct {
        std::vector<ScriptedDevice::Pair> nodes;
        std::string value;
    } facts[] = {
        {{{"wep-key-1", "FAKE1"}}, "FAKE1"},
        {{{"wep-key-2", "FAKE2"}}, "FAKE2"},
        {{{"wep-key-4", "FAKE4"}, {"wep-key-1", "FAKE1"}}, "FAKE4"},
        {{{"wep-key-5", "FAKE5"}}, missing},
        {{{"wep-key-", "FAKE0"}}, missing},
        {{{"other", "FAKE0"}, {"wep-key-1", "FAKE1"}}, missing},
        {{{std::nullopt, "FAKE0"}}, missing},
        {{{"wep-key-1", std::nullopt}}, missing},
        {{{"wep-key-1", ""}}, missing},
        {{{"wep-key-2", ""}, {"wep-key-1", "FAKE1"}}, missing},
        {{}, missing},
    };
    for (const auto& fact : facts) {
        memset(winfo, 0, sizeof winfo);
        device.answer("interface", "wlan0", "wep-key-1", fact.nodes);
        EXPECT_EQ(filled(), fact.value) << testing::PrintToString(fact.nodes);
    }
}

TEST_F(WEPDefaultKeys, EndsTheFillWithoutMemoryForAKeysName) {
    for (const char* key : {"wep-key-1", "wep-key-2", "wep-key-3", "wep-key-4"})
        set(key, "FAKE0");
    // The first two allocations are the enumeration's; a row takes one for the key's name, and one for its value.
    for (int n = 1; n <= 10; ++n) {
        const bool name_fails = n > 2 && n % 2 == 1;
        const auto row = static_cast<uint32_t>((n - 3) / 2);
        memset(winfo, 0, sizeof winfo);
        device.fail_allocation(n);
        EXPECT_EQ(GetDefaultWEPKeysEntries(), 1);
        EXPECT_EQ(GetDefaultWEPKeysTableData(), name_fails ? -1 : 1) << "allocation " << n;
        EXPECT_TRUE(device.allocation_failed());
        EXPECT_TRUE(all_released(wep_info));
        for (uint32_t i = 0; i < 4; ++i) {
            const bool filled = n <= 2 || i < row || (i > row && !name_fails);
            const std::string expected = filled ? "FAKE0" : name_fails ? "" : missing;
            EXPECT_EQ(value_of(winfo[i]), expected) << "allocation " << n << ", row " << i;
            const bool begun = !name_fails || i <= row;  // the indexes come before the name
            EXPECT_EQ(winfo[i].ifIndex, begun ? 3U : 0U) << "allocation " << n << ", row " << i;
            EXPECT_EQ(winfo[i].dot11WEPDefaultKeyIndex, begun ? i + 1 : 0U) << "allocation " << n << ", row " << i;
        }
    }
    device.fail_allocation(11);
    fill();
    EXPECT_FALSE(device.allocation_failed());
}

}  // namespace
