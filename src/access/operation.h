// dot11OperationTable (1.2.840.10036.2.1): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/mac/operation.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11OperationTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11OperationTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11OperationTable_context_convert_function;
Netsnmp_Free_Data_Context dot11OperationTable_data_free;
CreateRow dot11OperationTable_create_data_context;
CommitRow dot11OperationTable_commit_row;

GetColumn get_dot11MACAddress;
GetColumn get_dot11RTSThreshold;
GetColumn get_dot11ShortRetryLimit;
GetColumn get_dot11LongRetryLimit;
GetColumn get_dot11FragmentationThreshold;
GetColumn get_dot11MaxTransmitMSDULifetime;
GetColumn get_dot11MaxReceiveLifetime;
GetColumn get_dot11ManufacturerID;
GetColumn get_dot11ProductID;

SetColumn set_dot11RTSThreshold;
SetColumn set_dot11ShortRetryLimit;
SetColumn set_dot11LongRetryLimit;
SetColumn set_dot11FragmentationThreshold;
SetColumn set_dot11MaxTransmitMSDULifetime;
SetColumn set_dot11MaxReceiveLifetime;
}
#pragma GCC visibility pop
