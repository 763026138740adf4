// dot11RegDomainsSupportedTable (1.2.840.10036.4.7): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/phy/reg_domains.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11RegDomainsSupportedTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11RegDomainsSupportedTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11RegDomainsSupportedTable_context_convert_function;
Netsnmp_Free_Data_Context dot11RegDomainsSupportedTable_data_free;
CreateRow dot11RegDomainsSupportedTable_create_data_context;
CommitRow dot11RegDomainsSupportedTable_commit_row;

GetColumn get_dot11RegDomainsSupportValue;
}
#pragma GCC visibility pop
