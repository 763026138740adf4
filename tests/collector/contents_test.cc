// How observations become keys and texts.
#include "contents.h"

#include <gtest/gtest.h>
#include <linux/nl80211.h>

namespace {

using namespace collector;

TEST(Channel, OfEveryBand) {
    const struct {
        std::uint32_t frequency;
        std::optional<std::uint32_t> number;
    } cases[] = {
        {2412, 1},  {2437, 6},   {2472, 13},  {2484, 14}, {4920, 184}, {4980, 196}, {5035, 7},
        {5180, 36}, {5825, 165}, {5885, 177}, {5935, 2},  {5955, 1},   {6415, 93},  {7115, 233},
        {58320, 1}, {60480, 2},  {69120, 6},  {0, {}},    {2407, {}},  {2411, {}},  {2473, {}},
        {3000, {}}, {5181, {}},  {5950, {}},  {7126, {}}, {58321, {}}, {56160, {}}, {0xffffffff, {}},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(channel(expected.frequency), expected.number) << expected.frequency;
}

TEST(Milliwatts, OfPower) {
    const struct {
        std::int32_t power;
        std::uint32_t milliwatts;
    } cases[] = {
        {2000, 100}, {1000, 10}, {2300, 200}, {0, 1}, {-1000, 1}, {3000, 1000}, {INT32_MIN, 1}, {INT32_MAX, 1000000000},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(milliwatts(expected.power), expected.milliwatts) << expected.power;
}

TEST(RegulatoryDomain, OfCountryAndRegion) {
    const struct {
        const char* country;
        std::uint8_t dfs;
        std::optional<std::uint32_t> domain;
    } cases[] = {
        {"DE", NL80211_DFS_ETSI, 48}, {"US", NL80211_DFS_FCC, 16},   {"CA", NL80211_DFS_FCC, 32},
        {"JP", NL80211_DFS_JP, 64},   {"AU", NL80211_DFS_ETSI, 48},  {"BR", NL80211_DFS_FCC, 16},
        {"XX", NL80211_DFS_JP, 64},   {"00", NL80211_DFS_UNSET, {}}, {"00", 9, {}},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(regulatory_domain({expected.country, expected.dfs, {}}), expected.domain) << expected.country;
}

TEST(MacText, BothWays) {
    EXPECT_EQ(mac_text({0, 0x1a, 0xff, 9, 0x80, 1}), "00:1a:ff:09:80:01");
    EXPECT_EQ(mac_of("00:1a:FF:09:80:01"), (Mac{0, 0x1a, 0xff, 9, 0x80, 1}));
    for (const char* wrong : {"", "00:1a:ff:09:80", "00:1a:ff:09:80:0", "00:1a:ff:09:80:011", "00-1a-ff-09-80-01",
                              "0g:1a:ff:09:80:01", "+1:1a:ff:09:80:01"})
        EXPECT_EQ(mac_of(wrong), std::nullopt) << wrong;
}

TEST(Plain, NothingThatSteersATerminal) {
    EXPECT_EQ(plain("  ACME \x1b[31m\n\xc3\xa9 Ltd  "), "ACME [31m Ltd");
    EXPECT_EQ(plain(std::string(500, 'x')).size(), 127U);
    EXPECT_EQ(plain(""), "");
}

// One access point, with everything known.
Observed seen() {
    AccessPoint point;
    point.interface = {6, "wlan0_1", 0, NL80211_IFTYPE_AP, {2, 0, 0, 0, 1, 0}, "old", 2437, 2000};
    point.name = "0ap0";
    point.hostapd = HostapdBss{true, "lab", 100, 2, "WPA-PSK", 2};
    point.totals = {100, 3, 50, 7, {}};
    point.sent[1] = Sent{Told::deauthenticated, 5, {2, 0, 0, 0, 2, 0}};
    Observed observed;
    observed.access_points = {point};
    observed.radios = {{0, "phy0", 7, 4, 2000, 1600}};
    observed.regulatory = {{"DE", NL80211_DFS_ETSI, {}}};
    observed.manufacturer = {"Example Ltd", "AP-1", "2"};
    return observed;
}

TEST(Contents, OfAnAccessPoint) {
    const Contents expected = {
        {{"interface", "0ap0"},
         {{"origin", "cfql-collector"},
          {"origin-index", "6"},
          {"origin-hostapd", "told"},
          {"type", "service-set"},
          {"bss", "0ap0"},
          {"mac", "02:00:00:00:01:00"},
          {"ssid", "lab"},
          {"security", "wpa2 WPA-PSK"},
          {"dot11-privacy-invoked", "1"},
          {"tx-power", "100"},
          {"dot11-current-reg-domain", "48"},
          {"dot11-short-retry-limit", "7"},
          {"dot11-long-retry-limit", "4"},
          {"dot11-deauthenticate-reason", "5"},
          {"dot11-deauthenticate-station", "02:00:00:00:02:00"},
          {"transmitted-frame-count", "100"},
          {"failed-count", "3"},
          {"received-fragment-count", "50"},
          {"ack-failure-count", "7"}}},
        {{"bss", "0ap0"},
         {{"origin", "cfql-collector"},
          {"radio", "0ap0"},
          {"dtim-period", "2"},
          {"open-system-authentication", "on"},
          {"shared-key-authentication", "off"}}},
        {{"radio", "0ap0"},
         {{"origin", "cfql-collector"},
          {"channel", "6"},
          {"beacon-interval", "100"},
          {"rts-threshold", "2000"},
          {"fragmentation-threshold", "1600"},
          {"manufacturer-id", "Example Ltd"},
          {"manufacturer-name", "Example Ltd"},
          {"manufacturer-product-name", "AP-1"},
          {"manufacturer-product-version", "2"},
          {"manufacturer-oui", "02:00:00"}}},
        {{"system", ""}, {{"country", "DE"}, {"origin", "cfql-collector"}}},
    };
    EXPECT_EQ(contents(seen(), {}), expected);
}

// The text of `key` in `table`, or "-".
std::string value(const Observed& observed, const char* table, const char* key,
                  const Configuration& configuration = {}) {
    const Contents made = contents(observed, configuration);
    const auto object = made.find({table, std::string(table) == "system" ? "" : "0ap0"});
    if (object == made.end() || !object->second.contains(key)) return "-";
    return object->second.find(key)->second;
}

TEST(Contents, OffIsWrittenAsTheTablesNumber) {
    Observed observed = seen();
    observed.radios[0].rts = threshold_off;
    observed.radios[0].fragmentation = threshold_off;
    EXPECT_EQ(value(observed, "radio", "rts-threshold"), "2347");
    EXPECT_EQ(value(observed, "radio", "fragmentation-threshold"), "2346");
}

TEST(Contents, Security) {
    const struct {
        const char* name;
        std::optional<HostapdBss> hostapd;
        std::optional<bool> key;
        const char *security, *privacy, *open, *shared;
    } cases[] = {
        {"WPA2", HostapdBss{true, {}, {}, {}, "WPA-PSK", 2}, {}, "wpa2 WPA-PSK", "1", "on", "off"},
        {"WPA", HostapdBss{true, {}, {}, {}, "WPA-PSK", 1}, {}, "wpa WPA-PSK", "1", "on", "off"},
        {"both", HostapdBss{true, {}, {}, {}, "WPA-PSK", 3}, {}, "wpa wpa2 WPA-PSK", "1", "on", "off"},
        {"SAE alone", HostapdBss{true, {}, {}, {}, "SAE", 2}, {}, "wpa2 SAE", "1", "off", "off"},
        {"SAE and fast transition",
         HostapdBss{true, {}, {}, {}, "SAE FT-SAE", 2},
         {},
         "wpa2 SAE FT-SAE",
         "1",
         "off",
         "off"},
        {"SAE beside PSK", HostapdBss{true, {}, {}, {}, "WPA-PSK SAE", 2}, {}, "wpa2 WPA-PSK SAE", "1", "on", "off"},
        {"open", HostapdBss{true, {}, {}, {}, "", 0}, false, "plain-text", "2", "on", "off"},
        {"WEP", HostapdBss{true, {}, {}, {}, "", 0}, true, "wep", "1", "on", "-"},
        {"not ours to see", HostapdBss{true, {}, {}, {}, "", 0}, {}, "-", "-", "on", "-"},
        {"without hostapd, no key", {}, false, "plain-text", "2", "-", "off"},
        {"without hostapd, a key", {}, true, "wep-or-wpa", "1", "-", "-"},
        {"without hostapd, not ours to see", {}, {}, "-", "-", "-", "-"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        Observed observed = seen();
        observed.access_points[0].hostapd = expected.hostapd;
        observed.access_points[0].group_key = expected.key;
        EXPECT_EQ(value(observed, "interface", "security"), expected.security);
        EXPECT_EQ(value(observed, "interface", "dot11-privacy-invoked"), expected.privacy);
        EXPECT_EQ(value(observed, "bss", "open-system-authentication"), expected.open);
        EXPECT_EQ(value(observed, "bss", "shared-key-authentication"), expected.shared);
    }
}

TEST(Contents, WithoutHostapdTheKernelsValues) {
    Observed observed = seen();
    observed.access_points[0].hostapd.reset();
    EXPECT_EQ(value(observed, "interface", "ssid"), "old");
    EXPECT_EQ(value(observed, "bss", "dtim-period"), "-");
    EXPECT_EQ(value(observed, "radio", "beacon-interval"), "-");
    observed.access_points[0].dtim = 3;
    observed.access_points[0].beacon = 200;
    EXPECT_EQ(value(observed, "bss", "dtim-period"), "3");
    EXPECT_EQ(value(observed, "radio", "beacon-interval"), "200");
}

TEST(Contents, AnSsidEndsAtANul) {
    Observed observed = seen();
    observed.access_points[0].hostapd.reset();
    observed.access_points[0].interface.ssid = std::string("a\0b", 3);
    EXPECT_EQ(value(observed, "interface", "ssid"), "a");
    observed.access_points[0].interface.ssid = std::string("\0b", 2);
    EXPECT_EQ(value(observed, "interface", "ssid"), "-");
}

TEST(Contents, CountriesThatAreNone) {
    for (const char* country : {"00", "98", "99"}) {
        Observed observed = seen();
        observed.regulatory[0].country = country;
        EXPECT_EQ(value(observed, "system", "country"), "-") << country;
    }
}

TEST(Contents, ARadioThatRulesItself) {
    Observed observed = seen();
    observed.regulatory.push_back({"JP", NL80211_DFS_JP, 0});
    EXPECT_EQ(value(observed, "interface", "dot11-current-reg-domain"), "64");
    EXPECT_EQ(value(observed, "system", "country"), "DE");
}

TEST(Contents, CountersModulo2To31) {
    Observed observed = seen();
    observed.access_points[0].totals.failed = 2147483648;
    observed.access_points[0].totals.bad_checksums = 2147483650;
    EXPECT_EQ(value(observed, "interface", "failed-count"), "0");
    EXPECT_EQ(value(observed, "interface", "fcs-error-count"), "2");
}

TEST(Contents, CountersThatAreNotTrueAreNotWritten) {
    for (const char* key :
         {"transmitted-fragment-count", "multicast-transmitted-frame-count", "retry-count", "multiple-retry-count",
          "frame-duplicate-count", "rts-success-count", "rts-failure-count", "multicast-received-frame-count",
          "fcs-error-count", "wep-undecryptable-count", "dot11-phy-type"})
        EXPECT_EQ(value(seen(), "interface", key), "-") << key;
    EXPECT_EQ(contents(seen(), {}).count({"supported-rate", "0ap0"}), 0U);
}

TEST(Contents, TheOperatorsValuesGoUnderTheLiveOnes) {
    Configuration configuration;
    configuration.tables["*"] = {{"wep-default-key", "1"}, {"channel", "13"}, {"dot11d", "down"}, {"ssid", "mine"}};
    configuration.tables["wlan0_1"] = {{"dot11d", "up"}};
    configuration.tables["0ap0"] = {{"dot11d", "by the served name"}};
    EXPECT_EQ(value(seen(), "interface", "wep-default-key", configuration), "1");
    EXPECT_EQ(value(seen(), "radio", "channel", configuration), "6");
    EXPECT_EQ(value(seen(), "interface", "ssid", configuration), "lab");
    EXPECT_EQ(value(seen(), "radio", "dot11d", configuration), "up");
    Observed observed = seen();
    observed.access_points[0].interface.frequency.reset();
    EXPECT_EQ(value(observed, "radio", "channel", configuration), "13");
}

TEST(Left, IsWhatWasSeen) {
    const AccessPoint point = seen().access_points[0];
    const std::map<std::uint32_t, Left> expected = {{6, {{100, 3, 50, 7, {}}, point.sent, point.hostapd}}};
    EXPECT_EQ(left_in(contents(seen(), {})), expected);
}

// Every kind of security that hostapd tells comes back as it was told.
TEST(Left, HasWhatHostapdTold) {
    const HostapdBss all[] = {
        {true, "lab", 100, 2, "WPA-PSK", 1},   {true, "lab", 100, 2, "WPA-PSK WPA-PSK-SHA256 SAE", 2},
        {true, "lab", 200, 255, "WPA-EAP", 3}, {true, "wpa2 WPA-PSK", 100, 2, "", 2},
        {true, "lab", {}, {}, "", 0},          {true, {}, 100, 2, "", 0},
    };
    for (const HostapdBss& told : all) {
        for (const std::optional<bool> group_key : {std::optional<bool>(), std::optional(false), std::optional(true)}) {
            Observed observed = seen();
            observed.access_points[0].hostapd = told;
            observed.access_points[0].group_key = group_key;
            if (!told.ssid) observed.access_points[0].interface.ssid.clear();
            EXPECT_EQ(left_in(contents(observed, {})).at(6).hostapd, told) << *told.suites;
        }
    }
    Observed observed = seen();
    observed.access_points[0].hostapd.reset();
    EXPECT_EQ(left_in(contents(observed, {})).at(6).hostapd, std::nullopt);
}

TEST(Left, OfAnInterfaceThatIsNotServed) {
    Observed observed = seen();
    observed.access_points.clear();
    observed.resting = {{6, {100, 3, 50, {}, 9}, seen().access_points[0].sent}, {7, {0, 0, 0, 0, 0}, {}}};
    const Contents made = contents(observed, {});
    EXPECT_EQ(made.at({"collector", "6"}), (Values{{"origin", "cfql-collector"},
                                                   {"origin-index", "6"},
                                                   {"dot11-deauthenticate-reason", "5"},
                                                   {"dot11-deauthenticate-station", "02:00:00:00:02:00"},
                                                   {"transmitted-frame-count", "100"},
                                                   {"failed-count", "3"},
                                                   {"received-fragment-count", "50"},
                                                   {"fcs-error-count", "9"}}));
    EXPECT_EQ(made.size(), 2U);  // the country, and nothing of one that has counted nothing
    const std::map<std::uint32_t, Left> expected = {
        {6, {{100, 3, 50, {}, 9}, seen().access_points[0].sent, std::nullopt}}};
    EXPECT_EQ(left_in(made), expected);
}

TEST(Left, TextsOfAnyKindCountForNothing) {
    const Contents held = {
        {{"interface", "wlan0"},
         {{"origin-index", "6"},
          {"origin-hostapd", "x"},
          {"failed-count", "x"},
          {"received-fragment-count", "12x"},
          {"transmitted-frame-count", "-1"},
          {"dot11-disassociate-reason", "70000"},
          {"dot11-disassociate-station", "02:00:00:00:00:00"}}},
        {{"interface", "wlan1"}, {{"origin-index", "99999999999"}}},
        {{"bss", "wlan2"}, {{"origin-index", "8"}}},
    };
    const std::map<std::uint32_t, Left> expected = {{6, {}}};
    EXPECT_EQ(left_in(held), expected);
}

}  // namespace
