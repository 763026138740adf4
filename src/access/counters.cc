#include "access/counters.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = CountersRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetCountersEntries,
    .table_data = GetCountersTableData,
    .index_count = GetCountersTableIndexCount,
    .entry_by_index = GetCountersEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11CountersTable_get_first_data_point(void** loop_context, void** data_context,
                                                               netsnmp_variable_list* put_index_data,
                                                               netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11CountersTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11CountersTable_get_next_data_point(void** loop_context, void**,
                                                              netsnmp_variable_list* put_index_data,
                                                              netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11CountersTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11CountersTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11CountersTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11CountersTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11TransmittedFragmentCount(void* row, size_t* length) { return word<&Row::dot11TransmittedFragmentCount>(row, length); }
void* get_dot11MulticastTransmittedFrameCount(void* row, size_t* length) { return word<&Row::dot11MulticastTransmittedFrameCount>(row, length); }
void* get_dot11FailedCount(void* row, size_t* length) { return word<&Row::dot11FailedCount>(row, length); }
void* get_dot11RetryCount(void* row, size_t* length) { return word<&Row::dot11RetryCount>(row, length); }
void* get_dot11MultipleRetryCount(void* row, size_t* length) { return word<&Row::dot11MultipleRetryCount>(row, length); }
void* get_dot11FrameDuplicateCount(void* row, size_t* length) { return word<&Row::dot11FrameDuplicateCount>(row, length); }
void* get_dot11RTSSuccessCount(void* row, size_t* length) { return word<&Row::dot11RTSSuccessCount>(row, length); }
void* get_dot11RTSFailureCount(void* row, size_t* length) { return word<&Row::dot11RTSFailureCount>(row, length); }
void* get_dot11ACKFailureCount(void* row, size_t* length) { return word<&Row::dot11ACKFailureCount>(row, length); }
void* get_dot11ReceivedFragmentCount(void* row, size_t* length) { return word<&Row::dot11ReceivedFragmentCount>(row, length); }
void* get_dot11MulticastReceivedFrameCount(void* row, size_t* length) { return word<&Row::dot11MulticastReceivedFrameCount>(row, length); }
void* get_dot11FCSErrorCount(void* row, size_t* length) { return word<&Row::dot11FCSErrorCount>(row, length); }
void* get_dot11TransmittedFrameCount(void* row, size_t* length) { return word<&Row::dot11TransmittedFrameCount>(row, length); }
void* get_dot11WEPUndecryptableCount(void* row, size_t* length) { return word<&Row::dot11WEPUndecryptableCount>(row, length); }
// clang-format on
