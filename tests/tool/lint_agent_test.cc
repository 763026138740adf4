// lint against the agent: both read one store, and what lint says of a key, an interface or a rate must be what the
// module's rows then hold. Every interface whose name begins with w exists.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "../cfql/fixture.h"
#include "backend/mac/counters.h"
#include "backend/mac/operation.h"
#include "backend/mac/resource_info.h"
#include "backend/phy/dsss.h"
#include "backend/phy/phy_operation.h"
#include "backend/phy/reg_domains.h"
#include "backend/phy/supported_data_rates.h"
#include "backend/phy/tx_power.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/station_config.h"
#include "backend/smt/wep_default_keys.h"
#include "commands.h"
#include "contents.h"
#include "facts.h"
#include "text.h"

using namespace dot11;

extern "C" unsigned __wrap_if_nametoindex(const char* name) {
    static std::vector<std::string> known;
    if (*name != 'w') return 0;
    const auto found = std::find(known.begin(), known.end(), name);
    if (found == known.end()) return known.push_back(name), static_cast<unsigned>(known.size());
    return static_cast<unsigned>(found - known.begin()) + 1;
}

namespace {

using cfql::tool::Contents;
using cfql::tool::Conversion;
using cfql::tool::Fact;
using cfql::tool::Holder;
using cfql::tool::Object;
using Lines = std::vector<std::string>;
using Value = std::optional<std::string>;  // nullopt: the key is absent

// -- the store, lint and the module --

struct EmptyStore : store_test::Place {
    EmptyStore() { store_test::make(path()); }
};

// The store's new contents.
void store(const Contents& contents) {
    static const EmptyStore place;
    EXPECT_EQ(store_test::set("any", "o", "k", "v"), 1) << "after a write of its own the library loads without a pause";
    cfql::Database database;
    store_test::require(database.open(place.path().c_str(), cfql::Access::write));
    store_test::require(database.begin_write());
    store_test::require(database.delete_all());
    for (const Object& object : contents) {
        std::int64_t id = 0;
        store_test::require(database.insert_object(object.table, object.name, id));
        for (const auto& [key, value] : object.attributes)
            store_test::require(database.set_attribute(id, object.table, object.name, key, value));
    }
    store_test::require(database.commit());
}

Lines lint() {
    cfql::tool::Request request;
    request.store = getenv("CFQL_STORE");
    request.defaults = true;
    testing::internal::CaptureStdout();
    cfql::tool::lint(request);
    std::stringstream output(testing::internal::GetCapturedStdout());
    Lines lines;
    for (std::string line; std::getline(output, line);)
        lines.push_back(line);
    return lines;
}

template <class Rows>
void refill(Rows& rows, int (*enumerate)(), int (*fill)()) {
    memset(&rows, 0, sizeof rows);
    EXPECT_EQ(enumerate(), 1);
    EXPECT_EQ(fill(), 1);
}

void fill_all() {
    refill(sinfo, GetStationConfigEntries, GetStationConfigTableData);
    refill(ainfo, GetAuthAlgorithmEntries, GetAuthAlgorithmTableData);
    refill(pinfo, GetPrivacyEntries, GetPrivacyTableData);
    refill(winfo, GetDefaultWEPKeysEntries, GetDefaultWEPKeysTableData);
    refill(opinfo, GetOperationsEntries, GetOperationsTableData);
    refill(cinfo, GetCountersEntries, GetCountersTableData);
    refill(rinfo, GetResourceInfoEntries, GetResourceInfoTableData);
    refill(poinfo, GetPhyOperationsEntries, GetPhyOperationsTableData);
    refill(ptinfo, GetPhyTxPowerEntries, GetPhyTxPowerTableData);
    refill(pdsssinfo, GetPhyDsssEntries, GetPhyDsssTableData);
    refill(rdinfo, GetRegDomainSupportedEntries, GetRegDomainSupportedTableData);
}

// -- what the module serves, as text, of the interface at a position --

template <auto& rows, auto field>
std::string number(std::size_t i) {
    return std::to_string(rows[i].*field);
}

template <std::size_t algorithm>
std::string enabled(std::size_t i) {
    return std::to_string(ainfo[2 * i + algorithm].dot11AuthenticationAlgorithmsEnable);
}

template <auto& rows, auto field>
std::string mac(std::size_t i) {
    return cfql::tool::to_hex({reinterpret_cast<const char*>(rows[i].*field), 6});
}

template <auto& rows, auto field, auto length>
std::string octets(std::size_t i) {
    return {reinterpret_cast<const char*>(rows[i].*field), rows[i].*length};
}

template <std::size_t key>
std::string wep_key(std::size_t i) {
    const WEPDefaultKeysRow& row = winfo[4 * i + key];
    return {reinterpret_cast<const char*>(row.dot11WEPDefaultKeyValue), row.dot11WEPDefaultKeyValueLen};
}

std::string country(std::size_t i) {
    return {reinterpret_cast<const char*>(sinfo[i].dot11CountryString), 3};
}

std::string rate_set(std::size_t i) {
    EXPECT_EQ(sinfo[i].dot11OperationalRateSetLen, 1U);
    return std::to_string(sinfo[i].dot11OperationalRateSet[0]);
}

// A field of the rows that a key fills, of an interface at a position. `meanings`: lint's words for a value, and that
// value in this field, where the words are not themselves the value.
struct Field {
    const char* key;
    std::string (*served)(std::size_t position);
    std::map<std::string, std::string> meanings = {};
};

const std::map<std::string, std::string> no_mac = {{"00 in the first octet, five octets as they were", "000000000000"}};
const std::map<std::string, std::string> no_wep_key = {{"five octets, the first 00", std::string(5, '\0')}};
const std::map<std::string, std::string> one_nul = {{"one octet 00", std::string(1, '\0')}};
const std::map<std::string, std::string> other_levels = {{"100 at level 1 and 0 at levels 2 to 8", "0"}};

// clang-format off
#define NUMBER(rows, Row, field) number<rows, &Row::field>
#define MAC(rows, Row, field) mac<rows, &Row::field>
#define OCTETS(rows, Row, field) octets<rows, &Row::field, &Row::field##Len>
const Field fields[] = {
    {"mac", MAC(sinfo, StationConfigRow, dot11StationID), no_mac},
    {"mac", MAC(opinfo, OperationRow, dot11MACAddress), no_mac},
    {"dot11-cf-pollable", NUMBER(sinfo, StationConfigRow, dot11CFPollable)},
    {"dot11-authentication-response-time-out", NUMBER(sinfo, StationConfigRow, dot11AuthenticationResponseTimeOut)},
    {"dot11-privacy-option-implemented", NUMBER(sinfo, StationConfigRow, privacy_option_configured)},
    {"security", NUMBER(sinfo, StationConfigRow, dot11PrivacyOptionImplemented)},
    {"ssid", OCTETS(sinfo, StationConfigRow, dot11DesiredSSID), {{"the text 0", "0"}}},
    {"rate", rate_set, {{"one octet 00 as the operational rate set", "0"}}},
    {"beacon-interval", NUMBER(sinfo, StationConfigRow, dot11BeaconPeriod)},
    {"dtim-period", NUMBER(sinfo, StationConfigRow, dot11DTIMPeriod)},
    {"dot11d", NUMBER(sinfo, StationConfigRow, dot11MultiDomainCapabilityEnabled), {{"implemented 2, enabled -1", "-1"}}},
    {"dot11-association-response-time-out", NUMBER(sinfo, StationConfigRow, dot11AssociationResponseTimeOut)},
    {"dot11-disassociate-reason", NUMBER(sinfo, StationConfigRow, dot11DisassociateReason)},
    {"dot11-disassociate-station", MAC(sinfo, StationConfigRow, dot11DisassociateStation), no_mac},
    {"dot11-deauthenticate-reason", NUMBER(sinfo, StationConfigRow, dot11DeauthenticateReason)},
    {"dot11-deauthenticate-station", MAC(sinfo, StationConfigRow, dot11DeauthenticateStation), no_mac},
    {"dot11-authenticate-fail-status", NUMBER(sinfo, StationConfigRow, dot11AuthenticateFailStatus)},
    {"dot11-authenticate-fail-station", MAC(sinfo, StationConfigRow, dot11AuthenticateFailStation), no_mac},
    {"country", country},
    {"open-system-authentication", enabled<0>},
    {"shared-key-authentication", enabled<1>},
    {"dot11-privacy-invoked", NUMBER(pinfo, PrivacyRow, dot11PrivacyInvoked)},
    {"wep-default-key", NUMBER(pinfo, PrivacyRow, dot11WEPDefaultKeyID)},
    {"wep-key-mapping-length", NUMBER(pinfo, PrivacyRow, dot11WEPKeyMappingLength)},
    {"wep-key-1", wep_key<0>, no_wep_key},
    {"wep-key-2", wep_key<1>, no_wep_key},
    {"wep-key-3", wep_key<2>, no_wep_key},
    {"wep-key-4", wep_key<3>, no_wep_key},
    {"rts-threshold", NUMBER(opinfo, OperationRow, dot11RTSThreshold), {{"2347, or 2346 when \"fragmentation-threshold\" is not set", "2346"}}},
    {"fragmentation-threshold", NUMBER(opinfo, OperationRow, dot11FragmentationThreshold), {{"2346, as the RTS threshold", "0"}}},
    {"dot11-short-retry-limit", NUMBER(opinfo, OperationRow, dot11ShortRetryLimit)},
    {"dot11-long-retry-limit", NUMBER(opinfo, OperationRow, dot11LongRetryLimit)},
    {"dot11-max-transmit-msdu-lifetime", NUMBER(opinfo, OperationRow, dot11MaxTransmitMSDULifetime)},
    {"dot11-max-receive-lifetime", NUMBER(opinfo, OperationRow, dot11MaxReceiveLifetime)},
    {"manufacturer-id", OCTETS(opinfo, OperationRow, dot11ManufacturerID), {{"the empty text", std::string(1, '\0')}}},
    {"transmitted-fragment-count", NUMBER(cinfo, CountersRow, dot11TransmittedFragmentCount)},
    {"multicast-transmitted-frame-count", NUMBER(cinfo, CountersRow, dot11MulticastTransmittedFrameCount)},
    {"failed-count", NUMBER(cinfo, CountersRow, dot11FailedCount)},
    {"retry-count", NUMBER(cinfo, CountersRow, dot11RetryCount)},
    {"multiple-retry-count", NUMBER(cinfo, CountersRow, dot11MultipleRetryCount)},
    {"frame-duplicate-count", NUMBER(cinfo, CountersRow, dot11FrameDuplicateCount)},
    {"rts-success-count", NUMBER(cinfo, CountersRow, dot11RTSSuccessCount)},
    {"rts-failure-count", NUMBER(cinfo, CountersRow, dot11RTSFailureCount)},
    {"ack-failure-count", NUMBER(cinfo, CountersRow, dot11ACKFailureCount)},
    {"received-fragment-count", NUMBER(cinfo, CountersRow, dot11ReceivedFragmentCount)},
    {"multicast-received-frame-count", NUMBER(cinfo, CountersRow, dot11MulticastReceivedFrameCount)},
    {"fcs-error-count", NUMBER(cinfo, CountersRow, dot11FCSErrorCount)},
    {"transmitted-frame-count", NUMBER(cinfo, CountersRow, dot11TransmittedFrameCount)},
    {"wep-undecryptable-count", NUMBER(cinfo, CountersRow, dot11WEPUndecryptableCount)},
    {"manufacturer-oui", OCTETS(rinfo, ResourceInfoRow, dot11manufacturerOUI)},
    {"manufacturer-name", OCTETS(rinfo, ResourceInfoRow, dot11manufacturerName), one_nul},
    {"manufacturer-product-name", OCTETS(rinfo, ResourceInfoRow, dot11manufacturerProductName), one_nul},
    {"manufacturer-product-version", OCTETS(rinfo, ResourceInfoRow, dot11manufacturerProductVersion), one_nul},
    {"dot11-phy-type", NUMBER(poinfo, PhyOperationRow, dot11PHYType)},
    {"dot11-current-reg-domain", NUMBER(poinfo, PhyOperationRow, dot11CurrentRegDomain), {{"0, and 16 as the supported one", "0"}}},
    {"dot11-current-reg-domain", NUMBER(rdinfo, RegDomainsRow, dot11RegDomainsSupportValue), {{"0, and 16 as the supported one", "16"}}},
    {"dot11-temp-type", NUMBER(poinfo, PhyOperationRow, dot11TempType)},
    {"num_supported_pow_level", NUMBER(ptinfo, TxPowerRow, dot11NumberSupportedPowerLevels)},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel1), {{"100 at level 1 and 0 at levels 2 to 8", "100"}}},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel2), other_levels},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel3), other_levels},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel4), other_levels},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel5), other_levels},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel6), other_levels},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel7), other_levels},
    {"tx-power", NUMBER(ptinfo, TxPowerRow, dot11TxPowerLevel8), other_levels},
    {"curr_tx_power_level", NUMBER(ptinfo, TxPowerRow, dot11CurrentTxPowerLevel)},
    {"channel", NUMBER(pdsssinfo, DsssRow, dot11CurrentChannel)},
};
#undef NUMBER
#undef MAC
#undef OCTETS
// clang-format on

// -- what lint states --

std::string table_of(Holder holder) {
    constexpr const char* tables[] = {"interface", "bss", "radio", "radio", "supported-rate", "system"};
    return tables[static_cast<std::size_t>(holder)];
}

std::string quoted(const std::string& name) {
    return '"' + name + '"';
}

// The rest of the first line that begins with PREFIX.
Value rest(const Lines& lines, const std::string& prefix) {
    for (const std::string& line : lines)
        if (line.starts_with(prefix)) return line.substr(prefix.size());
    return std::nullopt;
}

// The rest of TEXT behind the last MARK.
Value behind(const std::string& text, const std::string& mark) {
    const std::size_t at = text.rfind(mark);
    return at == std::string::npos ? std::nullopt : Value(text.substr(at + mark.size()));
}

// The finding about the key of an interface whose objects all bear its name; empty when there is none.
std::string finding(const Lines& lines, const Fact& fact, const std::string& name) {
    const std::string key = quoted(std::string(fact.key));
    if (const Value absent = rest(lines, "note: interface " + quoted(name) + ": " + key + " is not set"))
        return *absent;
    const std::string object = fact.holder == Holder::system ? "" : ' ' + quoted(name);
    return rest(lines, "warning: " + table_of(fact.holder) + object + ": key " + key + ": ").value_or("");
}

std::string mac_digits(std::string text) {
    std::erase(text, ':');
    for (char& digit : text)
        digit = static_cast<char>(tolower(digit));
    return text;
}

// What a field holds when a value is served as it stands.
std::string as_it_stands(const Fact& fact, const std::string& value) {
    static const std::set<std::string> on = {"1", "on", "up"};
    static const std::set<std::string> off = {"0", "2", "off", "down"};
    switch (fact.conversion) {
        case Conversion::flag:
            return on.contains(value) ? "1" : off.contains(value) ? "2" : "a plain word for on or off";
        case Conversion::mac:
            return mac_digits(value);
        case Conversion::country:
            return value + ' ';
        case Conversion::text:
            if (fact.key == "security") return value == "plain-text" ? "2" : "1";
            return value;
        default:
            break;
    }
    const std::size_t sign = value.starts_with('+') || value.starts_with('-') ? 1 : 0;
    constexpr std::size_t widest = 18;  // of a number that stoll takes
    if (value.size() == sign || value.size() > widest ||
        value.find_first_not_of("0123456789", sign) != std::string::npos)
        return "a number";
    return std::to_string(std::stoll(value));
}

// What a field holds by lint's words.
std::string stated(const Field& field, const Fact& fact, const Value& value, const Lines& lines,
                   const std::string& name) {
    const std::string said = finding(lines, fact, name);
    if (fact.conversion == Conversion::rate_text && value.value_or("") != "") {
        const std::string note = rest(lines, "note: supported-rate " + quoted(name) + ": 1 row, ").value_or("a note");
        return behind(said.find("served as") == std::string::npos ? note : said, "operational rate set ")
            .value_or(said);
    }
    if (said.empty()) return as_it_stands(fact, value.value_or("a value"));
    if (said.ends_with("is enabled")) return "2";
    if (const Value width = behind(said, "octets are clipped to ")) return value->substr(0, std::stoul(*width));
    const std::string words = behind(said, "served as ").value_or(said);
    const auto meaning = field.meanings.find(words);
    return meaning == field.meanings.end() ? words : meaning->second;
}

void expect_as_stated(const Lines& lines, std::size_t position, const std::string& name, const Value& value) {
    for (const Field& field : fields) {
        const auto fact = std::ranges::find(cfql::tool::facts(), field.key, &Fact::key);
        ASSERT_NE(fact, cfql::tool::facts().end()) << field.key;
        const std::string served = field.served(position);
        const std::string expected = stated(field, *fact, value, lines, name);
        SCOPED_TRACE(name + ", " + field.key + " = " + value.value_or("absent").substr(0, 40));
        if (expected.ends_with("wrong octets are served")) {
            EXPECT_NE(served, mac_digits(*value));
        } else {
            EXPECT_EQ(served, expected) << finding(lines, *fact, name);
        }
    }
}

// -- contents --

struct Links {
    Value bss, radio;
};

// An interface with all that it leads to; every key of all of them has the value.
Contents subject(const std::string& name, const Value& value, const Links& links) {
    std::map<std::string, Object> objects;
    for (const char* table : {"interface", "bss", "radio", "supported-rate"})
        objects[table] = {table, name, {}};
    for (const Fact& fact : cfql::tool::facts())
        if (value && fact.holder != Holder::system)
            objects[table_of(fact.holder)].attributes[std::string(fact.key)] = *value;
    objects["interface"].attributes["type"] = "service-set";
    objects["interface"].attributes.erase("bss");
    objects["bss"].attributes.erase("radio");
    if (links.bss) objects["interface"].attributes["bss"] = *links.bss;
    if (links.radio) objects["bss"].attributes["radio"] = *links.radio;
    if (!value) objects.erase("supported-rate");  // an object without a rate leaves all rates open
    Contents contents;
    for (const auto& [table, object] : objects)
        contents.push_back(object);
    return contents;
}

std::vector<Value> values() {
    // clang-format off
    std::vector<Value> all = {
        std::nullopt, "", "0", "1", "2", "3", "4", "7", "003", "+3", "-", "+", "-0", "-1", "-5",
        "110", "240", "250", "350", "510", "540", "99999", "100000", "2147483647", "2147483648", "-2147483648",
        "-2147483649", "4294967295", "4294967296", "4294967297", "4294967298", "-4294967297", "18446744073709551616",
        "x", "3x", " 3", "3 ", "0x3", "1.5", "\x80\xff", "\xc3\xa4",
        "on", "ON", "On", "off", "up", "UP", "down", "yes", "true", "plain-text", "PLAIN-TEXT", "wpa2", "D", "DE", "DEU",
        "00:11:22:aa:BB:cC", "001122aabbcc", "0011.22aa.bbcc", "00-11-22-aa-bb-cc", "00:11:22:33:44",
        "00:11:22:33:44:5g", "00:11:22:33:44:55:66", ":", "-:-"};
    // clang-format on
    for (const std::size_t size : {5U, 6U, 8U, 9U, 12U, 13U, 32U, 33U, 58U, 64U, 65U, 127U, 128U, 255U, 256U, 4096U})
        for (const char octet : {'a', '9'})
            all.emplace_back(std::string(size, octet));
    return all;
}

std::string name_of(std::size_t position) {
    return 'w' + std::to_string(position);
}

// -- tests --

TEST(LintAndAgent, EveryFactHasAField) {
    std::set<std::string> known = {"bss", "radio", "type"};  // the tests of the links and of the interfaces
    for (const Field& field : fields)
        known.insert(field.key);
    std::set<std::string> keys;
    for (const Fact& fact : cfql::tool::facts())
        keys.emplace(fact.key);
    EXPECT_EQ(known, keys);
}

TEST(LintAndAgent, Values) {
    const std::vector<Value> all = values();
    ASSERT_LE(all.size(), max_interfaces);
    Contents contents;
    for (std::size_t i = 0; i < all.size(); ++i)
        for (const Object& object : subject(name_of(i), all[i], {name_of(i), name_of(i)}))
            contents.push_back(object);
    store(contents);
    fill_all();
    const Lines lines = lint();
    for (std::size_t i = 0; i < all.size(); ++i)
        expect_as_stated(lines, i, name_of(i), all[i]);
}

TEST(LintAndAgent, Country) {
    for (const Value& value : values()) {
        Contents contents = subject("w", "1", {"w", "w"});
        contents.push_back({"system", "", {}});
        if (value) contents.back().attributes["country"] = *value;
        store(contents);
        fill_all();
        const Lines lines = lint();
        const auto fact = std::ranges::find(cfql::tool::facts(), "country", &Fact::key);
        EXPECT_EQ(country(0), stated({"country", country}, *fact, value, lines, "w")) << value.value_or("absent");
    }
}

TEST(LintAndAgent, Links) {
    const Links cases[] = {{"w", "w"}, {std::nullopt, "w"}, {"", "w"},    {"w", std::nullopt},
                           {"w", ""},  {"gone", "w"},       {"w", "gone"}};
    for (const Links& links : cases) {
        SCOPED_TRACE(links.bss.value_or("absent") + ", " + links.radio.value_or("absent"));
        store(subject("w", "1", links));
        fill_all();
        const Lines lines = lint();
        expect_as_stated(lines, 0, "w", "1");
        EXPECT_EQ(rest(lines, "warning: interface \"w\": key \"bss\" leads nowhere").has_value(), links.bss == "gone");
        EXPECT_EQ(rest(lines, "warning: bss \"w\": key \"radio\" leads nowhere").has_value(), links.radio == "gone");
    }
}

// The default of either threshold goes to the RTS threshold, where it takes the place of a value, too.
TEST(LintAndAgent, Thresholds) {
    const struct {
        cfql::tool::Attributes radio;
        int32_t rts, fragmentation;
        Lines said;  // on the thresholds
    } cases[] = {
        {{{"rts-threshold", "500"}, {"fragmentation-threshold", "600"}}, 500, 600, {}},
        {{{"fragmentation-threshold", "600"}},
         2347,
         600,
         {"note: interface \"w\": \"rts-threshold\" is not set, or empty: served as 2347, or 2346 when "
          "\"fragmentation-threshold\" is not set"}},
        {{{"rts-threshold", "500"}},
         2346,
         0,
         {"warning: radio \"w\": key \"rts-threshold\": without \"fragmentation-threshold\" served as 2346",
          "note: interface \"w\": \"fragmentation-threshold\" is not set, or empty: served as 2346, as the RTS "
          "threshold"}},
    };
    for (const auto& expected : cases) {
        Contents contents = subject("w", "", {"w", "w"});
        std::ranges::find(contents, "radio", &Object::table)->attributes = expected.radio;
        store(contents);
        fill_all();
        EXPECT_EQ(opinfo[0].dot11RTSThreshold, expected.rts);
        EXPECT_EQ(opinfo[0].dot11FragmentationThreshold, expected.fragmentation);
        Lines lines = lint();
        std::erase_if(lines, [](const std::string& line) { return line.find("-threshold") == std::string::npos; });
        EXPECT_EQ(lines, expected.said);
    }
}

TEST(LintAndAgent, TheFirstObjectOfAName) {
    Contents contents = subject("w", "1", {"w", "w"});
    for (Object& object : contents)
        object.attributes.erase("beacon-interval");
    for (const char* table : {"interface", "bss", "radio", "supported-rate"})
        contents.push_back(
            {table, "w", {{"beacon-interval", "7"}, {"dtim-period", "7"}, {"ssid", "7"}, {"rate", "70"}}});
    store(contents);
    fill_all();
    Lines lines = lint();
    for (std::string& line : lines)  // of the one group
        if (const std::size_t at = line.find(": 2 rows, "); at != std::string::npos) line.replace(at, 10, ": 1 row, ");
    expect_as_stated(lines, 0, "w", "1");
}

// The names that lint does not skip, as often as rows will show them.
Lines served_by_lint(const Contents& contents) {
    const Lines lines = lint();
    if (rest(lines, "warning: interface: ")) return {};  // none is left, or too many are
    Lines names;
    for (const auto& [table, name, attributes] : contents) {
        const std::string place = ": interface " + quoted(name) + ": ";
        const bool is_skipped = rest(lines, "warning" + place + "skipped") || rest(lines, "note" + place + "skipped");
        if (table == "interface" && !is_skipped) names.push_back(name);
    }
    return names;
}

Lines served_by_agent() {
    const int status = GetStationConfigEntries();
    const uint32_t count = status == 1 ? GetStationConfigTableIndexCount() : 0;
    return {iface_tags, iface_tags + count};
}

Contents interfaces(std::size_t count) {
    Contents contents;
    for (std::size_t i = 0; i < count; ++i)
        contents.push_back({"interface", name_of(i), {{"type", "service-set"}}});
    return contents;
}

TEST(LintAndAgent, Interfaces) {
    const cfql::tool::Attributes served = {{"type", "service-set"}};
    const Contents cases[] = {
        {{"bss", "w0", served}},
        {{"interface", "w0", served}},
        {{"interface", "w0", {}}},
        {{"interface", "w0", {{"type", ""}}}, {"interface", "w1", {{"type", "service-sets"}}}},
        {{"interface", "w0", {{"type", "Service-Set"}}}, {"interface", "w1", {{"type", " service-set"}}}},
        {{"interface", "eth0", served}, {"interface", "w1", served}},
        {{"interface", "eth0", served}},
        {{"interface", "w1234", served}, {"interface", "w12345", served}},
        {{"interface", "w\xc3\xa4\xc3\xa4", served}, {"interface", "w\xc3\xa4\xc3\xa4\xc3\xa4", served}},
        {{"interface", "w1", served}, {"interface", "w0", served}, {"interface", "w1", served}},
        interfaces(127),
        interfaces(128),
        interfaces(129),
        interfaces(200),
    };
    for (const Contents& contents : cases) {
        store(contents);
        EXPECT_EQ(served_by_lint(contents), served_by_agent()) << contents[0].name << " of " << contents.size();
    }
}

using Rates = std::vector<std::pair<std::string, Value>>;

// The groups as lint lists them: the interface and its rows' values.
Lines rates_by_lint() {
    Lines groups;
    for (const std::string& line : lint()) {
        const std::size_t name = line.find('"');
        const std::size_t values = line.find(", served as ");
        if (!line.starts_with("note: supported-rate ") || values == std::string::npos) continue;
        const std::size_t value = values + strlen(", served as ");
        groups.push_back(line.substr(name + 1, line.find('"', name + 1) - name - 1) + ": " +
                         line.substr(value, line.find(" (in") - value));
    }
    return groups;
}

// Lint's one list is of both tables, each of which has a cache of its own.
struct RateTable {
    const char* name;
    int (*next)(uint32_t position, int32_t* index, void* record);
    uint32_t& last_load;
    RateGroupName*& groups;
};

const RateTable rate_tables[] = {
    {"Rx", GetSuppDataRatesRxTableByIndex, SUPPDATARATESRXLastLoad, rx_tag},
    {"Tx", GetSuppDataRatesTxTableByIndex, SUPPDATARATESTXLastLoad, tx_tag},
};

// A row's record, of either table.
struct RateRecord {
    uint32_t interface;
    int32_t index, value;
};

struct RateRow {
    uint32_t group;
    int32_t value;
};

// One scan of the table, as each request makes it.
std::vector<RateRow> scan(const RateTable& table) {
    std::vector<RateRow> rows;
    RateRecord record = {};
    int32_t index = 1;
    for (uint32_t position = 0;;) {
        const int result = table.next(position, &index, &record);
        if (result < 1) return rows;
        rows.push_back({position, record.value});
        if (result == 2) ++position, index = 1;
    }
}

// As a walk's last request does, whatever was asked before: a cache is emptied after a certain number of calls.
void empty_cache(const RateTable& table) {
    RateRecord record = {};
    int32_t index = 1;
    constexpr int calls_of_longest_walk = 130 * 130;
    for (int i = 0; i < calls_of_longest_walk && table.last_load != 0; ++i)
        table.next(UINT32_MAX, &index, &record);
    EXPECT_EQ(table.last_load, 0U);
}

// A walk from an empty cache to an empty cache: the request for the row N is answered by the scan N.
Lines rates_by_agent(const RateTable& table) {
    Lines groups;
    std::size_t group = SIZE_MAX;
    for (std::size_t n = 0;; ++n) {
        const std::vector<RateRow> rows = scan(table);
        if (n >= rows.size()) break;
        const std::string value = std::to_string(rows[n].value);
        if (rows[n].group == group)
            groups.back() += ", " + value;
        else
            groups.push_back(std::string(table.groups[rows[n].group]) + ": " + value);
        group = rows[n].group;
    }
    EXPECT_EQ(table.last_load, 0U) << "the cache is not emptied";
    return groups;
}

void store_rates(const Rates& rates) {
    Contents contents;
    for (const auto& [name, rate] : rates) {
        contents.push_back({"supported-rate", name, {}});
        if (rate) contents.back().attributes["rate"] = *rate;
    }
    store(contents);
}

TEST(LintAndAgent, Rates) {
    std::vector<Rates> cases = {
        {{"w", "110"}},
        {{"w", ""}},
        {{"w", "10"}, {"w", "20"}, {"w", "55"}},
        {{"w1", "110"}, {"w1", "20"}, {"w2", "540"}},
        {{"w1", "110"}, {"w2", "20"}, {"w1", "360"}, {"w1", "480"}},
        {{"w1", "110"}, {"w1", "20"}, {"w2", "540"}, {"w2", "30"}, {"w3", "60"}, {"w4", "90"}},
        {{"eth0", "110"}, {"w1", "220"}, {"w12345", "360"}, {"w1", "540"}, {"w2", ""}, {"w3", "480"}},
    };
    for (const std::size_t count : {7U, 8U, 9U, 128U, 129U, 130U, 200U})
        cases.emplace_back(count, std::pair{"w", "110"});
    for (const std::size_t count : {10U, 11U, 129U, 130U}) {
        cases.emplace_back();
        for (std::size_t i = 0; i < count; ++i)
            cases.back().emplace_back(name_of(i), std::to_string(10 * i));
    }
    for (const Value& value : values())
        if (value) cases.push_back({{"w1", "110"}, {"w2", value}});
    for (const Rates& rates : cases) {
        store_rates(rates);
        const Lines stated = rates_by_lint();
        for (const RateTable& table : rate_tables)
            EXPECT_EQ(stated, rates_by_agent(table))
                << table.name << ", " << rates.back().second->substr(0, 40) << " of " << rates.size();
    }
}

// What a walk finds then changes with every scan; lint lists no rates.
TEST(LintAndAgent, AGroupWithoutRate) {
    store_rates({{"w1", "110"}, {"w2", std::nullopt}, {"w3", "540"}});
    EXPECT_EQ(rates_by_lint(), Lines());
    for (const RateTable& table : rate_tables) {
        EXPECT_EQ(scan(table).size(), 1U) << table.name;
        EXPECT_EQ(scan(table).size(), 3U) << table.name;
        empty_cache(table);
    }
}

}  // namespace
