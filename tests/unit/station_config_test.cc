// The station configuration's rows, on a scripted device.
#include "backend/smt/station_config.h"

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

const std::string no_address = "00 00 00 00 00 00";

Fields shown(const StationConfigRow& row) {
    return {
        {"ifIndex", to_string(row.ifIndex)},
        {"dot11StationID", hex(row.dot11StationID, 6)},
        {"dot11StationIDLen", to_string(row.dot11StationIDLen)},
        {"dot11MediumOccupancyLimit", to_string(row.dot11MediumOccupancyLimit)},
        {"dot11CFPollable", to_string(row.dot11CFPollable)},
        {"dot11CFPPeriod", to_string(row.dot11CFPPeriod)},
        {"dot11CFPMaxDuration", to_string(row.dot11CFPMaxDuration)},
        {"dot11AuthenticationResponseTimeOut", to_string(row.dot11AuthenticationResponseTimeOut)},
        {"privacy_option_configured", to_string(row.privacy_option_configured)},
        {"dot11PrivacyOptionImplemented", to_string(row.dot11PrivacyOptionImplemented)},
        {"dot11PowerManagementMode", to_string(row.dot11PowerManagementMode)},
        {"dot11DesiredSSID", hex(row.dot11DesiredSSID, row.dot11DesiredSSIDLen)},
        {"dot11DesiredBSSType", to_string(row.dot11DesiredBSSType)},
        {"dot11OperationalRateSet", hex(row.dot11OperationalRateSet, row.dot11OperationalRateSetLen)},
        {"dot11BeaconPeriod", to_string(row.dot11BeaconPeriod)},
        {"dot11DTIMPeriod", to_string(row.dot11DTIMPeriod)},
        {"dot11AssociationResponseTimeOut", to_string(row.dot11AssociationResponseTimeOut)},
        {"dot11DisassociateReason", to_string(row.dot11DisassociateReason)},
        {"dot11DisassociateStation", hex(row.dot11DisassociateStation, 6)},
        {"dot11DisassociateStationLen", to_string(row.dot11DisassociateStationLen)},
        {"dot11DeauthenticateReason", to_string(row.dot11DeauthenticateReason)},
        {"dot11DeauthenticateStation", hex(row.dot11DeauthenticateStation, 6)},
        {"dot11DeauthenticateStationLen", to_string(row.dot11DeauthenticateStationLen)},
        {"dot11AuthenticateFailStatus", to_string(row.dot11AuthenticateFailStatus)},
        {"dot11AuthenticateFailStation", hex(row.dot11AuthenticateFailStation, 6)},
        {"dot11AuthenticateFailStationLen", to_string(row.dot11AuthenticateFailStationLen)},
        {"dot11MultiDomainCapabilityImplemented", to_string(row.dot11MultiDomainCapabilityImplemented)},
        {"dot11MultiDomainCapabilityEnabled", to_string(row.dot11MultiDomainCapabilityEnabled)},
        {"dot11CountryString", hex(row.dot11CountryString, 3)},
    };
}

// An interface of which the store knows nothing.
const Fields defaults = {
    {"ifIndex", "3"},
    {"dot11StationID", no_address},
    {"dot11StationIDLen", "6"},
    {"dot11MediumOccupancyLimit", "100"},
    {"dot11CFPollable", "2"},
    {"dot11CFPPeriod", "0"},
    {"dot11CFPMaxDuration", "0"},
    {"dot11AuthenticationResponseTimeOut", "1"},
    {"privacy_option_configured", "2"},
    {"dot11PrivacyOptionImplemented", "2"},
    {"dot11PowerManagementMode", "2"},
    {"dot11DesiredSSID", "30"},
    {"dot11DesiredBSSType", "1"},
    {"dot11OperationalRateSet", "00"},
    {"dot11BeaconPeriod", "1"},
    {"dot11DTIMPeriod", "1"},
    {"dot11AssociationResponseTimeOut", "1"},
    {"dot11DisassociateReason", "0"},
    {"dot11DisassociateStation", no_address},
    {"dot11DisassociateStationLen", "6"},
    {"dot11DeauthenticateReason", "0"},
    {"dot11DeauthenticateStation", no_address},
    {"dot11DeauthenticateStationLen", "6"},
    {"dot11AuthenticateFailStatus", "0"},
    {"dot11AuthenticateFailStation", no_address},
    {"dot11AuthenticateFailStationLen", "6"},
    {"dot11MultiDomainCapabilityImplemented", "2"},
    {"dot11MultiDomainCapabilityEnabled", "-1"},
    {"dot11CountryString", "3f 3f 3f"},
};

struct Stored {
    std::string table, object, key, value;
};

// Every key of an interface, and the fields that differ from the defaults then.
const std::vector<Stored> everything = {
    {"interface", "wlan0", "mac", "00:11:22:33:44:55"},
    {"interface", "wlan0", "dot11-cf-pollable", "1"},
    {"interface", "wlan0", "dot11-authentication-response-time-out", "512"},
    {"interface", "wlan0", "dot11-privacy-option-implemented", "1"},
    {"interface", "wlan0", "security", "wpa2"},
    {"interface", "wlan0", "ssid", "Staff"},
    {"supported-rate", "wlan0", "rate", "540"},
    {"interface", "wlan0", "bss", "b0"},
    {"bss", "b0", "radio", "r0"},
    {"radio", "r0", "beacon-interval", "100"},
    {"bss", "b0", "dtim-period", "3"},
    {"radio", "r0", "dot11d", "up"},
    {"interface", "wlan0", "dot11-association-response-time-out", "640"},
    {"interface", "wlan0", "dot11-disassociate-reason", "8"},
    {"interface", "wlan0", "dot11-disassociate-station", "0a:0b:0c:0d:0e:0f"},
    {"interface", "wlan0", "dot11-deauthenticate-reason", "4"},
    {"interface", "wlan0", "dot11-deauthenticate-station", "1A:1B:1C:1D:1E:1F"},
    {"interface", "wlan0", "dot11-authenticate-fail-status", "13"},
    {"interface", "wlan0", "dot11-authenticate-fail-station", "a0:b0:c0:d0:e0:f0"},
    {"system", "", "country", "US"},
};

const Fields everything_shown = {
    {"dot11StationID", "00 11 22 33 44 55"},
    {"dot11CFPollable", "1"},
    {"dot11AuthenticationResponseTimeOut", "512"},
    {"privacy_option_configured", "1"},
    {"dot11PrivacyOptionImplemented", "1"},
    {"dot11DesiredSSID", "53 74 61 66 66"},
    {"dot11OperationalRateSet", "6c"},
    {"dot11BeaconPeriod", "100"},
    {"dot11DTIMPeriod", "3"},
    {"dot11MultiDomainCapabilityImplemented", "1"},
    {"dot11MultiDomainCapabilityEnabled", "1"},
    {"dot11AssociationResponseTimeOut", "640"},
    {"dot11DisassociateReason", "8"},
    {"dot11DisassociateStation", "0a 0b 0c 0d 0e 0f"},
    {"dot11DeauthenticateReason", "4"},
    {"dot11DeauthenticateStation", "1a 1b 1c 1d 1e 1f"},
    {"dot11AuthenticateFailStatus", "13"},
    {"dot11AuthenticateFailStation", "a0 b0 c0 d0 e0 f0"},
    {"dot11CountryString", "55 53 20"},
};

class StationConfig : public testing::Test {
  protected:
    StationConfig() {
        memset(&row(), 0, sizeof row());
        device.add_interface("wlan0", 3);
    }

    static StationConfigRow& row() { return sinfo[0]; }

    void store(const std::vector<Stored>& values) {
        for (const Stored& stored : values)
            device.set(stored.table, stored.object, stored.key, stored.value);
    }

    void link_radio() {
        device.set("interface", "wlan0", "bss", "b0");
        device.set("bss", "b0", "radio", "r0");
    }

    void fill() {
        ASSERT_EQ(GetStationConfigEntries(), 1);
        ASSERT_EQ(GetStationConfigTableData(), 1);
        ASSERT_TRUE(all_released(sta_info));
    }

    Fields filled() {
        fill();
        return shown(row());
    }

    Fields filled_new() {
        memset(&row(), 0, sizeof row());
        return filled();
    }

    ScriptedDevice device;
};

TEST_F(StationConfig, ReadsTheKeysInOrder) {
    link_radio();
    fill();
    EXPECT_THAT(device.calls,
                ElementsAre("grid interface type=service-set",                             //
                            "get interface wlan0 mac",                                     //
                            "get interface wlan0 dot11-cf-pollable",                       //
                            "get interface wlan0 dot11-authentication-response-time-out",  //
                            "get interface wlan0 dot11-privacy-option-implemented",        //
                            "get interface wlan0 security",                                //
                            "get interface wlan0 ssid",                                    //
                            "get supported-rate wlan0 rate",                               //
                            "get interface wlan0 bss",                                     //
                            "get bss b0 radio",                                            //
                            "get radio r0 beacon-interval",                                //
                            "get bss b0 dtim-period",                                      //
                            "get bss b0 radio",                                            //
                            "get radio r0 dot11d",                                         //
                            "get interface wlan0 dot11-association-response-time-out",     //
                            "get interface wlan0 dot11-disassociate-reason",               //
                            "get interface wlan0 dot11-disassociate-station",              //
                            "get interface wlan0 dot11-deauthenticate-reason",             //
                            "get interface wlan0 dot11-deauthenticate-station",            //
                            "get interface wlan0 dot11-authenticate-fail-status",          //
                            "get interface wlan0 dot11-authenticate-fail-station",         //
                            "get system - country"));
}

TEST_F(StationConfig, HasADefaultForEveryMissingKey) {
    EXPECT_EQ(filled(), defaults);
}

TEST_F(StationConfig, ServesEveryKey) {
    store(everything);
    EXPECT_EQ(differences(defaults, filled()), everything_shown);
}

TEST_F(StationConfig, ForgetsWhatHasVanishedButForTheAddressesTails) {
    store(everything);
    fill();
    for (const Stored& stored : everything)
        device.unset(stored.table, stored.object, stored.key);
    EXPECT_EQ(differences(defaults, filled()), (Fields{{"dot11StationID", "00 11 22 33 44 55"},
                                                       {"dot11DisassociateStation", "00 0b 0c 0d 0e 0f"},
                                                       {"dot11DeauthenticateStation", "00 1b 1c 1d 1e 1f"},
                                                       {"dot11AuthenticateFailStation", "00 b0 c0 d0 e0 f0"}}));
}

TEST_F(StationConfig, ConvertsNumbersAsTheyAreStored) {
    using Row = StationConfigRow;
    link_radio();
    // clang-format off
    expect_numbers<Row>(
        device,
        {
            {"interface", "dot11-authentication-response-time-out", &Row::dot11AuthenticationResponseTimeOut, 1, as_it_is},
            {"radio", "beacon-interval", &Row::dot11BeaconPeriod, 1, as_it_is, "r0"},
            {"bss", "dtim-period", &Row::dot11DTIMPeriod, 1, as_it_is, "b0"},
            {"interface", "dot11-association-response-time-out", &Row::dot11AssociationResponseTimeOut, 1, as_it_is},
            {"interface", "dot11-disassociate-reason", &Row::dot11DisassociateReason, 0, as_it_is},
            {"interface", "dot11-deauthenticate-reason", &Row::dot11DeauthenticateReason, 0, as_it_is},
            {"interface", "dot11-authenticate-fail-status", &Row::dot11AuthenticateFailStatus, 0, as_it_is},
        },
        [this]() -> const Row& { fill(); return row(); });
    // clang-format on
}

struct Fact {
    Stored stored;
    Fields changes;
};

// One key of an interface with a BSS and a radio, and the fields that differ from the defaults then.
const Fact facts[] = {
    {{"interface", "wlan0", "dot11-cf-pollable", "1"}, {{"dot11CFPollable", "1"}}},
    {{"interface", "wlan0", "dot11-cf-pollable", "true"}, {}},
    {{"interface", "wlan0", "dot11-cf-pollable", "0"}, {}},
    {{"interface", "wlan0", "dot11-cf-pollable", "11"}, {}},
    {{"interface", "wlan0", "dot11-cf-pollable", ""}, {}},

    {{"interface", "wlan0", "dot11-privacy-option-implemented", "1"}, {{"privacy_option_configured", "1"}}},
    {{"interface", "wlan0", "dot11-privacy-option-implemented", "on"}, {}},
    {{"interface", "wlan0", "dot11-privacy-option-implemented", ""}, {}},

    {{"interface", "wlan0", "security", "plain-text"}, {}},
    {{"interface", "wlan0", "security", "wep"}, {{"dot11PrivacyOptionImplemented", "1"}}},
    {{"interface", "wlan0", "security", "Plain-Text"}, {{"dot11PrivacyOptionImplemented", "1"}}},
    {{"interface", "wlan0", "security", "plain-text "}, {{"dot11PrivacyOptionImplemented", "1"}}},
    {{"interface", "wlan0", "security", "\xff"}, {{"dot11PrivacyOptionImplemented", "1"}}},
    {{"interface", "wlan0", "security", ""}, {}},

    {{"interface", "wlan0", "ssid", "a"}, {{"dot11DesiredSSID", "61"}}},
    {{"interface", "wlan0", "ssid", ""}, {}},
    {{"interface", "wlan0", "ssid", "\x01\x80\xff"}, {{"dot11DesiredSSID", "01 80 ff"}}},

    {{"supported-rate", "wlan0", "rate", "540"}, {{"dot11OperationalRateSet", "6c"}}},
    {{"supported-rate", "wlan0", "rate", "20"}, {{"dot11OperationalRateSet", "04"}}},
    {{"supported-rate", "wlan0", "rate", "55"}, {{"dot11OperationalRateSet", "0b"}}},
    {{"supported-rate", "wlan0", "rate", "240"}, {}},                                   // 48, '0'
    {{"supported-rate", "wlan0", "rate", "285"}, {{"dot11OperationalRateSet", "09"}}},  // 57, '9'
    {{"supported-rate", "wlan0", "rate", "290"}, {{"dot11OperationalRateSet", "3a"}}},  // 58
    {{"supported-rate", "wlan0", "rate", "325"}, {{"dot11OperationalRateSet", "0a"}}},  // 65, 'A'
    {{"supported-rate", "wlan0", "rate", "350"}, {{"dot11OperationalRateSet", "0f"}}},  // 70, 'F'
    {{"supported-rate", "wlan0", "rate", "485"}, {{"dot11OperationalRateSet", "0a"}}},  // 97, 'a'
    {{"supported-rate", "wlan0", "rate", "1280"}, {}},                                  // 256
    {{"supported-rate", "wlan0", "rate", "4"}, {}},                                     // 0.8
    {{"supported-rate", "wlan0", "rate", "x"}, {}},                                     // -2 / 10
    {{"supported-rate", "wlan0", "rate", "-10"}, {{"dot11OperationalRateSet", "fe"}}},  // -2
    {{"supported-rate", "wlan0", "rate", "2147483647"}, {}},                            // -2 / 10
    {{"supported-rate", "wlan0", "rate", ""}, {}},

    {{"radio", "r0", "dot11d", "up"},
     {{"dot11MultiDomainCapabilityImplemented", "1"}, {"dot11MultiDomainCapabilityEnabled", "1"}}},
    {{"radio", "r0", "dot11d", "down"},
     {{"dot11MultiDomainCapabilityImplemented", "1"}, {"dot11MultiDomainCapabilityEnabled", "2"}}},
    {{"radio", "r0", "dot11d", "UP"},
     {{"dot11MultiDomainCapabilityImplemented", "1"}, {"dot11MultiDomainCapabilityEnabled", "2"}}},
    {{"radio", "r0", "dot11d", "1"},
     {{"dot11MultiDomainCapabilityImplemented", "1"}, {"dot11MultiDomainCapabilityEnabled", "2"}}},
    {{"radio", "r0", "dot11d", ""}, {}},

    {{"system", "", "country", "US"}, {{"dot11CountryString", "55 53 20"}}},
    {{"system", "", "country", "us"}, {{"dot11CountryString", "75 73 20"}}},
    {{"system", "", "country", "\xc3\xa4"}, {{"dot11CountryString", "c3 a4 20"}}},
    {{"system", "", "country", "USA"}, {}},
    {{"system", "", "country", "U"}, {}},
    {{"system", "", "country", ""}, {}},

    {{"interface", "wlan0", "mac", "00:a0:C9:ff:12:34"}, {{"dot11StationID", "00 a0 c9 ff 12 34"}}},
    {{"interface", "wlan0", "mac", "00a0c9ff1234"}, {{"dot11StationID", "00 a0 c9 ff 12 34"}}},
    {{"interface", "wlan0", "mac", "00a0c9ff123456"}, {{"dot11StationID", "00 a0 c9 ff 12 34"}}},
    {{"interface", "wlan0", "mac", "::::::00:a0:c9:ff:12:34::56"}, {{"dot11StationID", "00 a0 c9 ff 12 34"}}},
    {{"interface", "wlan0", "mac", "1:2"}, {{"dot11StationID", "12 00 00 00 00 00"}}},
    {{"interface", "wlan0", "mac", "1"}, {{"dot11StationID", "10 00 00 00 00 00"}}},
    {{"interface", "wlan0", "mac", "zz"}, {{"dot11StationID", "fa 00 00 00 00 00"}}},  // 0x7a * 16 | 0x7a, low 8 bits
    {{"interface", "wlan0", "mac", "\xff\x80"}, {{"dot11StationID", "f0 00 00 00 00 00"}}},
    {{"interface", "wlan0", "mac", ":"}, {}},
    {{"interface", "wlan0", "mac", ""}, {}},
};

TEST_F(StationConfig, ConvertsTexts) {
    link_radio();
    for (const Fact& fact : facts) {
        const Stored& stored = fact.stored;
        device.set(stored.table, stored.object, stored.key, stored.value);
        EXPECT_EQ(differences(defaults, filled_new()), fact.changes) << stored.key << " = " << stored.value;
        device.unset(stored.table, stored.object, stored.key);
    }
}

// The country alone is taken from a node of any tag; the other keys must be the first node's tag.
TEST_F(StationConfig, LooksAtTheFirstNodeOnly) {
    store(everything);
    for (const Stored& stored : everything)
        device.answer(stored.table, stored.object, stored.key, {{"other", "XX"}, {stored.key, stored.value}});
    EXPECT_EQ(differences(defaults, filled()), (Fields{{"dot11CountryString", "58 58 20"}}));
}

TEST_F(StationConfig, TakesOneRateOfSeveral) {
    device.answer("supported-rate", "wlan0", "rate", {{"rate", "20"}, {"rate", "110"}, {"rate", "540"}});
    EXPECT_EQ(differences(defaults, filled()), (Fields{{"dot11OperationalRateSet", "04"}}));
    EXPECT_EQ(row().dot11OperationalRateSetLen, 1U);
}

TEST_F(StationConfig, ClipsTheSSID) {
    for (const size_t size : {31U, 32U, 33U, 4096U}) {
        device.set("interface", "wlan0", "ssid", std::string(size, 's'));
        fill();
        EXPECT_EQ(row().dot11DesiredSSIDLen, size < 32 ? size : 32);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(row().dot11DesiredSSID), row().dot11DesiredSSIDLen),
                  std::string(row().dot11DesiredSSIDLen, 's'));
        EXPECT_EQ(row().dot11DesiredBSSType, 1);
    }
}

// A shorter address than the row's earlier one leaves nothing of it, and a longer one goes no further.
TEST_F(StationConfig, ReplacesAnAddressWhole) {
    device.set("interface", "wlan0", "mac", "ff:ff:ff:ff:ff:ff");
    fill();
    device.set("interface", "wlan0", "mac", "01:02");
    EXPECT_EQ(filled().at("dot11StationID"), "01 02 00 00 00 00");
    device.set("interface", "wlan0", "mac", "ff:ff:ff:ff:ff:ff:ff:ff");
    fill();
    EXPECT_EQ(hex(row().dot11StationID, 8), "ff ff ff ff ff ff 00 00");
}

struct BrokenLink {
    const char *table, *object, *key;
    Fields changes;
};

TEST_F(StationConfig, HasDefaultsBehindAMissingLink) {
    const Fields without_radio = {
        {"dot11BeaconPeriod", "1"},
        {"dot11MultiDomainCapabilityImplemented", "2"},
        {"dot11MultiDomainCapabilityEnabled", "-1"},
    };
    Fields without_bss = without_radio;
    without_bss["dot11DTIMPeriod"] = "1";
    const BrokenLink links[] = {
        {"interface", "wlan0", "bss", without_bss},
        {"bss", "b0", "radio", without_radio},
    };
    store(everything);
    const Fields whole = filled();
    for (const BrokenLink& link : links) {
        for (const char* value : {"", "nowhere"}) {
            store(everything);
            device.set(link.table, link.object, link.key, value);
            EXPECT_EQ(differences(whole, filled()), link.changes) << link.key << " = " << value;
        }
        device.unset(link.table, link.object, link.key);
        EXPECT_EQ(differences(whole, filled()), link.changes) << "no " << link.key;
    }
}

// For an interface with every key. The first two are the enumeration's.
const Losses losses = {
    Fields{},
    Fields{},
    Fields{{"dot11StationID", no_address}},
    std::nullopt,
    Fields{{"dot11CFPollable", "2"}},
    Fields{{"dot11AuthenticationResponseTimeOut", "1"}},
    Fields{{"privacy_option_configured", "2"}},
    Fields{{"dot11PrivacyOptionImplemented", "2"}},
    Fields{{"dot11DesiredSSID", "30"}},
    Fields{{"dot11OperationalRateSet", "00"}},
    Fields{{"dot11BeaconPeriod", "1"}},
    Fields{{"dot11BeaconPeriod", "1"}},
    Fields{{"dot11BeaconPeriod", "1"}},
    Fields{{"dot11DTIMPeriod", "1"}},
    Fields{{"dot11DTIMPeriod", "1"}},
    Fields{{"dot11MultiDomainCapabilityImplemented", "2"}, {"dot11MultiDomainCapabilityEnabled", "-1"}},
    Fields{{"dot11MultiDomainCapabilityImplemented", "2"}, {"dot11MultiDomainCapabilityEnabled", "-1"}},
    Fields{{"dot11MultiDomainCapabilityImplemented", "2"}, {"dot11MultiDomainCapabilityEnabled", "-1"}},
    Fields{{"dot11AssociationResponseTimeOut", "1"}},
    Fields{{"dot11DisassociateReason", "0"}},
    Fields{{"dot11DisassociateStation", no_address}},
    std::nullopt,
    Fields{{"dot11DeauthenticateReason", "0"}},
    Fields{{"dot11DeauthenticateStation", no_address}},
    std::nullopt,
    Fields{{"dot11AuthenticateFailStatus", "0"}},
    Fields{{"dot11AuthenticateFailStation", no_address}},
    std::nullopt,
    Fields{{"dot11CountryString", "3f 3f 3f"}},
};

TEST_F(StationConfig, LosesOneFieldWithoutMemoryForIt) {
    store(everything);
    const auto fill_anew = [] {
        memset(&row(), 0, sizeof row());
        EXPECT_EQ(GetStationConfigEntries(), 1);
        const int result = GetStationConfigTableData();
        EXPECT_TRUE(all_released(sta_info));
        return result;
    };
    expect_losses(device, losses, fill_anew, [] { return shown(row()); });
}

// The fill ends in the middle of a row; the rows before it are whole, those behind it untouched.
TEST_F(StationConfig, EndsTheFillWithoutMemoryForAnAddress) {
    for (const char* name : {"wlan1", "wlan2"}) {
        device.add_interface(name, name[4] == '1' ? 5 : 6);
        device.set("interface", name, "mac", "00:11:22:33:44:55");
    }
    device.set("interface", "wlan0", "mac", "00:11:22:33:44:55");
    memset(sinfo, 0xee, sizeof sinfo);
    ASSERT_EQ(GetStationConfigEntries(), 1);
    device.fail_allocation(4);  // two copies of an address and their buffers: the second row's buffer
    EXPECT_EQ(GetStationConfigTableData(), -1);
    EXPECT_EQ(differences(defaults, shown(sinfo[0])), (Fields{{"dot11StationID", "00 11 22 33 44 55"},
                                                              {"dot11DisassociateStation", "00 ee ee ee ee ee"},
                                                              {"dot11DeauthenticateStation", "00 ee ee ee ee ee"},
                                                              {"dot11AuthenticateFailStation", "00 ee ee ee ee ee"}}));
    EXPECT_EQ(sinfo[1].ifIndex, 5U);
    EXPECT_EQ(hex(sinfo[1].dot11StationID, 6), "ee ee ee ee ee ee");
    EXPECT_EQ(sinfo[2].ifIndex, 0xeeeeeeeeU);
}

}  // namespace
