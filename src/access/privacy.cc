#include "access/privacy.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = PrivacyRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetPrivacyEntries,
    .table_data = GetPrivacyTableData,
    .index_count = GetPrivacyTableIndexCount,
    .entry_by_index = GetPrivacyEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11PrivacyTable_get_first_data_point(void** loop_context, void** data_context,
                                                              netsnmp_variable_list* put_index_data,
                                                              netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11PrivacyTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11PrivacyTable_get_next_data_point(void** loop_context, void**,
                                                             netsnmp_variable_list* put_index_data,
                                                             netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11PrivacyTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11PrivacyTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11PrivacyTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11PrivacyTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
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
// clang-format on
