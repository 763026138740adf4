// dot11WEPDefaultKeysTable (1.2.840.10036.1.3): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/smt/wep_default_keys.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11WEPDefaultKeysTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11WEPDefaultKeysTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11WEPDefaultKeysTable_context_convert_function;
Netsnmp_Free_Data_Context dot11WEPDefaultKeysTable_data_free;
CreateRow dot11WEPDefaultKeysTable_create_data_context;
CommitRow dot11WEPDefaultKeysTable_commit_row;

GetColumn get_dot11WEPDefaultKeyValue;

SetColumn set_dot11WEPDefaultKeyValue;
}
#pragma GCC visibility pop
