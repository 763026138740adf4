#include "access/phy_operation.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = PhyOperationRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetPhyOperationsEntries,
    .table_data = GetPhyOperationsTableData,
    .index_count = GetPhyOperationTableIndexCount,
    .entry_by_index = GetPhyOperationsEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11PhyOperationTable_get_first_data_point(void** loop_context, void** data_context,
                                                                   netsnmp_variable_list* put_index_data,
                                                                   netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11PhyOperationTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11PhyOperationTable_get_next_data_point(void** loop_context, void**,
                                                                  netsnmp_variable_list* put_index_data,
                                                                  netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11PhyOperationTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11PhyOperationTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11PhyOperationTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11PhyOperationTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11PHYType(void* row, size_t* length) { return word<&Row::dot11PHYType>(row, length); }
void* get_dot11CurrentRegDomain(void* row, size_t* length) { return word<&Row::dot11CurrentRegDomain>(row, length); }
void* get_dot11TempType(void* row, size_t* length) { return word<&Row::dot11TempType>(row, length); }

int set_dot11CurrentRegDomain(void*, const void*, size_t) { return refuse_write(); }
// clang-format on
