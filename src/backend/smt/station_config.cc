#include "backend/smt/station_config.h"

#include <net/if.h>

#include <stdlib.h>
#include <string.h>
#include <algorithm>

#include "backend/lookup.h"
#include "backend/phy/supported_data_rates.h"
#include "backend/radio.h"
#include "backend/rows.h"
#include "store/write.h"
#include "util/convert.h"

namespace dot11 {

StationConfigRow sinfo[max_interfaces];
StationConfigScratch sta_info;

namespace {

using Row = StationConfigRow;

int32_t interface_count;

// A key of the interface that holds a MAC address, the field that it fills, and that field's length.
struct MacKey {
    const StoreKey& key;
    ScratchText* scratch;
    uint8_t (Row::*octets)[8];
    uint32_t Row::*length;
};

// The latest event of one kind: why it happened, and to which station.
struct EventKeys {
    InterfaceKey<Row> reason;
    MacKey station;
};

int32_t parse_plain_text_as_false(char* text) {
    return strcmp(text, "plain-text") == 0 ? 2 : 1;
}

// clang-format off
constexpr MacKey station_id =
    {key::mac, &sta_info.mac, &Row::dot11StationID, &Row::dot11StationIDLen};

constexpr InterfaceKey<Row> settings[] = {
    {key::cf_pollable, &sta_info.cf_pollable, &Row::dot11CFPollable, parse_one_as_true, 2},
    {key::authentication_response_time_out, &sta_info.authentication_time_out, &Row::dot11AuthenticationResponseTimeOut, parse_number, 1},
    {key::privacy_option_implemented, &sta_info.privacy_option, &Row::privacy_option_configured, parse_one_as_true, 2},
    {key::security, &sta_info.security, &Row::dot11PrivacyOptionImplemented, parse_plain_text_as_false, 2},
};

constexpr InterfaceKey<Row> association_time_out =
    {key::association_response_time_out, &sta_info.association_time_out, &Row::dot11AssociationResponseTimeOut, parse_number, 1};

constexpr EventKeys events[] = {
    {{key::disassociate_reason, &sta_info.disassociate_reason, &Row::dot11DisassociateReason, parse_number, 0},
     {key::disassociate_station, &sta_info.disassociate_station, &Row::dot11DisassociateStation, &Row::dot11DisassociateStationLen}},
    {{key::deauthenticate_reason, &sta_info.deauthenticate_reason, &Row::dot11DeauthenticateReason, parse_number, 0},
     {key::deauthenticate_station, &sta_info.deauthenticate_station, &Row::dot11DeauthenticateStation, &Row::dot11DeauthenticateStationLen}},
    {{key::authenticate_fail_status, &sta_info.authenticate_fail_status, &Row::dot11AuthenticateFailStatus, parse_number, 0},
     {key::authenticate_fail_station, &sta_info.authenticate_fail_station, &Row::dot11AuthenticateFailStation, &Row::dot11AuthenticateFailStationLen}},
};
// clang-format on

bool read_mac(Row& row, const char* interface, const MacKey& key) {
    if (!read_mac_address(interface, key.key, *key.scratch, row.*key.octets)) return false;
    row.*key.length = 6;
    return true;
}

void read_ssid(Row& row, const char* interface) {
    const Answer answer(key::ssid, interface);
    row.dot11DesiredSSID[0] = '0';
    row.dot11DesiredSSIDLen = 1;
    if (!find_value(answer.list(), key::ssid, sta_info.ssid)) return;
    row.dot11DesiredSSIDLen = move_octets(sta_info.ssid, row.dot11DesiredSSID, sizeof row.dot11DesiredSSID);
}

// From units of 100 kbit/s to units of 500 kbit/s.
//
// Quirk: the result goes through GetHexValue as a character, which turns 48 to 57 ('0' to '9') and the codes of the
// letters a to f into digits.
uint8_t parse_rate_octet(const char* text) {
    const auto doubled = static_cast<int32_t>(static_cast<uint32_t>(AlphabeticToNumeric(text)) * 2);
    return static_cast<uint8_t>(GetHexValue(static_cast<uint8_t>(doubled / 10)));
}

// Quirk: only an answer's first node counts, so a row's rate set holds at most one rate.
void read_rates(Row& row, const char* interface) {
    const Answer answer(key::rate, interface);
    sta_info.rate_count = find_value(answer.list(), key::rate, sta_info.rates[0]) ? 1 : 0;
    for (uint32_t i = 0; i < sta_info.rate_count; ++i) {
        row.dot11OperationalRateSet[i] = parse_rate_octet(sta_info.rates[i].text);
        release(sta_info.rates[i]);
    }
    if (sta_info.rate_count == 0) row.dot11OperationalRateSet[0] = 0;
    row.dot11OperationalRateSetLen = std::max(sta_info.rate_count, 1U);
}

void read_beacon_period(Row& row, const cfqlquery_node* bss_answer) {
    row.dot11BeaconPeriod = 1;
    if (find_radio(bss_answer, sta_info.bss, sta_info.radio) &&
        find_value_of_radio(sta_info.radio, key::beacon_interval, sta_info.beacon_interval))
        row.dot11BeaconPeriod = convert_and_release(sta_info.beacon_interval, parse_number);
}

void read_dtim_period(Row& row, const cfqlquery_node* bss_answer) {
    row.dot11DTIMPeriod = 1;
    if (!find_value(bss_answer, key::bss, sta_info.bss)) return;
    const Answer answer(key::dtim_period, sta_info.bss.text);
    release(sta_info.bss);
    row.dot11DTIMPeriod = read_number(answer.list(), key::dtim_period, sta_info.dtim_period, parse_number, 1);
}

int32_t parse_up_as_true(char* text) {
    return strcmp(text, "up") == 0 ? 1 : 2;
}

void read_multi_domain(Row& row, const cfqlquery_node* bss_answer) {
    row.dot11MultiDomainCapabilityImplemented = 2;
    row.dot11MultiDomainCapabilityEnabled = -1;
    if (!find_radio(bss_answer, sta_info.bss, sta_info.radio)) return;
    if (!find_value_of_radio(sta_info.radio, key::dot11d, sta_info.dot11d)) return;
    row.dot11MultiDomainCapabilityImplemented = 1;
    row.dot11MultiDomainCapabilityEnabled = convert_and_release(sta_info.dot11d, parse_up_as_true);
}

// One answer for "bss" serves three columns; each follows the links again.
void read_radio_settings(Row& row, const char* interface) {
    const Answer bss_answer(key::bss, interface);
    read_beacon_period(row, bss_answer.list());
    read_dtim_period(row, bss_answer.list());
    read_multi_domain(row, bss_answer.list());
}

void set_constants(Row& row) {
    row.dot11MediumOccupancyLimit = 100;
    row.dot11CFPPeriod = 0;
    row.dot11CFPMaxDuration = 0;
    row.dot11PowerManagementMode = 2;  // powersave; but see the accessor
    row.dot11DesiredBSSType = 1;       // infrastructure
}

// Two letters (ISO 3166-1) and a blank, which means indoors and outdoors (IEEE 802.11, Country element). The answer's
// tag does not matter.
void read_country(Row& row) {
    const Answer answer(key::country, nullptr);
    memcpy(row.dot11CountryString, "???", 3);
    if (!answer.list() || !copy_value(*answer.list(), sta_info.country)) return;
    if (sta_info.country.length == 2) {
        memcpy(row.dot11CountryString, sta_info.country.text, 2);
        row.dot11CountryString[2] = ' ';
    }
    release(sta_info.country);
}

// False when out of memory; what was read until then stays.
bool fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    if (!read_mac(row, interface, station_id)) return false;
    read_interface_keys(row, interface, settings);
    read_ssid(row, interface);
    read_rates(row, interface);
    read_radio_settings(row, interface);
    read_interface_key(row, interface, association_time_out);
    for (const EventKeys& event : events) {
        read_interface_key(row, interface, event.reason);
        if (!read_mac(row, interface, event.station)) return false;
    }
    set_constants(row);
    read_country(row);
    return true;
}

constexpr int32_t out_of_memory = -1;

}  // namespace

int GetStationConfigEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetStationConfigTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetStationConfigTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        if (!fill_row(sinfo[i], iface_tags[i])) return -1;
    return 1;
}

int GetStationConfigEntryByIndex(uint32_t row, void* destination) {
    return copy_row(sinfo, row, destination);
}

int32_t SetDesiredSSID(const uint32_t* index, const char* ssid, uint32_t) {
    const InterfaceName name(*index);
    if (!name.text()) return out_of_memory;
    return setTableData(key::ssid.table, name.text(), key::ssid.name, ssid);
}

int32_t SetBeaconPeriod(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_radio_number(*index, key::beacon_interval, *value, out_of_memory);
}

// Quirk: the interface must have a BSS, but the key is written to the BSS that has the interface's own name.
int32_t SetDtimPeriod(const uint32_t* index, const uint32_t* value, uint32_t) {
    const InterfaceName name(*index);
    if (!name.text()) return out_of_memory;
    ScratchText bss = {};
    if (!find_bss(name.text(), bss)) return 0;
    release(bss);
    return write_number(key::dtim_period, name.text(), *value, out_of_memory);
}

int32_t SetStationId(const uint32_t* index, const uint8_t* octets, uint32_t count) {
    constexpr size_t text_size = 20;
    if (count > (text_size - 1) / 2) return -1;
    const auto octet_count = static_cast<int32_t>(count);
    const InterfaceName name(*index);
    auto* text = static_cast<char*>(calloc(text_size, 1));
    int32_t result = out_of_memory;
    if (name.text() && text) {
        ConvertToStringFromHex(text, octets, octet_count);
        ConvertToMacAddrFromString(text, octet_count * 2);
        result = setTableData(key::mac.table, name.text(), key::mac.name, text);
    }
    free(text);
    return result;
}

// Quirk: the two time-out writers are crossed. Each writes the other's key, while the rows read every key into its own
// column.
int32_t SetAuthenticationResponseTimeout(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::association_response_time_out, *value, out_of_memory);
}

int32_t SetAssociationResponseTimeout(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::authentication_response_time_out, *value, out_of_memory);
}

}  // namespace dot11
