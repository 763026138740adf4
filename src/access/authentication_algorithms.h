// dot11AuthenticationAlgorithmsTable (1.2.840.10036.1.2): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/smt/authentication_algorithms.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11AuthenticationAlgorithmsTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11AuthenticationAlgorithmsTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11AuthenticationAlgorithmsTable_context_convert_function;
Netsnmp_Free_Data_Context dot11AuthenticationAlgorithmsTable_data_free;
CreateRow dot11AuthenticationAlgorithmsTable_create_data_context;
CommitRow dot11AuthenticationAlgorithmsTable_commit_row;

GetColumn get_dot11AuthenticationAlgorithm;
GetColumn get_dot11AuthenticationAlgorithmsEnable;

SetColumn set_dot11AuthenticationAlgorithmsEnable;
}
#pragma GCC visibility pop
