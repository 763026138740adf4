#include "access/tx_power.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = TxPowerRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetPhyTxPowerEntries,
    .table_data = GetPhyTxPowerTableData,
    .index_count = GetPhyTxPowerTableIndexCount,
    .entry_by_index = GetPhyTxPowerEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11PhyTxPowerTable_get_first_data_point(void** loop_context, void** data_context,
                                                                 netsnmp_variable_list* put_index_data,
                                                                 netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11PhyTxPowerTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11PhyTxPowerTable_get_next_data_point(void** loop_context, void**,
                                                                netsnmp_variable_list* put_index_data,
                                                                netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11PhyTxPowerTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11PhyTxPowerTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11PhyTxPowerTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11PhyTxPowerTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11NumberSupportedPowerLevels(void* row, size_t* length) { return word_in_place<&Row::dot11NumberSupportedPowerLevels>(row, length); }
void* get_dot11TxPowerLevel1(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel1>(row, length); }
void* get_dot11TxPowerLevel2(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel2>(row, length); }
void* get_dot11TxPowerLevel3(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel3>(row, length); }
void* get_dot11TxPowerLevel4(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel4>(row, length); }
void* get_dot11TxPowerLevel5(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel5>(row, length); }
void* get_dot11TxPowerLevel6(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel6>(row, length); }
void* get_dot11TxPowerLevel7(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel7>(row, length); }
void* get_dot11TxPowerLevel8(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel8>(row, length); }
void* get_dot11CurrentTxPowerLevel(void* row, size_t* length) { return word_in_place<&Row::dot11CurrentTxPowerLevel>(row, length); }

int set_dot11CurrentTxPowerLevel(void*, const void*, size_t) { return refuse_write(); }
// clang-format on
