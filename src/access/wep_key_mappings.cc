#include "access/wep_key_mappings.h"

#include <cstdlib>
#include <cstring>

#include "access/accessors.h"

uint32_t dot11WEPKeyMappingIndexMax;

namespace {

using Row = WEPKeyMappingsRow;

}  // namespace

netsnmp_variable_list* dot11WEPKeyMappingsTable_get_first_data_point(void**, void**, netsnmp_variable_list*,
                                                                     netsnmp_iterator_info*) {
    return nullptr;
}

netsnmp_variable_list* dot11WEPKeyMappingsTable_get_next_data_point(void**, void**, netsnmp_variable_list*,
                                                                    netsnmp_iterator_info*) {
    return nullptr;
}

void* dot11WEPKeyMappingsTable_create_data_context(netsnmp_variable_list*) {
    void* row = calloc(1, sizeof(Row));
    if (row) ++dot11WEPKeyMappingIndexMax;
    return row;
}

int dot11WEPKeyMappingsTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11WEPKeyMappingWEPOn(void* row, size_t* length) { return word<&Row::dot11WEPKeyMappingWEPOn>(row, length); }
void* get_dot11WEPKeyMappingValue(void* row, size_t* length) { return fixed_octets<&Row::dot11WEPKeyMappingValue, 5>(row, length); }

// A row is active (1), whatever was written. Meant.
void* get_dot11WEPKeyMappingStatus(void*, size_t* length) { return constant_word<&Row::dot11WEPKeyMappingStatus, 1>(length); }

// Ends before the first zero octet: an address that holds one is answered short, 00:11:22:33:44:55 with no octet at all.
// Meant.
void* get_dot11WEPKeyMappingAddress(void* row, size_t* length) {
    void* octets = fixed_octets<&Row::dot11WEPKeyMappingAddress, 6>(row, length);
    *length = strlen(static_cast<const char*>(octets));
    return octets;
}

int set_dot11WEPKeyMappingAddress(void* row, const void* value, size_t) { return store_octets<&Row::dot11WEPKeyMappingAddress, 6>(row, value); }
int set_dot11WEPKeyMappingWEPOn(void* row, const void* value, size_t) { return store_word<&Row::dot11WEPKeyMappingWEPOn>(row, value); }
int set_dot11WEPKeyMappingValue(void* row, const void* value, size_t) { return store_octets<&Row::dot11WEPKeyMappingValue, 5>(row, value); }

// Every status that the check accepts makes the row active (1). Meant.
int set_dot11WEPKeyMappingStatus(void* row, const void*, size_t) {
    field<&Row::dot11WEPKeyMappingStatus>(row) = 1;
    return SNMP_ERR_NOERROR;
}
// clang-format on
