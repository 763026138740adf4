// dot11CountersTable (1.2.840.10036.2.2): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/mac/counters.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11CountersTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11CountersTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11CountersTable_context_convert_function;
Netsnmp_Free_Data_Context dot11CountersTable_data_free;
CreateRow dot11CountersTable_create_data_context;
CommitRow dot11CountersTable_commit_row;

GetColumn get_dot11TransmittedFragmentCount;
GetColumn get_dot11MulticastTransmittedFrameCount;
GetColumn get_dot11FailedCount;
GetColumn get_dot11RetryCount;
GetColumn get_dot11MultipleRetryCount;
GetColumn get_dot11FrameDuplicateCount;
GetColumn get_dot11RTSSuccessCount;
GetColumn get_dot11RTSFailureCount;
GetColumn get_dot11ACKFailureCount;
GetColumn get_dot11ReceivedFragmentCount;
GetColumn get_dot11MulticastReceivedFrameCount;
GetColumn get_dot11FCSErrorCount;
GetColumn get_dot11TransmittedFrameCount;
GetColumn get_dot11WEPUndecryptableCount;
}
#pragma GCC visibility pop
