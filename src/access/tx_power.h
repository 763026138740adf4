// dot11PhyTxPowerTable (1.2.840.10036.4.3): its walk and its columns.
#pragma once

#include "access/column.h"
#include "backend/phy/tx_power.h"

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11PhyTxPowerTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11PhyTxPowerTable_get_next_data_point;
Netsnmp_Make_Data_Context dot11PhyTxPowerTable_context_convert_function;
Netsnmp_Free_Data_Context dot11PhyTxPowerTable_data_free;
CreateRow dot11PhyTxPowerTable_create_data_context;
CommitRow dot11PhyTxPowerTable_commit_row;

GetColumn get_dot11NumberSupportedPowerLevels;
GetColumn get_dot11TxPowerLevel1;
GetColumn get_dot11TxPowerLevel2;
GetColumn get_dot11TxPowerLevel3;
GetColumn get_dot11TxPowerLevel4;
GetColumn get_dot11TxPowerLevel5;
GetColumn get_dot11TxPowerLevel6;
GetColumn get_dot11TxPowerLevel7;
GetColumn get_dot11TxPowerLevel8;
GetColumn get_dot11CurrentTxPowerLevel;

SetColumn set_dot11CurrentTxPowerLevel;
}
#pragma GCC visibility pop
