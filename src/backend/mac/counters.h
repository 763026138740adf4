// dot11CountersTable: one row for each wireless interface, with the counters from the store.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey transmitted_fragment_count = {"interface", "transmitted-fragment-count"};
inline constexpr StoreKey multicast_transmitted_frame_count = {"interface", "multicast-transmitted-frame-count"};
inline constexpr StoreKey failed_count = {"interface", "failed-count"};
inline constexpr StoreKey multiple_retry_count = {"interface", "multiple-retry-count"};
inline constexpr StoreKey retry_count = {"interface", "retry-count"};
inline constexpr StoreKey frame_duplicate_count = {"interface", "frame-duplicate-count"};
inline constexpr StoreKey rts_success_count = {"interface", "rts-success-count"};
inline constexpr StoreKey rts_failure_count = {"interface", "rts-failure-count"};
inline constexpr StoreKey ack_failure_count = {"interface", "ack-failure-count"};
inline constexpr StoreKey multicast_received_frame_count = {"interface", "multicast-received-frame-count"};
inline constexpr StoreKey fcs_error_count = {"interface", "fcs-error-count"};
inline constexpr StoreKey received_fragment_count = {"interface", "received-fragment-count"};
inline constexpr StoreKey transmitted_frame_count = {"interface", "transmitted-frame-count"};
inline constexpr StoreKey wep_undecryptable_count = {"interface", "wep-undecryptable-count"};
}  // namespace key

// Counters are never negative.
struct CountersRow {
    uint32_t ifIndex;
    int32_t dot11TransmittedFragmentCount;
    int32_t dot11MulticastTransmittedFrameCount;
    int32_t dot11FailedCount;
    int32_t dot11RetryCount;
    int32_t dot11MultipleRetryCount;
    int32_t dot11FrameDuplicateCount;
    int32_t dot11RTSSuccessCount;
    int32_t dot11RTSFailureCount;
    int32_t dot11ACKFailureCount;
    int32_t dot11ReceivedFragmentCount;
    int32_t dot11MulticastReceivedFrameCount;
    int32_t dot11FCSErrorCount;
    int32_t dot11TransmittedFrameCount;
    int32_t dot11WEPUndecryptableCount;
};

static_assert(sizeof(CountersRow) == 60);
static_assert(offsetof(CountersRow, dot11TransmittedFragmentCount) == 4);
static_assert(offsetof(CountersRow, dot11RetryCount) == 16);
static_assert(offsetof(CountersRow, dot11MultipleRetryCount) == 20);
static_assert(offsetof(CountersRow, dot11ReceivedFragmentCount) == 40);
static_assert(offsetof(CountersRow, dot11WEPUndecryptableCount) == 56);

struct CountersScratch {
    ScratchText transmitted_fragment, multicast_transmitted_frame, failed, retry, multiple_retry, frame_duplicate,
        rts_success, rts_failure, ack_failure, received_fragment, multicast_received_frame, fcs_error,
        transmitted_frame, wep_undecryptable;
};

#pragma GCC visibility push(default)
extern "C" {

extern CountersRow cinfo[max_interfaces];
extern CountersScratch cnt_info;

int GetCountersEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetCountersTableIndexCount(void);  // rows found by the latest enumeration
int GetCountersTableData(void);             // fills the rows; 1
int GetCountersEntryByIndex(uint32_t row, void* destination);  // copies one CountersRow; see copy_row
}
#pragma GCC visibility pop

}  // namespace dot11
