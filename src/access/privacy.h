// dot11PrivacyTable (1.2.840.10036.1.5): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/smt/privacy.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11PrivacyTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11PrivacyTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11PrivacyTable_context_convert_function;
Netsnmp_Free_Data_Context dot11PrivacyTable_data_free;
CreateRow dot11PrivacyTable_create_data_context;
CommitRow dot11PrivacyTable_commit_row;

GetColumn get_dot11PrivacyInvoked;
GetColumn get_dot11WEPDefaultKeyID;
GetColumn get_dot11WEPKeyMappingLength;
GetColumn get_dot11ExcludeUnencrypted;
GetColumn get_dot11WEPICVErrorCount;
GetColumn get_dot11WEPExcludedCount;

SetColumn set_dot11PrivacyInvoked;
SetColumn set_dot11WEPDefaultKeyID;
SetColumn set_dot11WEPKeyMappingLength;
SetColumn set_dot11ExcludeUnencrypted;
}
#pragma GCC visibility pop
