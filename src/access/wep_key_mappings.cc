#include "access/wep_key_mappings.h"

#include <string.h>

#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = WEPKeyMappingsRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11WEPKeyMappingWEPOn(void* row, size_t* length) { return word<&Row::dot11WEPKeyMappingWEPOn>(row, length); }
void* get_dot11WEPKeyMappingValue(void* row, size_t* length) { return fixed_octets<&Row::dot11WEPKeyMappingValue, 5>(row, length); }

// Quirk: a row is active (1), whatever was written.
void* get_dot11WEPKeyMappingStatus(void*, size_t* length) { return constant_word<&Row::dot11WEPKeyMappingStatus, 1>(length); }

// Quirk: ends before the first zero octet, so an address that has one is cut short: 00:11:22:33:44:55 to nothing.
void* get_dot11WEPKeyMappingAddress(void* row, size_t* length) {
    void* octets = fixed_octets<&Row::dot11WEPKeyMappingAddress, 6>(row, length);
    *length = strlen(static_cast<const char*>(octets));
    return octets;
}

int set_dot11WEPKeyMappingAddress(void* row, const void* value, size_t) { return store_octets<&Row::dot11WEPKeyMappingAddress, 6>(row, value); }
int set_dot11WEPKeyMappingWEPOn(void* row, const void* value, size_t) { return store_word<&Row::dot11WEPKeyMappingWEPOn>(row, value); }
int set_dot11WEPKeyMappingValue(void* row, const void* value, size_t) { return store_octets<&Row::dot11WEPKeyMappingValue, 5>(row, value); }

// Quirk: every status that the check accepts makes the row active (1).
int set_dot11WEPKeyMappingStatus(void* row, const void*, size_t) {
    field<&Row::dot11WEPKeyMappingStatus>(row) = 1;
    return no_error;
}
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_WRITE(2, dot11WEPKeyMappingAddress, octet_string, no_key),
    READ_WRITE(3, dot11WEPKeyMappingWEPOn, integer, no_key),
    READ_WRITE(4, dot11WEPKeyMappingValue, octet_string, no_key),
    READ_WRITE(5, dot11WEPKeyMappingStatus, integer, no_key),
};
// clang-format on

constexpr Table dot11WEPKeyMappingsTable = {
    .name = "dot11WEPKeyMappingsTable",
    .columns = columns,
    .indexes = 2,
    .row_size = sizeof(Row),
};

}  // namespace dot11
