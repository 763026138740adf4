// dot11PrivacyTable (1.2.840.10036.1.5).
#include "backend/smt/privacy.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = PrivacyRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11PrivacyInvoked(void* row, size_t* length) { return word<&Row::dot11PrivacyInvoked>(row, length); }
void* get_dot11WEPDefaultKeyID(void* row, size_t* length) { return word<&Row::dot11WEPDefaultKeyID>(row, length); }
void* get_dot11WEPKeyMappingLength(void* row, size_t* length) { return word<&Row::dot11WEPKeyMappingLength>(row, length); }
void* get_dot11ExcludeUnencrypted(void* row, size_t* length) { return word<&Row::dot11ExcludeUnencrypted>(row, length); }
void* get_dot11WEPICVErrorCount(void* row, size_t* length) { return word<&Row::dot11WEPICVErrorCount>(row, length); }
void* get_dot11WEPExcludedCount(void* row, size_t* length) { return word<&Row::dot11WEPExcludedCount>(row, length); }

int set_dot11PrivacyInvoked(void*, const void*, size_t) { return refuse_write(); }
int set_dot11WEPDefaultKeyID(void*, const void*, size_t) { return refuse_write(); }
int set_dot11WEPKeyMappingLength(void*, const void*, size_t) { return refuse_write(); }
int set_dot11ExcludeUnencrypted(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_WRITE(1, dot11PrivacyInvoked, integer, key::privacy_invoked),
    READ_WRITE(2, dot11WEPDefaultKeyID, integer, key::wep_default_key),
    READ_WRITE(3, dot11WEPKeyMappingLength, gauge, key::wep_key_mapping_length),
    READ_WRITE(4, dot11ExcludeUnencrypted, integer, no_key),
    READ_ONLY(5, dot11WEPICVErrorCount, counter, no_key),
    READ_ONLY(6, dot11WEPExcludedCount, counter, no_key),
};
// clang-format on

constexpr Table dot11PrivacyTable = {
    .name = "dot11PrivacyTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetPrivacyEntries,
    .table_data = GetPrivacyTableData,
    .index_count = GetPrivacyTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetPrivacyEntryByIndex,
};

}  // namespace dot11
