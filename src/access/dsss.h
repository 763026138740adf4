// dot11PhyDSSSTable (1.2.840.10036.4.5): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/phy/dsss.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11PhyDSSSTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11PhyDSSSTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11PhyDSSSTable_context_convert_function;
Netsnmp_Free_Data_Context dot11PhyDSSSTable_data_free;
CreateRow dot11PhyDSSSTable_create_data_context;
CommitRow dot11PhyDSSSTable_commit_row;

GetColumn get_dot11CurrentChannel;
GetColumn get_dot11CCAModeSupported;
GetColumn get_dot11CurrentCCAMode;
GetColumn get_dot11EDThreshold;

SetColumn set_dot11CurrentChannel;
SetColumn set_dot11CurrentCCAMode;
SetColumn set_dot11EDThreshold;
}
#pragma GCC visibility pop
