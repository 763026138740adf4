// The routines that write single keys of the SMT and MAC tables into the store, on a scripted device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backend/mac/operation.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/station_config.h"
#include "backend/smt/wep_default_keys.h"
#include "scripted.h"

using namespace dot11;

namespace {

using testing::ElementsAre;

// In a list of results: 0, though the value was written. Without memory to turn a number's digits round it is written
// reversed.
constexpr int32_t written = 100;

struct Writer {
    const char* name;
    int32_t (*write)(uint32_t index);
    // What it writes for wlan0 (index 3), whose BSS is b0, whose radio is r0.
    const char* call;
    // For an interface that the system does not know; null: nothing, for want of a BSS.
    const char* call_without_interface;
    // Its results without memory for the n-th allocation.
    std::vector<int32_t> out_of_memory;
};
void PrintTo(const Writer& writer, std::ostream* out) {
    *out << writer.name;
}

template <int32_t (*set)(const uint32_t*, const uint32_t*, uint32_t)>
int32_t number(uint32_t index) {
    const uint32_t value = 10;
    return set(&index, &value, sizeof value);
}

template <uint32_t algorithm>
int32_t enable(uint32_t index) {
    const AuthenticationAlgorithmsRow row = {index, algorithm, 0, 0};
    const uint32_t value = 2;
    return SetAuthAlgorithmEnable(&row, &value, sizeof value);
}

template <uint32_t number>
int32_t wep_key(uint32_t index) {
    const WEPDefaultKeysRow row = {index, number, {}, 0};
    return SetWEPDefaultKeysTableData(&row, "FAKE1 and what is behind it", 5);
}

int32_t ssid(uint32_t index) {
    return SetDesiredSSID(&index, "Staff", 5);
}

int32_t station_id(uint32_t index) {
    const uint8_t octets[] = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
    return SetStationId(&index, octets, sizeof octets);
}

// clang-format off
const Writer writers[] = {
    {"DesiredSSID", ssid,
     "interface wlan0 ssid=Staff", "interface  ssid=Staff", {-1, 0, 0}},
    {"BeaconPeriod", number<SetBeaconPeriod>,
     "radio r0 beacon-interval=10", nullptr, {-1, 0, 0, -1, written, 0, 0}},
    // Under the interface's name, though the BSS is b0.
    {"DtimPeriod", number<SetDtimPeriod>,
     "bss wlan0 dtim-period=10", nullptr, {-1, 0, -1, written, 0, 0}},
    {"StationId", station_id,
     "interface wlan0 mac=:\x01:\x02:\x03:\x04:\x05:\x06", "interface  mac=:\x01:\x02:\x03:\x04:\x05:\x06", {-1, -1, 0, 0}},
    // These two are crossed.
    {"AuthenticationResponseTimeout", number<SetAuthenticationResponseTimeout>,
     "interface wlan0 dot11-association-response-time-out=10", "interface  dot11-association-response-time-out=10",
     {-1, -1, written, 0, 0}},
    {"AssociationResponseTimeout", number<SetAssociationResponseTimeout>,
     "interface wlan0 dot11-authentication-response-time-out=10", "interface  dot11-authentication-response-time-out=10",
     {-1, -1, written, 0, 0}},

    {"OpenSystem", enable<1>,
     "bss b0 open-system-authentication=2", nullptr, {-1, 0, -1, written, 0, 0}},
    {"SharedKey", enable<2>,
     "bss b0 shared-key-authentication=2", nullptr, {-1, 0, -1, written, 0, 0}},
    {"AnyOtherAlgorithm", enable<0>,
     "bss b0 shared-key-authentication=2", nullptr, {-1, 0, -1, written, 0, 0}},

    {"PrivacyInvoked", number<SetPrivacyInvoked>,
     "interface wlan0 dot11-privacy-invoked=10", "interface  dot11-privacy-invoked=10", {0, 0, written, 0, 0}},
    {"WEPDefaultKeyID", number<SetWEPDefaultKeyID>,
     "interface wlan0 wep-default-key=10", "interface  wep-default-key=10", {0, 0, written, 0, 0}},
    {"WEPKeyMappingLength", number<SetWEPKeyMappingLength>,
     "interface wlan0 wep-key-mapping-length=10", "interface  wep-key-mapping-length=10", {0, 0, written, 0, 0}},

    {"WEPKey1", wep_key<1>, "interface wlan0 wep-key-1=FAKE1", "interface  wep-key-1=FAKE1", {-1, -1, -1, 0, 0}},
    {"WEPKey2", wep_key<2>, "interface wlan0 wep-key-2=FAKE1", "interface  wep-key-2=FAKE1", {-1, -1, -1, 0, 0}},
    {"WEPKey3", wep_key<3>, "interface wlan0 wep-key-3=FAKE1", "interface  wep-key-3=FAKE1", {-1, -1, -1, 0, 0}},
    {"WEPKey4", wep_key<4>, "interface wlan0 wep-key-4=FAKE1", "interface  wep-key-4=FAKE1", {-1, -1, -1, 0, 0}},
    // The empty key, which the store refuses.
    {"WEPKey0", wep_key<0>, "interface wlan0 =FAKE1", "interface  =FAKE1", {-1, -1, -1, 0, 0}},
    {"WEPKey5", wep_key<5>, "interface wlan0 =FAKE1", "interface  =FAKE1", {-1, -1, -1, 0, 0}},

    {"RTSThreshold", number<SetRTSThreshold>,
     "radio r0 rts-threshold=10", nullptr, {0, 0, 0, 0, written, 0, 0}},
    {"ShortRetryLimit", number<SetShortRetryLimit>,
     "interface wlan0 dot11-short-retry-limit=10", "interface  dot11-short-retry-limit=10", {0, 0, written, 0, 0}},
    {"LongRetryLimit", number<SetLongRetryLimit>,
     "interface wlan0 dot11-long-retry-limit=10", "interface  dot11-long-retry-limit=10", {0, 0, written, 0, 0}},
    {"FragmentationThreshold", number<SetFragmentationThreshold>,
     "radio r0 fragmentation-threshold=10", nullptr, {0, 0, 0, 0, written, 0, 0}},
    {"MaxTransmitMSDULifetime", number<SetMaxTransmitMSDULifetime>,
     "interface wlan0 dot11-max-transmit-msdu-lifetime=10", "interface  dot11-max-transmit-msdu-lifetime=10",
     {0, 0, written, 0, 0}},
    {"MaxReceiveLifetime", number<SetMaxReceiveLifetime>,
     "interface wlan0 dot11-max-receive-lifetime=10", "interface  dot11-max-receive-lifetime=10", {0, 0, written, 0, 0}},
};
// clang-format on

class Writers : public testing::TestWithParam<Writer> {
  protected:
    Writers() {
        device.add_interface("wlan0", 3);
        device.set("interface", "wlan0", "bss", "b0");
        device.set("bss", "b0", "radio", "r0");
    }

    ScriptedDevice device;
};

TEST_P(Writers, WriteOneKey) {
    EXPECT_EQ(GetParam().write(3), 0);
    EXPECT_THAT(device.calls_of("set"), ElementsAre(GetParam().call));
}

TEST_P(Writers, TurnTheStoresStatusRound) {
    const std::pair<int32_t, int32_t> facts[] = {{1, 0}, {0, 1}, {2, 1}, {-1, 1}, {INT32_MIN, 1}, {INT32_MAX, 1}};
    for (const auto& [status, result] : facts) {
        device.set_status = status;
        EXPECT_EQ(GetParam().write(3), result) << status;
    }
}

TEST_P(Writers, WriteNoObjectForAnUnknownInterface) {
    device.set_status = 0;
    for (const uint32_t index : {0U, 4U, UINT32_MAX}) {
        device.calls.clear();
        if (GetParam().call_without_interface) {
            EXPECT_EQ(GetParam().write(index), 1) << index;
            EXPECT_THAT(device.calls_of("set"), ElementsAre(GetParam().call_without_interface));
        } else {
            EXPECT_EQ(GetParam().write(index), 0) << index;
            EXPECT_THAT(device.calls, ElementsAre("get interface  bss"));
        }
    }
}

TEST_P(Writers, SayWithoutMemoryWhatTheyMust) {
    const std::vector<int32_t>& results = GetParam().out_of_memory;
    for (size_t n = 0; n < results.size(); ++n) {
        device.calls.clear();
        device.fail_allocation(static_cast<int>(n) + 1);
        EXPECT_EQ(GetParam().write(3), results[n] == written ? 0 : results[n]) << "allocation " << n + 1;
        EXPECT_EQ(device.calls_of("set").size(), results[n] == written ? 1U : 0U) << "allocation " << n + 1;
        EXPECT_TRUE(device.allocation_failed());
    }
    device.fail_allocation(static_cast<int>(results.size()) + 1);
    EXPECT_EQ(GetParam().write(3), 0);
    EXPECT_FALSE(device.allocation_failed());
}

INSTANTIATE_TEST_SUITE_P(All, Writers, testing::ValuesIn(writers),
                         [](const auto& writer) { return writer.param.name; });

TEST(WritersThroughABSS, WriteNothingWithoutIt) {
    const struct {
        int32_t (*write)(uint32_t index);
        bool needs_radio;
    } facts[] = {
        {number<SetBeaconPeriod>, true},
        {number<SetDtimPeriod>, false},
        {enable<1>, false},
        {number<SetRTSThreshold>, true},
        {number<SetFragmentationThreshold>, true},
    };
    for (const auto& [write, needs_radio] : facts) {
        for (const std::vector<ScriptedDevice::Pair>& nodes :
             std::vector<std::vector<ScriptedDevice::Pair>>{{},
                                                            {{"bss", ""}},
                                                            {{"bss", std::nullopt}},
                                                            {{"other", "b0"}, {"bss", "b0"}},
                                                            {{std::nullopt, "b0"}}}) {
            ScriptedDevice device;
            device.add_interface("wlan0", 3);
            device.answer("interface", "wlan0", "bss", nodes);
            device.set("bss", "b0", "radio", "r0");
            EXPECT_EQ(write(3), 0);
            EXPECT_THAT(device.calls, ElementsAre("get interface wlan0 bss"));
        }
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.set("interface", "wlan0", "bss", "b0");
        EXPECT_EQ(write(3), 0);
        EXPECT_EQ(device.calls_of("set").size(), needs_radio ? 0U : 1U);
    }
}

TEST(SetNumbers, WriteThemUnsignedInDecimal) {
    const std::pair<uint32_t, const char*> facts[] = {
        {0, "0"}, {9, "9"}, {10, "10"}, {2147483648, "2147483648"}, {UINT32_MAX, "4294967295"},
    };
    for (const auto& [value, text] : facts) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        const uint32_t index = 3;
        EXPECT_EQ(SetPrivacyInvoked(&index, &value, 0), 0);
        EXPECT_THAT(device.calls, ElementsAre(std::string("set interface wlan0 dot11-privacy-invoked=") + text));
    }
}

// The octets' high halves as numbers, each behind a ':'. A high half of 0 ends the text.
TEST(SetStationId, WritesTheHighHalves) {
    const struct {
        std::vector<uint8_t> octets;
        int32_t result;
        const char* text;  // null: nothing is written
    } facts[] = {
        {{}, 0, ""},
        {{0x1f}, 0, ":\x01"},
        {{0xf0, 0xe0}, 0, ":\x0f:\x0e"},
        {{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}, 0, ":"},
        {std::vector<uint8_t>(9, 0x77), 0, ":\x07:\x07:\x07:\x07:\x07:\x07:\x07:\x07:\x07"},
        {std::vector<uint8_t>(10, 0x77), -1, nullptr},
    };
    for (const auto& fact : facts) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        const uint32_t index = 3;
        EXPECT_EQ(SetStationId(&index, fact.octets.data(), static_cast<uint32_t>(fact.octets.size())), fact.result);
        if (fact.text)
            EXPECT_THAT(device.calls, ElementsAre(std::string("set interface wlan0 mac=") + fact.text));
        else
            EXPECT_THAT(device.calls, ElementsAre());
    }
    const uint32_t index = 3;
    const uint8_t octet = 0;
    EXPECT_EQ(SetStationId(&index, &octet, UINT32_MAX), -1);
}

TEST(SetWEPDefaultKeys, WritesAtMostTheLength) {
    const struct {
        std::string value;
        uint32_t length;
        std::string text;
    } facts[] = {
        {"FAKE1", 0, ""},
        {"FAKE1", 4, "FAKE"},
        {"FAKE1", 5, "FAKE1"},
        {"FAKE1", 6, "FAKE1"},
        {"FAKE1", UINT32_MAX, "FAKE1"},
        {std::string("FA\0E1", 5), 5, "FA"},
        {std::string(300, 'k'), 300, std::string(300, 'k')},
    };
    for (const auto& fact : facts) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        const WEPDefaultKeysRow row = {3, 2, {}, 0};
        EXPECT_EQ(SetWEPDefaultKeysTableData(&row, fact.value.c_str(), fact.length), 0);
        EXPECT_THAT(device.calls, ElementsAre("set interface wlan0 wep-key-2=" + fact.text));
    }
}

TEST(SetDefaultKeys, SaysOneForEveryRefusal) {
    for (const int32_t status : {1, 0, -1, 7}) {
        ScriptedDevice device;
        device.set_status = status;
        const WEPDefaultKeyWrite write = {"wlan0", "wep-key-3", "FAKE3"};
        EXPECT_EQ(setDefaultKeys(&write), status == 1 ? 0 : 1);
        EXPECT_THAT(device.calls, ElementsAre("set interface wlan0 wep-key-3=FAKE3"));
    }
}

}  // namespace
