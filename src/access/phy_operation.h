// dot11PhyOperationTable (1.2.840.10036.4.1): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/phy/phy_operation.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11PhyOperationTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11PhyOperationTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11PhyOperationTable_context_convert_function;
Netsnmp_Free_Data_Context dot11PhyOperationTable_data_free;
CreateRow dot11PhyOperationTable_create_data_context;
CommitRow dot11PhyOperationTable_commit_row;

GetColumn get_dot11PHYType;
GetColumn get_dot11CurrentRegDomain;
GetColumn get_dot11TempType;

SetColumn set_dot11CurrentRegDomain;
}
#pragma GCC visibility pop
