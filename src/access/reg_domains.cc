#include "access/reg_domains.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = RegDomainsRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetRegDomainSupportedEntries,
    .table_data = GetRegDomainSupportedTableData,
    .index_count = GetRegDomainsSupportedTableIndexCount,
    .entry_by_index = GetRegDomainSupportedEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 2,
};

}  // namespace

netsnmp_variable_list* dot11RegDomainsSupportedTable_get_first_data_point(void** loop_context, void** data_context,
                                                                          netsnmp_variable_list* put_index_data,
                                                                          netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11RegDomainsSupportedTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11RegDomainsSupportedTable_get_next_data_point(void** loop_context, void**,
                                                                         netsnmp_variable_list* put_index_data,
                                                                         netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11RegDomainsSupportedTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11RegDomainsSupportedTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11RegDomainsSupportedTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11RegDomainsSupportedTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11RegDomainsSupportValue(void* row, size_t* length) { return word_in_place<&Row::dot11RegDomainsSupportValue>(row, length); }
// clang-format on
