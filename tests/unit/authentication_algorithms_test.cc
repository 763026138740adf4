// The authentication algorithms' rows, on a scripted device.
#include "backend/smt/authentication_algorithms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "rows.h"
#include "scripted.h"

using namespace dot11;

namespace {

using testing::ElementsAre;

constexpr int enabled = 1;
constexpr int disabled = 2;

class AuthenticationAlgorithms : public testing::Test {
  protected:
    AuthenticationAlgorithms() {
        memset(ainfo, 0xee, sizeof ainfo);
        device.add_interface("wlan0", 3);
        device.set("interface", "wlan0", "bss", "b0");
    }

    void fill() {
        ASSERT_EQ(GetAuthAlgorithmEntries(), 1);
        ASSERT_EQ(GetAuthAlgorithmTableData(), 1);
        ASSERT_TRUE(all_released(auth_info));
    }

    // Whether open system and shared key are enabled on the first interface.
    std::pair<int, int> filled() {
        fill();
        return {ainfo[0].dot11AuthenticationAlgorithmsEnable, ainfo[1].dot11AuthenticationAlgorithmsEnable};
    }

    ScriptedDevice device;
};

TEST_F(AuthenticationAlgorithms, ReadsTheKeysInOrder) {
    fill();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",        //
                                          "get interface wlan0 bss",                //
                                          "get bss b0 open-system-authentication",  //
                                          "get interface wlan0 bss",                //
                                          "get bss b0 shared-key-authentication"));
}

TEST_F(AuthenticationAlgorithms, HandsBackBothAnswersWhenItHasReadTheValue) {
    device.set("bss", "b0", "open-system-authentication", "on");
    device.shows_releases = true;
    fill();
    device.calls.resize(6);
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",            //
                                          "release interface",                          //
                                          "get interface wlan0 bss",                    //
                                          "get bss b0 open-system-authentication",      //
                                          "release bss b0 open-system-authentication",  //
                                          "release interface wlan0 bss"));
}

TEST_F(AuthenticationAlgorithms, HasTwoRowsForEveryInterface) {
    device.add_interface("wlan1", 5);
    device.set("interface", "wlan1", "bss", "b1");
    device.set("bss", "b0", "open-system-authentication", "on");
    device.set("bss", "b1", "shared-key-authentication", "on");
    fill();
    const AuthenticationAlgorithmsRow expected[] = {
        {3, 1, 1, enabled},
        {3, 2, 2, disabled},
        {5, 1, 1, disabled},
        {5, 2, 2, enabled},
    };
    EXPECT_EQ(hex(ainfo, sizeof expected), hex(expected, sizeof expected));
    EXPECT_EQ(ainfo[4].ifIndex, 0xeeeeeeeeU);
}

TEST_F(AuthenticationAlgorithms, AreEnabledByExactlyOn) {
    const struct {
        ScriptedDevice::Pair node;
        int enable;
    } facts[] = {
        {{"open-system-authentication", "on"}, enabled},
        {{"open-system-authentication", "off"}, disabled},
        {{"open-system-authentication", "ON"}, disabled},
        {{"open-system-authentication", "on "}, disabled},
        {{"open-system-authentication", "1"}, disabled},
        {{"open-system-authentication", "o"}, disabled},
        {{"open-system-authentication", ""}, disabled},
        {{"open-system-authentication", std::string(5000, '\xff')}, disabled},
        {{"open-system-authentication", std::nullopt}, disabled},
        {{"shared-key-authentication", "on"}, enabled},  // Quirk: the other algorithm's key is accepted
        {{"other", "on"}, disabled},
        {{std::nullopt, "on"}, disabled},
    };
    for (const auto& fact : facts) {
        device.answer("bss", "b0", "open-system-authentication", {fact.node, {"open-system-authentication", "on"}});
        EXPECT_EQ(filled(), std::pair(fact.enable, disabled)) << testing::PrintToString(fact.node);
    }
    device.answer("bss", "b0", "open-system-authentication", {});
    device.answer("bss", "b0", "shared-key-authentication", {{"open-system-authentication", "on"}});
    EXPECT_EQ(filled(), std::pair(disabled, enabled));
}

TEST_F(AuthenticationAlgorithms, AreDisabledWithoutABSS) {
    for (const std::vector<ScriptedDevice::Pair>& bss : std::vector<std::vector<ScriptedDevice::Pair>>{
             {},
             {{"bss", ""}},
             {{"bss", std::nullopt}},
             {{std::nullopt, "b0"}},
             {{"other", "b0"}, {"bss", "b0"}},
             {{"bss", "nowhere"}},
         }) {
        device.set("interface", "wlan0", "bss", "b0");
        device.set("bss", "b0", "open-system-authentication", "on");
        device.set("bss", "b0", "shared-key-authentication", "on");
        EXPECT_EQ(filled(), std::pair(enabled, enabled));
        device.answer("interface", "wlan0", "bss", bss);
        EXPECT_EQ(filled(), std::pair(disabled, disabled)) << testing::PrintToString(bss);
    }
}

TEST_F(AuthenticationAlgorithms, AreDisabledWithoutMemoryToRead) {
    device.set("bss", "b0", "open-system-authentication", "on");
    device.set("bss", "b0", "shared-key-authentication", "on");
    // The first two allocations are the enumeration's; a row takes one for its BSS and one for its value.
    const std::pair<int, int> facts[] = {{enabled, enabled},  {enabled, enabled},  {disabled, enabled},
                                         {disabled, enabled}, {enabled, disabled}, {enabled, disabled}};
    for (size_t n = 0; n < std::size(facts); ++n) {
        device.fail_allocation(static_cast<int>(n) + 1);
        EXPECT_EQ(filled(), facts[n]) << "allocation " << n + 1;
        EXPECT_TRUE(device.allocation_failed());
    }
    device.fail_allocation(static_cast<int>(std::size(facts)) + 1);
    EXPECT_EQ(filled(), std::pair(enabled, enabled));
    EXPECT_FALSE(device.allocation_failed());
}

// What the writer stores, "1" for true, reads back as false.
TEST_F(AuthenticationAlgorithms, ReadBackAsDisabledWhatWasWritten) {
    fill();
    device.calls.clear();
    const uint32_t value = enabled;
    EXPECT_EQ(SetAuthAlgorithmEnable(&ainfo[0], &value, sizeof value), 0);
    EXPECT_THAT(device.calls, ElementsAre("get interface wlan0 bss", "set bss b0 open-system-authentication=1"));
    device.set("bss", "b0", "open-system-authentication", "1");
    EXPECT_EQ(filled(), std::pair(disabled, disabled));
}

}  // namespace
