#include "access/wep_default_keys.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = WEPDefaultKeysRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetDefaultWEPKeysEntries,
    .table_data = GetDefaultWEPKeysTableData,
    .index_count = GetWEPDefaultKeysTableIndexCount,
    .entry_by_index = GetDefaultWEPKeysEntryByIndex,
    .rows_per_interface = keys_per_interface,
    .records = keys_per_interface * max_interfaces,
    .indexes = 2,
};

}  // namespace

netsnmp_variable_list* dot11WEPDefaultKeysTable_get_first_data_point(void** loop_context, void** data_context,
                                                                     netsnmp_variable_list* put_index_data,
                                                                     netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11WEPDefaultKeysTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11WEPDefaultKeysTable_get_next_data_point(void** loop_context, void**,
                                                                    netsnmp_variable_list* put_index_data,
                                                                    netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11WEPDefaultKeysTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11WEPDefaultKeysTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11WEPDefaultKeysTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11WEPDefaultKeysTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
// Not copied: a key stays in the row that holds it.
void* get_dot11WEPDefaultKeyValue(void* row, size_t* length) { return counted_octets_in_place<&Row::dot11WEPDefaultKeyValue, &Row::dot11WEPDefaultKeyValueLen>(row, length); }

int set_dot11WEPDefaultKeyValue(void*, const void*, size_t) { return refuse_write(); }
// clang-format on
