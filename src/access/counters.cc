// dot11CountersTable (1.2.840.10036.2.2).
#include "backend/mac/counters.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = CountersRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
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
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_ONLY(1, dot11TransmittedFragmentCount, counter, key::transmitted_fragment_count),
    READ_ONLY(2, dot11MulticastTransmittedFrameCount, counter, key::multicast_transmitted_frame_count),
    READ_ONLY(3, dot11FailedCount, counter, key::failed_count),
    READ_ONLY(4, dot11RetryCount, counter, key::retry_count),
    READ_ONLY(5, dot11MultipleRetryCount, counter, key::multiple_retry_count),
    READ_ONLY(6, dot11FrameDuplicateCount, counter, key::frame_duplicate_count),
    READ_ONLY(7, dot11RTSSuccessCount, counter, key::rts_success_count),
    READ_ONLY(8, dot11RTSFailureCount, counter, key::rts_failure_count),
    READ_ONLY(9, dot11ACKFailureCount, counter, key::ack_failure_count),
    READ_ONLY(10, dot11ReceivedFragmentCount, counter, key::received_fragment_count),
    READ_ONLY(11, dot11MulticastReceivedFrameCount, counter, key::multicast_received_frame_count),
    READ_ONLY(12, dot11FCSErrorCount, counter, key::fcs_error_count),
    READ_ONLY(13, dot11TransmittedFrameCount, counter, key::transmitted_frame_count),
    READ_ONLY(14, dot11WEPUndecryptableCount, counter, key::wep_undecryptable_count),
};
// clang-format on

constexpr Table dot11CountersTable = {
    .name = "dot11CountersTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetCountersEntries,
    .table_data = GetCountersTableData,
    .index_count = GetCountersTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetCountersEntryByIndex,
};

}  // namespace dot11
