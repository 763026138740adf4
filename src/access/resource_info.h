// dot11ResourceInfoTable (1.2.840.10036.3.1.2): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/mac/resource_info.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11ResourceInfoTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11ResourceInfoTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11ResourceInfoTable_context_convert_function;
Netsnmp_Free_Data_Context dot11ResourceInfoTable_data_free;
CreateRow dot11ResourceInfoTable_create_data_context;
CommitRow dot11ResourceInfoTable_commit_row;

GetColumn get_dot11manufacturerOUI;
GetColumn get_dot11manufacturerName;
GetColumn get_dot11manufacturerProductName;
GetColumn get_dot11manufacturerProductVersion;
}
#pragma GCC visibility pop
