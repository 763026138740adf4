// What lint says about each key: a line for each fact. Interfaces need not exist (--offline) unless a test is about
// that.
#include <fstream>
#include <sstream>

#include "columns.h"
#include "tool.h"

namespace {

class Lint : public Tool {
  protected:
    void SetUp() override { done({"init"}); }

    Outcome lint(const std::string& contents, const Words& words = {"lint", "--offline", "--defaults"}) {
        done({"import", "--replace", "--allow-empty", "-"}, {.input = contents});
        return run(words);
    }
};

constexpr const char* served = "[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\nbss = \"b\"\n";

// A store with one key set, below the block that holds it.
std::string with(const std::string& table, const std::string& line) {
    const auto block = [&](const std::string& name) { return name == table ? line + '\n' : std::string(); };
    return served + block("interface") + "[[bss]]\nname = \"b\"\nradio = \"wlan0\"\n" + block("bss") +
           "[[radio]]\nname = \"wlan0\"\n" + block("radio") + "[[supported-rate]]\nname = \"wlan0\"\n" +
           block("supported-rate") + "[[system]]\n" + block("system");
}

struct Fact {
    const char* table;
    const char* key;
    std::string value;
    std::string finding;  // what is said of the key; empty: nothing
};

std::string x(std::size_t count) {
    return std::string(count, 'x');
}

const Fact findings[] = {
    {"interface", "mac", "00:11:22:aa:BB:cc", ""},
    {"interface", "mac", "001122aabbcc", ""},
    {"interface", "mac", "00:00:5e",
     "\"00:00:5e\" is not 12 hexadecimal digits, with or without colons: served as 00 00 5e 00 00 00 "
     "(dot11MACAddress, dot11StationID)"},
    {"interface", "dot11-disassociate-station", "1",
     "\"1\" is not 12 hexadecimal digits, with or without colons: served as 10 00 00 00 00 00 "
     "(dot11DisassociateStation)"},
    {"interface", "dot11-deauthenticate-station", "00:11:22:33:44:5g",
     "\"00:11:22:33:44:5g\" is not 12 hexadecimal digits, with or without colons: served as 00 11 22 33 44 77 "
     "(dot11DeauthenticateStation)"},
    {"interface", "dot11-authenticate-fail-station", "00:11:22:33:44:55:66",
     "\"00:11:22:33:44:55:66\" is not 12 hexadecimal digits, with or without colons: served as 00 11 22 33 44 55 "
     "(dot11AuthenticateFailStation)"},
    {"interface", "dot11-cf-pollable", "1", ""},
    {"interface", "dot11-cf-pollable", "0", ""},
    {"interface", "dot11-cf-pollable", "2", ""},
    {"interface", "dot11-cf-pollable", "true", "\"true\" is none of the words 1 0 2: served as 2 (dot11CFPollable)"},
    {"interface", "dot11-privacy-option-implemented", "on", ""},
    {"bss", "open-system-authentication", "on", ""},
    {"bss", "open-system-authentication", "off", ""},
    {"bss", "open-system-authentication", "ON",
     "\"ON\" is none of the words on off: served as 2 (dot11AuthenticationAlgorithmsEnable)"},
    {"bss", "shared-key-authentication", "1",
     "\"1\" is none of the words on off: served as 2 (dot11AuthenticationAlgorithmsEnable)"},
    {"radio", "dot11d", "up", ""},
    {"radio", "dot11d", "down", ""},
    {"radio", "dot11d", "on",
     "\"on\" is none of the words up down: served as 1 (dot11MultiDomainCapabilityImplemented), as 2 "
     "(dot11MultiDomainCapabilityEnabled)"},
    {"interface", "dot11-authentication-response-time-out", "12a",
     "\"12a\" is no decimal number (time units of 1024 us): served as 4294967295 "
     "(dot11AuthenticationResponseTimeOut)"},
    {"interface", "dot11-authentication-response-time-out", "-5",
     "\"-5\" is not served as it is: served as 4294967291 (dot11AuthenticationResponseTimeOut)"},
    {"interface", "dot11-association-response-time-out", "1-2",
     "\"1-2\" is no decimal number (time units of 1024 us): served as 4294967295 "
     "(dot11AssociationResponseTimeOut)"},
    {"interface", "dot11-disassociate-reason", " 1",
     "\" 1\" is no decimal number: served as -1 (dot11DisassociateReason)"},
    {"interface", "dot11-deauthenticate-reason", "+7", ""},
    {"interface", "dot11-authenticate-fail-status", "0x1",
     "\"0x1\" is no decimal number: served as -1 (dot11AuthenticateFailStatus)"},
    {"radio", "beacon-interval", "fast",
     "\"fast\" is no decimal number (time units of 1024 us): served as -1 (dot11BeaconPeriod)"},
    {"bss", "dtim-period", "2147483647", ""},
    {"bss", "dtim-period", "0007", ""},
    {"bss", "dtim-period", "2147483648",
     "\"2147483648\" is not served as it is: served as -2147483648 (dot11DTIMPeriod)"},
    {"bss", "dtim-period", "-2147483648", ""},
    {"bss", "dtim-period", "-2147483649",
     "\"-2147483649\" is not served as it is: served as 2147483647 (dot11DTIMPeriod)"},
    {"bss", "dtim-period", "4294967297", "\"4294967297\" is not served as it is: served as 1 (dot11DTIMPeriod)"},
    {"interface", "dot11-privacy-invoked", "-1", "\"-1\" is not served as it is: served as 0 (dot11PrivacyInvoked)"},
    {"interface", "wep-default-key", "two", "\"two\" is no decimal number: served as 0 (dot11WEPDefaultKeyID)"},
    {"interface", "wep-key-mapping-length", "-10",
     "\"-10\" is not served as it is: served as 0 (dot11WEPKeyMappingLength)"},
    {"radio", "rts-threshold", "-1", "\"-1\" is not served as it is: served as 2346 (dot11RTSThreshold)"},
    {"radio", "rts-threshold", "500", "\"500\" is not served as it is: served as 2346 (dot11RTSThreshold)"},
    {"radio", "fragmentation-threshold", "x",
     "\"x\" is no decimal number (octets): served as 0 (dot11FragmentationThreshold)"},
    {"interface", "dot11-short-retry-limit", "-3", "\"-3\" is not served as it is: served as 0 (dot11ShortRetryLimit)"},
    {"interface", "dot11-short-retry-limit", "+", "\"+\" is no decimal number: served as 0 (dot11ShortRetryLimit)"},
    {"interface", "dot11-long-retry-limit", "3000000000",
     "\"3000000000\" is not served as it is: served as 0 (dot11LongRetryLimit)"},
    {"interface", "dot11-max-transmit-msdu-lifetime", "-3",
     "\"-3\" is not served as it is: served as 0 (dot11MaxTransmitMSDULifetime)"},
    {"interface", "dot11-max-receive-lifetime", "-3",
     "\"-3\" is not served as it is: served as 0 (dot11MaxReceiveLifetime)"},
    {"interface", "retry-count", "-1",
     "\"-1\" is not served as it is; counters go from 2147483647 to 0: served as 0 (dot11RetryCount)"},
    {"interface", "retry-count", "2147483647", ""},
    {"interface", "retry-count", "2147483648",
     "\"2147483648\" is not served as it is; counters go from 2147483647 to 0: served as 0 (dot11RetryCount)"},
    {"interface", "retry-count", "9999999999",
     "\"9999999999\" is not served as it is; counters go from 2147483647 to 0: served as 1410065407 "
     "(dot11RetryCount)"},
    {"interface", "dot11-current-reg-domain", "-1",
     "\"-1\" is not served as it is: served as 0 (dot11CurrentRegDomain, dot11RegDomainsSupportValue)"},
    {"interface", "dot11-temp-type", "-5", "\"-5\" is not served as it is: served as 0 (dot11TempType)"},
    {"interface", "tx-power", "-3", ""},
    {"interface", "tx-power", "max", "\"max\" is no decimal number (mW)"},
    {"radio", "channel", "-1", ""},
    {"radio", "channel", "auto", "\"auto\" is no decimal number: served as -1 (dot11CurrentChannel)"},
    {"interface", "ssid", x(32), ""},
    {"interface", "ssid", x(33),
     '"' + x(32) + "\"... is clipped from 33 octets to 32: served as \"" + x(32) + "\" (dot11DesiredSSID)"},
    {"interface", "ssid", "caf\xc3\xa9", ""},
    {"interface", "wep-key-1", x(64), ""},
    {"interface", "wep-key-4", x(65), "the value is clipped from 65 octets to 64"},
    {"system", "country", "DE", ""},
    {"system", "country", "DEU", "\"DEU\" is not served as it is: served as \"???\" (dot11CountryString)"},
    {"supported-rate", "rate", "540", ""},
    {"supported-rate", "rate", "fast", "\"fast\" is no decimal number (100 kbit/s)"},
};

TEST_F(Lint, Values) {
    for (const Fact& fact : findings) {
        SCOPED_TRACE(std::string(fact.key) + " = " + fact.value);
        const std::string about = std::string("key \"") + fact.key + "\": ";
        const Outcome outcome = lint(with(fact.table, std::string(fact.key) + " = \"" + fact.value + '"'));
        if (fact.finding.empty()) {
            EXPECT_EQ(outcome.out.find(about), std::string::npos) << outcome.out;
        } else {
            EXPECT_NE(outcome.out.find(about + fact.finding + '\n'), std::string::npos) << outcome.out;
        }
    }
}

// Of the SSID, and of one that is clipped in the middle of a character.
TEST_F(Lint, TextsThatAreNotUtf8) {
    const std::string harm = "not UTF-8: where it is a label, a scrape of the whole access point fails: served as ";
    EXPECT_NE(lint(served + std::string("ssid = { hex = \"636166e9\" }\n"))
                  .out.find("key \"ssid\": \"caf\\xe9\" is " + harm + "63 61 66 e9 (dot11DesiredSSID)\n"),
              std::string::npos);
    EXPECT_NE(lint(served + ("ssid = \"" + x(31)) + "\xc3\xa9\"\n")
                  .out.find(" is clipped from 33 octets to 32, which are " + harm + "78 78 "),
              std::string::npos);
    EXPECT_EQ(lint(served + std::string("wep-key-1 = { hex = \"e9e9e9e9e9\" }\n")).out.find("UTF-8"),
              std::string::npos);
}

TEST_F(Lint, TheCollectorsMarksAreKnown) {
    const std::string mark = "origin = \"cfql-collector\"\n";
    const std::string out = lint(
                                "[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\norigin-index = \"6\"\n"
                                "origin-hostapd = \"told\"\n" +
                                mark + "[[collector]]\nname = \"7\"\nfailed-count = \"3\"\n" + mark +
                                "[[system]]\ncountry = \"DE\"\n" + mark)
                                .out;
    EXPECT_EQ(out.find("origin"), std::string::npos) << out;
    EXPECT_EQ(out.find("collector"), std::string::npos) << out;
}

const std::string all_by_default = std::to_string(stored_cells()) + " values served by default; see --defaults\n";

TEST_F(Lint, DefaultsOfAnEmptyInterface) {
    const std::string out = lint("[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\nssid = \"\"\n").out;
    const struct {
        const char* column;
        const char* source;
        const char* fallback;
    } facts[] = {
        {"dot11StationID", "\"mac\" in \"interface\"", "00 00 00 00 00 00"},
        {"dot11CFPollable", "\"dot11-cf-pollable\" in \"interface\"", "2"},
        {"dot11AuthenticationResponseTimeOut", "\"dot11-authentication-response-time-out\" in \"interface\"", "1"},
        {"dot11PrivacyOptionImplemented", "\"security\" in \"interface\"", "2"},
        {"dot11DesiredSSID", "\"ssid\" in \"interface\"", "\"0\""},
        {"dot11BeaconPeriod", "\"beacon-interval\" in \"radio\"", "1"},
        {"dot11DTIMPeriod", "\"dtim-period\" in \"bss\"", "1"},
        {"dot11MultiDomainCapabilityImplemented", "\"dot11d\" in \"radio\"", "2"},
        {"dot11MultiDomainCapabilityEnabled", "\"dot11d\" in \"radio\"", "-1"},
        {"dot11CountryString", "\"country\" in \"system\"", "\"???\""},
        {"dot11AuthenticationAlgorithmsEnable", "\"open-system-authentication\" in \"bss\"", "2"},
        {"dot11PrivacyInvoked", "\"dot11-privacy-invoked\" in \"interface\"", "2"},
        {"dot11WEPKeyMappingLength", "\"wep-key-mapping-length\" in \"interface\"", "10"},
        {"dot11RTSThreshold", "\"rts-threshold\" in \"radio\"", "2346"},
        {"dot11ShortRetryLimit", "\"dot11-short-retry-limit\" in \"interface\"", "7"},
        {"dot11MaxTransmitMSDULifetime", "\"dot11-max-transmit-msdu-lifetime\" in \"interface\"", "512"},
        {"dot11FCSErrorCount", "\"fcs-error-count\" in \"interface\"", "0"},
        {"dot11RegDomainsSupportValue", "\"dot11-current-reg-domain\" in \"interface\"", "16"},
        {"dot11CurrentChannel", "\"channel\" in \"radio\"", "6"},
    };
    for (const auto& fact : facts) {
        const std::string line = std::string("note: interface \"wlan0\": ") + fact.column + ": " + fact.source +
                                 " is not set, or empty: served as " + fact.fallback + '\n';
        EXPECT_NE(out.find(line), std::string::npos) << line << out;
    }
    const std::string brief =
        lint("[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\n", {"lint", "--offline"}).out;
    EXPECT_TRUE(brief.starts_with("note: interface \"wlan0\": " + all_by_default)) << brief;
}

TEST_F(Lint, WhatIsNotRead) {
    const struct {
        std::string contents;
        const char* finding;
    } cases[] = {
        {"", "warning: interface: none is left to serve: the tables are empty\n"},
        {"[[interface]]\nname = \"wlan0\"\n",
         "note: interface \"wlan0\": skipped: its type is \"\", not \"service-set\"\n"},
        {"[[interface]]\nname = \"wlan0\"\ntype = \"wired\"\n",
         "note: interface \"wlan0\": skipped: its type is \"wired\", not \"service-set\"\n"},
        {"[[interface]]\nname = \"wlan10\"\ntype = \"service-set\"\n",
         "warning: interface \"wlan10\": skipped: the name has more than 5 characters\n"},
        {std::string(served) + served,
         "warning: interface \"wlan0\": given more than once: every row shows the first one\n"},
        {served, "warning: interface \"wlan0\": key \"bss\" leads nowhere: there is no bss \"b\"\n"},
        {std::string(served) + "[[bss]]\nname = \"b\"\nradio = \"r\"\n",
         "warning: bss \"b\": key \"radio\" leads nowhere: there is no radio \"r\"\n"},
        {std::string(served) + "[[bss]]\nname = \"b\"\nradio = \"r\"\n[[radio]]\nname = \"r\"\nbeacon-interval = "
                               "\"1\"\nchannel = \"1\"\n",
         "warning: radio \"r\": key \"channel\" is not read here: it is looked up in radio \"wlan0\"\n"},
        {std::string(served) + "[[bss]]\nname = \"other\"\ndtim-period = \"1\"\n",
         "note: bss \"other\": no interface that is served leads to it\n"},
        {std::string(served) + "[[bss]]\nname = \"b\"\nradio = \"r\"\n[[bss]]\nname = \"b\"\nradio = \"s\"\n",
         "warning: bss \"b\" number 2: the agent reads only the first one of a name\n"},
        {"[[vlan]]\nname = \"v\"\n", "warning: vlan \"v\": the agent reads no table \"vlan\"\n"},
        {"[[inteface]]\nname = \"v\"\n",
         "warning: inteface \"v\": the agent reads no table \"inteface\"; did you mean \"interface\"?\n"},
        {with("interface", "sssid = \"x\""),
         "warning: interface \"wlan0\": the agent reads no key \"sssid\" in \"interface\"; did you mean \"ssid\"?\n"},
        {with("interface", "beacon-interval = \"x\""),
         "warning: interface \"wlan0\": the agent reads the key \"beacon-interval\" in \"radio\", not in "
         "\"interface\"\n"},
        {with("radio", "manufacturer-name = \"x\""), "note: agent: no GET answers what it reads under "},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.contents);
        const Outcome outcome = lint(expected.contents);
        EXPECT_NE(outcome.out.find(expected.finding), std::string::npos) << outcome.out;
    }
}

TEST_F(Lint, InterfacesThatTheSystemDoesNotHave) {
    const std::string contents =
        "[[interface]]\nname = \"lo\"\ntype = \"service-set\"\n[[interface]]\nname = \"qqqq9\"\ntype = "
        "\"service-set\"\n"
        "[[supported-rate]]\nname = \"qqqq8\"\nrate = \"1\"\n";
    const Outcome outcome = lint(contents, {"lint"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out,
              "warning: interface \"qqqq9\": skipped: the system has no such interface\n"
              "note: interface \"lo\": " +
                  all_by_default +
                  "note: supported-rate \"qqqq8\": no interface that is served leads to it\n"
                  "1 warning, 2 notes\n");
}

TEST_F(Lint, NumberOfInterfaces) {
    for (const int count : {128, 129}) {
        std::string contents;
        for (int i = 0; i < count; ++i)
            contents += "[[interface]]\nname = \"w" + std::to_string(i) + "\"\ntype = \"service-set\"\n";
        const Outcome outcome = lint(contents, {"lint", "--offline"});
        EXPECT_EQ(outcome.status, count == 128 ? 0 : 1);
        EXPECT_EQ(outcome.out.find("warning: interface: 129 are more than 128: nothing is served at all\n"),
                  count == 128 ? std::string::npos : 0U);
    }
}

TEST_F(Lint, SecretsAreNeverShown) {
    const Outcome outcome = lint(with("interface", "wep-key-1 = \"" + x(65) + "\""));
    EXPECT_EQ(outcome.out.find("xxx"), std::string::npos) << outcome.out;
}

TEST_F(Lint, TheExampleHasNothingToMend) {
    std::stringstream text;
    text << std::ifstream(EXAMPLE).rdbuf();
    const Outcome outcome = lint(text.str(), {"lint", "--offline"});
    EXPECT_EQ(outcome.status, 0);
    const std::string mend = "packaging/example.toml lacks a key for wlan0 or wlan1, or sets what is not served:\n";
    EXPECT_TRUE(outcome.out.starts_with("note: interface \"wlan2\"")) << mend << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with("0 warnings, 2 notes\n")) << mend << outcome.out;
}

}  // namespace
