#include "access/resource_info.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = ResourceInfoRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetResourceInfoEntries,
    .table_data = GetResourceInfoTableData,
    .index_count = GetResourceInfoTableIndexCount,
    .entry_by_index = GetResourceInfoEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11ResourceInfoTable_get_first_data_point(void** loop_context, void** data_context,
                                                                   netsnmp_variable_list* put_index_data,
                                                                   netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11ResourceInfoTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11ResourceInfoTable_get_next_data_point(void** loop_context, void**,
                                                                  netsnmp_variable_list* put_index_data,
                                                                  netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11ResourceInfoTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11ResourceInfoTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11ResourceInfoTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11ResourceInfoTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11manufacturerOUI(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerOUI, &Row::dot11manufacturerOUILen>(row, length); }
void* get_dot11manufacturerName(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerName, &Row::dot11manufacturerNameLen>(row, length); }
void* get_dot11manufacturerProductName(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerProductName, &Row::dot11manufacturerProductNameLen>(row, length); }
void* get_dot11manufacturerProductVersion(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerProductVersion, &Row::dot11manufacturerProductVersionLen>(row, length); }
// clang-format on
