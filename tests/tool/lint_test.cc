// What lint says about each key: one line a fact. Interfaces need not exist (--offline) unless a test is about that.
#include <fstream>
#include <sstream>

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

TEST_F(Lint, Values) {
    const Fact facts[] = {
        {"interface", "mac", "00:11:22:aa:BB:cc", ""},
        {"interface", "mac", "001122aabbcc", ""},
        {"interface", "mac", "00-11-22-aa-bb-cc",
         "\"00-11-22-aa-bb-cc\" is not 12 hexadecimal digits, with or without colons: wrong octets are served"},
        {"interface", "dot11-disassociate-station", "1",
         "\"1\" is not 12 hexadecimal digits, with or without colons: wrong octets are served"},
        {"interface", "dot11-deauthenticate-station", "00:11:22:33:44:5g",
         "\"00:11:22:33:44:5g\" is not 12 hexadecimal digits, with or without colons: wrong octets are served"},
        {"interface", "dot11-authenticate-fail-station", "00:11:22:33:44:55:66",
         "\"00:11:22:33:44:55:66\" is not 12 hexadecimal digits, with or without colons: wrong octets are served"},
        {"interface", "dot11-cf-pollable", "1", ""},
        {"interface", "dot11-cf-pollable", "0", ""},
        {"interface", "dot11-cf-pollable", "2", ""},
        {"interface", "dot11-cf-pollable", "true", "\"true\" is read as disabled: only \"1\" is enabled"},
        {"interface", "dot11-privacy-option-implemented", "on", "\"on\" is read as disabled: only \"1\" is enabled"},
        {"bss", "open-system-authentication", "on", ""},
        {"bss", "open-system-authentication", "off", ""},
        {"bss", "open-system-authentication", "ON", "\"ON\" is read as disabled: only \"on\" is enabled"},
        {"bss", "shared-key-authentication", "1", "\"1\" is read as disabled: only \"on\" is enabled"},
        {"radio", "dot11d", "up", ""},
        {"radio", "dot11d", "down", ""},
        {"radio", "dot11d", "on", "\"on\" is read as disabled: only \"up\" is enabled"},
        {"interface", "dot11-authentication-response-time-out", "12a", "\"12a\" is no decimal number: served as -1"},
        {"interface", "dot11-authentication-response-time-out", "-5", ""},  // negative ones are kept here
        {"interface", "dot11-association-response-time-out", "1-2", "\"1-2\" is no decimal number: served as -1"},
        {"interface", "dot11-disassociate-reason", " 1", "\" 1\" is no decimal number: served as -1"},
        {"interface", "dot11-deauthenticate-reason", "+7", ""},
        {"interface", "dot11-authenticate-fail-status", "0x1", "\"0x1\" is no decimal number: served as -1"},
        {"radio", "beacon-interval", "fast", "\"fast\" is no decimal number: served as -1"},
        {"bss", "dtim-period", "2147483647", ""},
        {"bss", "dtim-period", "2147483648", "\"2147483648\" does not fit 32 bits: served as -2147483648"},
        {"bss", "dtim-period", "-2147483648", ""},
        {"bss", "dtim-period", "-2147483649", "\"-2147483649\" does not fit 32 bits: served as 2147483647"},
        {"bss", "dtim-period", "4294967297", "\"4294967297\" does not fit 32 bits: served as 1"},
        {"interface", "dot11-privacy-invoked", "-1", "\"-1\" is negative: served as 0"},
        {"interface", "wep-default-key", "two", "\"two\" is no decimal number: served as 0"},
        {"interface", "wep-key-mapping-length", "-10", "\"-10\" is negative: served as 0"},
        {"radio", "rts-threshold", "-1", "\"-1\" is negative: served as 0"},
        {"radio", "rts-threshold", "500", "without \"fragmentation-threshold\" served as 2346"},
        {"radio", "fragmentation-threshold", "x", "\"x\" is no decimal number: served as 0"},
        {"interface", "dot11-short-retry-limit", "-3", "\"-3\" is negative: served as 0"},
        {"interface", "dot11-long-retry-limit", "3000000000", "\"3000000000\" does not fit 32 bits: served as 0"},
        {"interface", "dot11-max-transmit-msdu-lifetime", "-3", "\"-3\" is negative: served as 0"},
        {"interface", "dot11-max-receive-lifetime", "-3", "\"-3\" is negative: served as 0"},
        {"interface", "retry-count", "-1", "\"-1\" is negative: served as 0"},
        {"interface", "dot11-phy-type", "0", ""},
        {"interface", "dot11-phy-type", "3", ""},
        {"interface", "dot11-phy-type", "4", "\"4\" is not 0 to 3: served as 1"},
        {"interface", "dot11-phy-type", "4294967298", "\"4294967298\" is not 0 to 3: served as 2"},
        {"interface", "dot11-phy-type", "-", "\"-\" is not 0 to 3: served as 0"},
        {"interface", "dot11-short-retry-limit", "+", "\"+\" is no decimal number: served as 0"},
        {"interface", "dot11-phy-type", "-1", "\"-1\" is not 0 to 3: served as 1"},
        {"interface", "dot11-current-reg-domain", "-1", "\"-1\" is negative: served as 0"},
        {"interface", "dot11-temp-type", "-5", "\"-5\" is negative: served as 0"},
        {"interface", "num_supported_pow_level", "-1", "\"-1\" is negative: served as 0"},
        {"interface", "tx-power", "-3", "\"-3\" is negative: served as 100 at level 1 and 0 at levels 2 to 8"},
        {"interface", "tx-power", "max",
         "\"max\" is no decimal number: served as 100 at level 1 and 0 at levels 2 to 8"},
        {"interface", "curr_tx_power_level", "-1", "\"-1\" is negative: served as 0"},
        {"radio", "channel", "-1", ""},
        {"radio", "channel", "auto", "\"auto\" is no decimal number: served as -1"},
        {"interface", "ssid", x(32), ""},
        {"interface", "ssid", x(33), "33 octets are clipped to 32"},
        {"interface", "wep-key-1", x(64), ""},
        {"interface", "wep-key-4", x(65), "65 octets are clipped to 64"},
        {"radio", "manufacturer-oui", x(8), ""},
        {"radio", "manufacturer-oui", x(9), "9 octets are clipped to 8"},
        {"radio", "manufacturer-id", x(127), ""},
        {"radio", "manufacturer-id", x(128), "128 octets are clipped to 127"},
        {"radio", "manufacturer-name", x(255), ""},
        {"radio", "manufacturer-name", x(256), "256 octets are clipped to 255"},
        {"radio", "manufacturer-product-name", x(256), "256 octets are clipped to 255"},
        {"radio", "manufacturer-product-version", x(256), "256 octets are clipped to 255"},
        {"system", "country", "DE", ""},
        {"system", "country", "DEU", "\"DEU\" is not two characters: served as ???"},
        {"supported-rate", "rate", "540", ""},
        {"supported-rate", "rate", "fast", "\"fast\" is no rate: served as 2, and as the operational rate set 0"},
        {"supported-rate", "rate", "-55", "\"-55\" is no rate: served as 2, and as the operational rate set 245"},
        {"supported-rate", "rate", "000540", "6 octets are clipped to 5"},
        {"interface", "sssid", "x", "is not read by the agent"},
        {"bss", "ssid-of-bss", "x", "is not read by the agent"},
    };
    for (const Fact& fact : facts) {
        SCOPED_TRACE(std::string(fact.key) + " = " + fact.value);
        const std::string about = std::string("key \"") + fact.key + '"';
        const Outcome outcome = lint(with(fact.table, std::string(fact.key) + " = \"" + fact.value + '"'));
        if (fact.finding.empty()) {
            EXPECT_EQ(outcome.out.find(about), std::string::npos) << outcome.out;
        } else {
            const bool is_warning = fact.finding != "is not read by the agent";
            const std::string separator = is_warning ? ": " : " ";
            EXPECT_NE(outcome.out.find(about + separator + fact.finding + '\n'), std::string::npos) << outcome.out;
            const std::string absent = std::string(": \"") + fact.key + "\" is not set";
            EXPECT_EQ(outcome.out.find(absent), std::string::npos) << outcome.out;
        }
    }
}

TEST_F(Lint, DefaultsOfAnEmptyInterface) {
    const std::string out = lint("[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\nssid = \"\"\n").out;
    const struct {
        const char* key;
        const char* fallback;
    } facts[] = {
        {"bss", "the defaults of everything reached through it"},
        {"mac", "00 in the first octet, five octets as they were"},
        {"dot11-cf-pollable", "2"},
        {"dot11-authentication-response-time-out", "1"},
        {"security", "2"},
        {"ssid", "the text 0"},
        {"rate", "one octet 00 as the operational rate set"},
        {"beacon-interval", "1"},
        {"dtim-period", "1"},
        {"dot11d", "implemented 2, enabled -1"},
        {"dot11-disassociate-reason", "0"},
        {"country", "???"},
        {"open-system-authentication", "2"},
        {"dot11-privacy-invoked", "2"},
        {"wep-default-key", "0"},
        {"wep-key-mapping-length", "10"},
        {"wep-key-3", "five octets, the first 00"},
        {"rts-threshold", "2347, or 2346 when \"fragmentation-threshold\" is not set"},
        {"fragmentation-threshold", "2346, as the RTS threshold"},
        {"dot11-short-retry-limit", "7"},
        {"dot11-long-retry-limit", "4"},
        {"dot11-max-transmit-msdu-lifetime", "512"},
        {"manufacturer-id", "the empty text"},
        {"fcs-error-count", "0"},
        {"manufacturer-oui", "XYZ"},
        {"manufacturer-name", "one octet 00"},
        {"dot11-phy-type", "1"},
        {"dot11-current-reg-domain", "0, and 16 as the supported one"},
        {"dot11-temp-type", "1"},
        {"num_supported_pow_level", "1"},
        {"tx-power", "100"},
        {"curr_tx_power_level", "1"},
        {"channel", "6"},
    };
    for (const auto& fact : facts) {
        const std::string line = std::string("note: interface \"wlan0\": \"") + fact.key +
                                 "\" is not set, or empty: served as " + fact.fallback + '\n';
        EXPECT_NE(out.find(line), std::string::npos) << line << out;
    }
    EXPECT_EQ(lint("[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\n", {"lint", "--offline"}).out,
              "note: interface \"wlan0\": 61 keys not set, or empty, and served by default; see --defaults\n"
              "0 warnings, 1 note\n");
}

TEST_F(Lint, InterfacesAndLinks) {
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
        {std::string(served) + "[[bss]]\nname = \"b\"\nradio = \"r\"\n[[radio]]\nname = \"r\"\nchannel = \"1\"\n",
         "warning: radio \"r\": its \"channel\" is not that of interface \"wlan0\": that one is looked up in radio "
         "\"wlan0\"\n"},
        {"[[vlan]]\nname = \"v\"\n", "note: vlan \"v\": the agent reads no such table\n"},
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
              "note: interface \"lo\": 61 keys not set, or empty, and served by default; see --defaults\n"
              "warning: supported-rate \"qqqq8\": skipped: the system has no such interface\n"
              "2 warnings, 1 note\n");
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

std::string rates(const std::vector<std::pair<const char*, const char*>>& objects) {
    std::string text;
    for (const auto& [name, rate] : objects)
        text += std::string("[[supported-rate]]\nname = \"") + name + "\"\nrate = \"" + rate + "\"\n";
    return text;
}

TEST_F(Lint, RateGroups) {
    const char* read = " (in 500 kbit/s; only the first object's rate is read), and as the operational rate set ";
    const struct {
        std::string contents;
        std::string finding;
    } cases[] = {
        {rates({{"a", "110"}}), "note: supported-rate \"a\": 1 row, served as 22" + std::string(read) + "22\n"},
        {rates({{"a", "55"}}), "note: supported-rate \"a\": 1 row, served as 11" + std::string(read) + "11\n"},
        {rates({{"a", "1"}}), "note: supported-rate \"a\": 1 row, served as 2" + std::string(read) + "0\n"},
        {rates({{"a", "240"}}), "note: supported-rate \"a\": 1 row, served as 48" + std::string(read) + "0\n"},
        {rates({{"a", "10"}, {"a", "20"}, {"a", "55"}}),
         "note: supported-rate \"a\": 3 rows, served as 2, 2, 2" + std::string(read) + "2\n"},
        // A group of two leaves a gap, so that the next group's rate is served in its second row.
        {rates({{"a", "110"}, {"a", "20"}, {"b", "540"}}),
         "note: supported-rate \"a\": 2 rows, served as 22, 108" + std::string(read) + "22\n" +
             "note: supported-rate \"b\": 1 row, served as 2" + std::string(read) + "108\n"},
        {rates({{"a", "110"}, {"b", "20"}, {"a", "110"}}),
         "warning: supported-rate \"a\": its objects do not follow each other: each run is a group of its own\n"},
        {rates({{"a", "1"},
                {"a", "1"},
                {"a", "1"},
                {"a", "1"},
                {"a", "1"},
                {"a", "1"},
                {"a", "1"},
                {"a", "1"},
                {"a", "1"}}),
         "warning: supported-rate \"a\": 9 rates in a row: only 8 are served\n"
         "note: supported-rate \"a\": 8 rows, served as 2, 2, 2, 2, 2, 2, 2, 2" +
             std::string(read) + "0\n"},
        {"[[supported-rate]]\nname = \"a\"\n",
         "warning: supported-rate \"a\": no \"rate\": what is served of all rates depends on the requests before\n"},
        {rates({{"a", "1"},
                {"b", "1"},
                {"c", "1"},
                {"d", "1"},
                {"e", "1"},
                {"f", "1"},
                {"g", "1"},
                {"h", "1"},
                {"i", "1"},
                {"j", "1"},
                {"k", "1"}}),
         "warning: supported-rate: 11 groups are more than 10: keep to that many\n"},
        {rates({{"toolong", "1"}}),
         "warning: supported-rate \"toolong\": skipped: the name has more than 5 characters\n"},
    };
    for (const auto& expected : cases) {
        const Outcome outcome = lint(expected.contents);
        EXPECT_NE(outcome.out.find(expected.finding), std::string::npos) << expected.finding << outcome.out;
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
    EXPECT_TRUE(outcome.out.starts_with("note: interface \"wlan2\"")) << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with("0 warnings, 3 notes\n")) << outcome.out;
}

}  // namespace
