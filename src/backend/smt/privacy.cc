#include "backend/smt/privacy.h"

#include <net/if.h>

#include "backend/lookup.h"
#include "backend/rows.h"
#include "store/write.h"

namespace dot11 {

PrivacyRow pinfo[max_interfaces];
PrivacyScratch priv_info;

namespace {

using Row = PrivacyRow;

int32_t interface_count;

// clang-format off
constexpr InterfaceKey<Row> settings[] = {
    {key::privacy_invoked, &priv_info.invoked, &Row::dot11PrivacyInvoked, parse_non_negative, 2},
    {key::wep_default_key, &priv_info.default_key, &Row::dot11WEPDefaultKeyID, parse_non_negative, 0},
    {key::wep_key_mapping_length, &priv_info.key_mapping_length, &Row::dot11WEPKeyMappingLength, parse_non_negative, 10},
};
// clang-format on

void fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    read_interface_keys(row, interface, settings);
    row.dot11ExcludeUnencrypted = 2;
    row.dot11WEPICVErrorCount = 0;
    row.dot11WEPExcludedCount = 0;
}

constexpr int32_t out_of_memory = 0;

}  // namespace

int GetPrivacyEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetPrivacyTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetPrivacyTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        fill_row(pinfo[i], iface_tags[i]);
    return 1;
}

int GetPrivacyEntryByIndex(uint32_t row, void* destination) {
    return copy_row(pinfo, row, destination);
}

int32_t SetPrivacyInvoked(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::privacy_invoked, *value, out_of_memory);
}

int32_t SetWEPDefaultKeyID(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::wep_default_key, *value, out_of_memory);
}

int32_t SetWEPKeyMappingLength(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::wep_key_mapping_length, *value, out_of_memory);
}

}  // namespace dot11
