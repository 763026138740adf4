#include "backend/mac/counters.h"

#include <net/if.h>

#include "backend/lookup.h"
#include "backend/rows.h"

namespace dot11 {

CountersRow cinfo[max_interfaces];
CountersScratch cnt_info;

namespace {

using Row = CountersRow;

int32_t interface_count;

// In the order in which they are read, which differs from that of the columns.
// clang-format off
constexpr InterfaceKey<Row> counts[] = {
    {key::transmitted_fragment_count, &cnt_info.transmitted_fragment, &Row::dot11TransmittedFragmentCount, parse_non_negative, 0},
    {key::multicast_transmitted_frame_count, &cnt_info.multicast_transmitted_frame, &Row::dot11MulticastTransmittedFrameCount, parse_non_negative, 0},
    {key::failed_count, &cnt_info.failed, &Row::dot11FailedCount, parse_non_negative, 0},
    {key::multiple_retry_count, &cnt_info.multiple_retry, &Row::dot11MultipleRetryCount, parse_non_negative, 0},
    {key::retry_count, &cnt_info.retry, &Row::dot11RetryCount, parse_non_negative, 0},
    {key::frame_duplicate_count, &cnt_info.frame_duplicate, &Row::dot11FrameDuplicateCount, parse_non_negative, 0},
    {key::rts_success_count, &cnt_info.rts_success, &Row::dot11RTSSuccessCount, parse_non_negative, 0},
    {key::rts_failure_count, &cnt_info.rts_failure, &Row::dot11RTSFailureCount, parse_non_negative, 0},
    {key::ack_failure_count, &cnt_info.ack_failure, &Row::dot11ACKFailureCount, parse_non_negative, 0},
    {key::multicast_received_frame_count, &cnt_info.multicast_received_frame, &Row::dot11MulticastReceivedFrameCount, parse_non_negative, 0},
    {key::fcs_error_count, &cnt_info.fcs_error, &Row::dot11FCSErrorCount, parse_non_negative, 0},
    {key::received_fragment_count, &cnt_info.received_fragment, &Row::dot11ReceivedFragmentCount, parse_non_negative, 0},
    {key::transmitted_frame_count, &cnt_info.transmitted_frame, &Row::dot11TransmittedFrameCount, parse_non_negative, 0},
    {key::wep_undecryptable_count, &cnt_info.wep_undecryptable, &Row::dot11WEPUndecryptableCount, parse_non_negative, 0},
};
// clang-format on

void fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    read_interface_keys(row, interface, counts);
    read_interface_key(row, interface, counts[0]);  // Quirk: read once more at the end of the row, to refresh it
}

}  // namespace

int GetCountersEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetCountersTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetCountersTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        fill_row(cinfo[i], iface_tags[i]);
    return 1;
}

int GetCountersEntryByIndex(uint32_t row, void* destination) {
    return copy_row(cinfo, row, destination);
}

}  // namespace dot11
