#include "backend/mac/operation.h"

#include <net/if.h>

#include "backend/lookup.h"
#include "backend/radio.h"
#include "backend/rows.h"
#include "store/write.h"

namespace dot11 {

OperationRow opinfo[max_interfaces];
OperationScratch oper_info;

namespace {

using Row = OperationRow;

int32_t interface_count;

// clang-format off
constexpr InterfaceKey<Row> retry_limits[] = {
    {key::short_retry_limit, &oper_info.short_retry_limit, &Row::dot11ShortRetryLimit, parse_non_negative, 7},
    {key::long_retry_limit, &oper_info.long_retry_limit, &Row::dot11LongRetryLimit, parse_non_negative, 4},
};

constexpr InterfaceKey<Row> lifetimes[] = {
    {key::max_transmit_msdu_lifetime, &oper_info.max_transmit_msdu_lifetime, &Row::dot11MaxTransmitMSDULifetime, parse_non_negative, 512},
    {key::max_receive_lifetime, &oper_info.max_receive_lifetime, &Row::dot11MaxReceiveLifetime, parse_non_negative, 512},
};

constexpr RadioText<Row, sizeof Row::dot11ManufacturerID> identifiers[] = {
    {key::manufacturer_id, &oper_info.manufacturer_id, &Row::dot11ManufacturerID, &Row::dot11ManufacturerIDLen},
    {key::manufacturer_product_name, &oper_info.manufacturer_product_name, &Row::dot11ProductID, &Row::dot11ProductIDLen},
};
// clang-format on

// The names of this table's BSS and radio are looked up with find_value_or_last, so their scratch lengths are never
// reset. A name is released as soon as it has been used, so nothing of an earlier row is found again.
bool find_bss_or_last(const cfqlquery_node* bss_answer) {
    return find_value_or_last(bss_answer, key::bss, oper_info.bss);
}

bool find_threshold(const StoreKey& key, ScratchText& scratch) {
    return find_radio_of_bss(oper_info.bss, oper_info.radio, find_value_or_last) &&
           find_value_of_radio(oper_info.radio, key, scratch);
}

// Quirk: without a BSS the row keeps its earlier threshold, and no default is taken.
void read_rts_threshold(Row& row, const cfqlquery_node* bss_answer) {
    if (!find_bss_or_last(bss_answer)) return;
    row.dot11RTSThreshold = 2347;
    if (find_threshold(key::rts_threshold, oper_info.rts_threshold))
        row.dot11RTSThreshold = convert_and_release(oper_info.rts_threshold, parse_non_negative);
}

// Quirk: the default goes into the RTS threshold, and the fragmentation threshold keeps its earlier value.
void read_fragmentation_threshold(Row& row, const cfqlquery_node* bss_answer) {
    if (find_bss_or_last(bss_answer) && find_threshold(key::fragmentation_threshold, oper_info.fragmentation_threshold))
        row.dot11FragmentationThreshold = convert_and_release(oper_info.fragmentation_threshold, parse_non_negative);
    else
        row.dot11RTSThreshold = 2346;
}

// One answer for "bss" serves both.
void read_identifiers(Row& row, const cfqlquery_node* bss_answer) {
    for (const auto& identifier : identifiers)
        read_radio_text(row, bss_answer, oper_info.bss, oper_info.radio, identifier, find_value_or_last);
}

// Asks for "bss" again each time, and releases the answer when the values behind it have been read. False when out of
// memory; what was read until then stays.
bool fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    if (!read_mac_address(interface, key::mac, oper_info.mac, row.dot11MACAddress)) return false;
    row.dot11MACAddressLen = 6;
    read_rts_threshold(row, Answer(key::bss, interface).list());
    read_interface_keys(row, interface, retry_limits);
    read_fragmentation_threshold(row, Answer(key::bss, interface).list());
    read_interface_keys(row, interface, lifetimes);
    read_identifiers(row, Answer(key::bss, interface).list());
    return true;
}

constexpr int32_t out_of_memory = 0;

}  // namespace

int GetOperationsEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetOperationTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetOperationsTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        if (!fill_row(opinfo[i], iface_tags[i])) return -1;
    return 1;
}

int GetOperationsEntryByIndex(uint32_t row, void* destination) {
    return copy_row(opinfo, row, destination);
}

int32_t SetRTSThreshold(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_radio_number(*index, key::rts_threshold, *value, out_of_memory);
}

int32_t SetShortRetryLimit(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::short_retry_limit, *value, out_of_memory);
}

int32_t SetLongRetryLimit(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::long_retry_limit, *value, out_of_memory);
}

int32_t SetFragmentationThreshold(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_radio_number(*index, key::fragmentation_threshold, *value, out_of_memory);
}

int32_t SetMaxTransmitMSDULifetime(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::max_transmit_msdu_lifetime, *value, out_of_memory);
}

int32_t SetMaxReceiveLifetime(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::max_receive_lifetime, *value, out_of_memory);
}

}  // namespace dot11
