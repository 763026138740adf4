#include "access/dsss.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = DsssRow;

LoopContext<Row> loop;
LastPass last_pass;

// The clock is read for this table's reloads as for those of any other.
constexpr ReloadingTable table = {
    .entries = GetPhyDsssEntries,
    .table_data = GetPhyDsssTableData,
    .index_count = GetPhyDsssTableIndexCount,
    .entry_by_index = GetPhyDsssEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11PhyDSSSTable_get_first_data_point(void** loop_context, void** data_context,
                                                              netsnmp_variable_list* put_index_data,
                                                              netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11PhyDSSSTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11PhyDSSSTable_get_next_data_point(void** loop_context, void**,
                                                             netsnmp_variable_list* put_index_data,
                                                             netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11PhyDSSSTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11PhyDSSSTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11PhyDSSSTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11PhyDSSSTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11CurrentChannel(void* row, size_t* length) { return word<&Row::dot11CurrentChannel>(row, length); }

// The same for every row: energy detect only (1). Meant.
void* get_dot11CCAModeSupported(void*, size_t* length) { return constant_word<&Row::dot11CCAModeSupported, 1>(length); }
void* get_dot11CurrentCCAMode(void* row, size_t* length) { return word<&Row::dot11CurrentCCAMode>(row, length); }
void* get_dot11EDThreshold(void* row, size_t* length) { return word<&Row::dot11EDThreshold>(row, length); }

int set_dot11CurrentChannel(void*, const void*, size_t) { return refuse_write(); }
int set_dot11CurrentCCAMode(void*, const void*, size_t) { return refuse_write(); }
int set_dot11EDThreshold(void*, const void*, size_t) { return refuse_write(); }
// clang-format on
