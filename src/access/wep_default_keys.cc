// dot11WEPDefaultKeysTable (1.2.840.10036.1.3).
#include "backend/smt/wep_default_keys.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = WEPDefaultKeysRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
// Not copied: a key stays in the row that holds it.
void* get_dot11WEPDefaultKeyValue(void* row, size_t* length) { return counted_octets_in_place<&Row::dot11WEPDefaultKeyValue, &Row::dot11WEPDefaultKeyValueLen>(row, length); }

int set_dot11WEPDefaultKeyValue(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_WRITE(2, dot11WEPDefaultKeyValue, octet_string, key::wep_keys),
};
// clang-format on

constexpr Table dot11WEPDefaultKeysTable = {
    .name = "dot11WEPDefaultKeysTable",
    .columns = columns,
    .indexes = 2,
    .row_size = sizeof(Row),
    .entries = GetDefaultWEPKeysEntries,
    .table_data = GetDefaultWEPKeysTableData,
    .index_count = GetWEPDefaultKeysTableIndexCount,
    .rows_per_interface = keys_per_interface,
    .entry_by_index = GetDefaultWEPKeysEntryByIndex,
};

}  // namespace dot11
