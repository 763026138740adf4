#include "backend/smt/privacy.h"

#include <net/if.h>

#include "backend/keys.h"
#include "store/write.h"

PrivacyRow pinfo[max_interfaces];
PrivacyScratch priv_info;

namespace {

using Row = PrivacyRow;

int32_t counter;

// clang-format off
constexpr InterfaceKey<Row> settings[] = {
    {"dot11-privacy-invoked", &priv_info.invoked, &Row::dot11PrivacyInvoked, number_not_negative, 2},
    {"wep-default-key", &priv_info.default_key, &Row::dot11WEPDefaultKeyID, number_not_negative, 0},
    {"wep-key-mapping-length", &priv_info.key_mapping_length, &Row::dot11WEPKeyMappingLength, number_not_negative, 10},
};
// clang-format on

void fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    read_interface_keys(row, interface, settings);
    row.dot11ExcludeUnencrypted = 2;
    row.dot11WEPICVErrorCount = 0;
    row.dot11WEPExcludedCount = 0;
}

constexpr int32_t without_memory = 0;

}  // namespace

int GetPrivacyEntries(void) {
    return enumerate_interfaces(counter);
}

uint32_t GetPrivacyTableIndexCount(void) {
    return static_cast<uint32_t>(counter);
}

int GetPrivacyTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(counter); ++i)
        fill_row(pinfo[i], iface_tags[i]);
    return 1;
}

int GetPrivacyEntryByIndex(uint32_t row, void* destination) {
    return copy_row(pinfo, row, destination);
}

int32_t SetPrivacyInvoked(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, "dot11-privacy-invoked", *value, without_memory);
}

int32_t SetWEPDefaultKeyID(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, "wep-default-key", *value, without_memory);
}

int32_t SetWEPKeyMappingLength(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, "wep-key-mapping-length", *value, without_memory);
}
