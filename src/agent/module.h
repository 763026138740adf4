// The module's entry point, and the registration and the request handler of every table.
#pragma once

#include "agent/catalogue.h"

namespace dot11 {

#pragma GCC visibility push(default)
extern "C" {

// The agent calls it when it has loaded the module, and again at each SIGHUP. Registers the tables, and the options if
// the agent has a table of this copy. A table that cannot be registered is left out.
void init_ieee802dot11(void);

using InitializeTable = void(void);

InitializeTable initialize_table_dot11StationConfigTable;
InitializeTable initialize_table_dot11AuthenticationAlgorithmsTable;
InitializeTable initialize_table_dot11WEPDefaultKeysTable;
InitializeTable initialize_table_dot11WEPKeyMappingsTable;
InitializeTable initialize_table_dot11PrivacyTable;
InitializeTable initialize_table_dot11OperationTable;
InitializeTable initialize_table_dot11CountersTable;
InitializeTable initialize_table_dot11GroupAddressesTable;
InitializeTable initialize_table_dot11ResourceInfoTable;
InitializeTable initialize_table_dot11PhyOperationTable;
InitializeTable initialize_table_dot11PhyTxPowerTable;
InitializeTable initialize_table_dot11PhyDSSSTable;
InitializeTable initialize_table_dot11RegDomainsSupportedTable;
InitializeTable initialize_table_dot11SupportedDataRatesTxTable;
InitializeTable initialize_table_dot11SupportedDataRatesRxTable;
InitializeTable initialize_table_dot11PhyHRDSSSTable;
InitializeTable initialize_table_dot11PhyERPTable;

// Always SNMP_ERR_NOERROR.
Netsnmp_Node_Handler dot11StationConfigTable_handler;
Netsnmp_Node_Handler dot11AuthenticationAlgorithmsTable_handler;
Netsnmp_Node_Handler dot11WEPDefaultKeysTable_handler;
Netsnmp_Node_Handler dot11WEPKeyMappingsTable_handler;
Netsnmp_Node_Handler dot11PrivacyTable_handler;
Netsnmp_Node_Handler dot11OperationTable_handler;
Netsnmp_Node_Handler dot11CountersTable_handler;
Netsnmp_Node_Handler dot11GroupAddressesTable_handler;
Netsnmp_Node_Handler dot11ResourceInfoTable_handler;
Netsnmp_Node_Handler dot11PhyOperationTable_handler;
Netsnmp_Node_Handler dot11PhyTxPowerTable_handler;
Netsnmp_Node_Handler dot11PhyDSSSTable_handler;
Netsnmp_Node_Handler dot11RegDomainsSupportedTable_handler;
Netsnmp_Node_Handler dot11SupportedDataRatesTxTable_handler;
Netsnmp_Node_Handler dot11SupportedDataRatesRxTable_handler;
Netsnmp_Node_Handler dot11PhyHRDSSSTable_handler;
Netsnmp_Node_Handler dot11PhyERPTable_handler;
}
#pragma GCC visibility pop

// Registers the table with the agent. When out of memory, logs a line and leaves the table out.
void register_table(const AgentTable& table);

}  // namespace dot11
