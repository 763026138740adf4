// The form of preview's output. tests/agent/preview_test.cc tests that it says what an agent answers.
#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "agent_run.h"
#include "facts.h"
#include "toml_text.h"
#include "tool.h"

#include <fstream>

namespace {

using namespace cfql::tool;
using testing::IsEmpty;

class Preview : public Tool {
  protected:
    void SetUp() override {
        done({"init"});
        done({"import", "-"},
             {.input = "[[interface]]\nname = \"wlan0\"\ntype = \"service-set\"\nssid = \"Caf\\u00e9\"\nbss = \"b\"\n"
                       "mac = \"00:00:5e:00:53:01\"\nwep-key-2 = \"FAKE2\"\ntx-power = \"20\"\n"
                       "[[bss]]\nname = \"b\"\nradio = \"none\"\n"
                       "[[interface]]\nname = \"wlan1\"\ntype = \"service-set\"\n[[supported-rate]]\nname = "
                       "\"wlan1\"\nrate = \"110\"\n"});
    }
};

TEST_F(Preview, Lines) {
    const std::string out = done({"preview", "--offline"});
    const char* const lines[] = {
        "dot11StationID.1\twlan0\t00 00 5e 00 53 01\tstored\tinterface \"wlan0\" mac\t00:00:5e:00:53:01\n",
        "dot11MediumOccupancyLimit.1\twlan0\t100\tagent\t\t\n",
        "dot11DesiredSSID.1\twlan0\t\"Caf\xc3\xa9\"\tstored\tinterface \"wlan0\" ssid\tCaf\xc3\xa9\n",
        "dot11DesiredSSID.2\twlan1\t\"0\"\tdefault\tinterface \"wlan1\" ssid\t\n",
        "dot11BeaconPeriod.1\twlan0\t1\tdefault\tradio \"none\" beacon-interval\t\n",
        "dot11BeaconPeriod.2\twlan1\t1\tdefault\tno radio for beacon-interval\t\n",
        "dot11MultiDomainCapabilityEnabled.1\twlan0\t-1\tdefault\tradio \"none\" dot11d\t\n",
        "dot11WEPDefaultKeyValue.1.1\twlan0\t00 00 00 00 00\tdefault\tinterface \"wlan0\" wep-key-1\t\n",
        "dot11WEPDefaultKeyValue.1.2\twlan0\t********\tstored\tinterface \"wlan0\" wep-key-2\t********\n",
        "dot11TxPowerLevel1.1\twlan0\t20\tunanswered\tinterface \"wlan0\" tx-power\t20\n",
        "dot11SupportedDataRatesTxValue.2.1\twlan1\t22\tunanswered\tsupported-rate \"wlan1\" rate\t110\n",
        "dot11CountryString.1\twlan0\t\"???\"\tdefault\tsystem country\t\n",
    };
    for (const char* line : lines)
        EXPECT_NE(out.find(line), std::string::npos) << line << out;
    EXPECT_LT(out.find("dot11CurrentChannel.1\t"), out.find("dot11StationID.2\t"));  // by interface
}

TEST_F(Preview, OneInterface) {
    const std::string all = done({"preview", "--offline"});
    const std::string first = done({"preview", "--offline", "wlan0"});
    const std::string second = done({"preview", "--offline", "wlan1"});
    EXPECT_EQ(first + second, all);
    const Outcome none = run({"preview", "--offline", "wlan9"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "cfql: " + store + ": the agent would serve no interface \"wlan9\"; \"cfql lint\" tells why\n");
    EXPECT_EQ(done({"preview"}), "");  // the system has none of the two
}

TEST_F(Preview, Secrets) {
    EXPECT_EQ(done({"preview", "--offline"}).find("FAKE2"), std::string::npos);
    EXPECT_EQ(done({"preview", "--offline", "--json"}).find("FAKE2"), std::string::npos);
    EXPECT_NE(done({"preview", "--offline", "--reveal"}).find("\t\"FAKE2\"\tstored\t"), std::string::npos);
    EXPECT_NE(done({"preview", "--offline", "--json", "--reveal"}).find("\"FAKE2\""), std::string::npos);
}

const char* const json_objects[] = {
    R"(    {
        "column" : "dot11DesiredSSID",
        "from" : "stored",
        "index" : [
            1
        ],
        "interface" : "wlan0",
        "source" : {
            "key" : "ssid",
            "object" : "wlan0",
            "stored" : "Café",
            "table" : "interface"
        },
        "table" : "dot11StationConfigTable",
        "value" : {
            "hex" : "436166c3a9"
        }
    })",
    R"(    {
        "column" : "dot11WEPDefaultKeyValue",
        "from" : "stored",
        "hidden" : true,
        "index" : [
            1,
            2
        ],
        "interface" : "wlan0",
        "source" : {
            "key" : "wep-key-2",
            "object" : "wlan0",
            "table" : "interface"
        },
        "table" : "dot11WEPDefaultKeysTable"
    })",
    R"(    {
        "column" : "dot11MultiDomainCapabilityEnabled",
        "from" : "default",
        "index" : [
            2
        ],
        "interface" : "wlan1",
        "source" : {
            "key" : "dot11d",
            "table" : "radio"
        },
        "table" : "dot11StationConfigTable",
        "value" : -1
    })",
};

TEST_F(Preview, Json) {
    const std::string out = done({"preview", "--offline", "--json"});
    for (const char* object : json_objects)
        EXPECT_NE(out.find(object), std::string::npos) << object << out;
    EXPECT_EQ(done({"preview", "--json"}), "[]\n");
}

TEST_F(Preview, JsonOfHostileTextsSteersNoTerminal) {
    done({"set", "interface", "wlan0", "ssid", "\x1b[2J\xc2\x9b\"\\\n"});
    done({"set", "interface", "wlan0", "bss", "\xff"});
    const std::string out = done({"preview", "--offline", "--json"});
    EXPECT_NE(out.find(R"("stored" : "\u001B[2J\u009b\"\\\n",)"), std::string::npos) << out;
    EXPECT_NE(out.find("\"object\" : {\n                \"hex\" : \"ff\"\n"), std::string::npos) << out;
    EXPECT_EQ(out.find('\x1b'), std::string::npos);
    EXPECT_EQ(out.find('\xc2'), std::string::npos);
}

// ---- what is known of keys

std::set<std::string> known_keys() {
    std::set<std::string> keys;
    for (const Fact& fact : facts())
        keys.insert(std::string(fact.table) + ' ' + std::string(fact.key));
    return keys;
}

std::set<std::string> without(std::set<std::string> keys, const std::set<std::string>& others) {
    std::erase_if(keys, [&](const std::string& key) { return others.contains(key); });
    return keys;
}

// The tables ask for every key of the facts and for no other.
TEST(Facts, AreTheKeysThatTheAgentReads) {
    std::ifstream file(EXAMPLE);
    const Contents contents = from_toml(std::string(std::istreambuf_iterator<char>(file), {}), EXAMPLE);
    const AgentRun run(contents, numbers_of_contents(contents));
    std::set<std::string> asked = {"interface " + run.chosen_by()};
    for (const Question& question : run.questions())
        asked.insert(question.table + ' ' + question.key);
    EXPECT_THAT(without(asked, known_keys()), IsEmpty())
        << "asked for in src/backend: give them a line in tool/facts.cc";
    EXPECT_THAT(without(known_keys(), asked), IsEmpty()) << "in tool/facts.cc, but src/backend never asks for them";
}

TEST(Facts, TypingErrors) {
    const struct {
        const char* table;
        const char* key;
        const char* error;
    } cases[] = {
        {"interface", "ssid", ""},
        {"interface", "type", ""},
        {"interface", "sssid", "the agent reads no key \"sssid\" in \"interface\"; did you mean \"ssid\"?"},
        {"interface", "chanel",
         "the agent reads no key \"chanel\" in \"interface\"; did you mean \"channel\" in \"radio\"?"},
        {"interface", "xyz", "the agent reads no key \"xyz\" in \"interface\""},
        {"bss", "ssid", "the agent reads the key \"ssid\" in \"interface\", not in \"bss\""},
        {"raido", "channel", "the agent reads no table \"raido\"; did you mean \"radio\"?"},
        {"vlan", "id", "the agent reads no table \"vlan\""},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(typing_error(expected.table, expected.key), expected.error);
}

// Nothing is refused for it.
TEST_F(Preview, TypingErrorsAreTold) {
    const Outcome set = run({"set", "interface", "wlan0", "sssid", "x"});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.err, "cfql: note: the agent reads no key \"sssid\" in \"interface\"; did you mean \"ssid\"?\n");
    EXPECT_EQ(done({"get", "interface", "wlan0", "sssid"}), "x\n");
    std::string many = "[[interface]]\nname = 'wlan0'\nchannel = '1'\n";
    for (char key = 'a'; key < 'l'; ++key)
        many += std::string(1, key) + " = '1'\n";
    const Outcome import = run({"import", "-"}, {.input = many});
    EXPECT_EQ(import.status, 0);
    EXPECT_EQ(std::ranges::count(import.err, '\n'), 11);
    EXPECT_TRUE(import.err.starts_with("cfql: note: the agent reads no key \"a\" in \"interface\"\n")) << import.err;
    EXPECT_TRUE(import.err.ends_with("cfql: note: and 2 more such keys; see \"cfql lint\"\n")) << import.err;
}

}  // namespace
