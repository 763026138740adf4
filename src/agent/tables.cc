#include "agent/tables.h"

#include "agent/catalogue.h"

// clang-format off
int dot11StationConfigTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11StationConfigTable, info, requests); }
int dot11AuthenticationAlgorithmsTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11AuthenticationAlgorithmsTable, info, requests); }
int dot11WEPDefaultKeysTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11WEPDefaultKeysTable, info, requests); }
int dot11WEPKeyMappingsTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11WEPKeyMappingsTable, info, requests); }
int dot11PrivacyTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11PrivacyTable, info, requests); }
int dot11OperationTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11OperationTable, info, requests); }
int dot11CountersTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11CountersTable, info, requests); }
int dot11GroupAddressesTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11GroupAddressesTable, info, requests); }
int dot11ResourceInfoTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11ResourceInfoTable, info, requests); }
int dot11PhyOperationTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11PhyOperationTable, info, requests); }
int dot11PhyTxPowerTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11PhyTxPowerTable, info, requests); }
int dot11PhyDSSSTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11PhyDSSSTable, info, requests); }
int dot11RegDomainsSupportedTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11RegDomainsSupportedTable, info, requests); }
int dot11SupportedDataRatesTxTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11SupportedDataRatesTxTable, info, requests); }
int dot11SupportedDataRatesRxTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11SupportedDataRatesRxTable, info, requests); }
int dot11PhyHRDSSSTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11PhyHRDSSSTable, info, requests); }
int dot11PhyERPTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11PhyERPTable, info, requests); }

void initialize_table_dot11StationConfigTable(void) { register_table(catalogue::dot11StationConfigTable); }
void initialize_table_dot11AuthenticationAlgorithmsTable(void) { register_table(catalogue::dot11AuthenticationAlgorithmsTable); }
void initialize_table_dot11WEPDefaultKeysTable(void) { register_table(catalogue::dot11WEPDefaultKeysTable); }
void initialize_table_dot11WEPKeyMappingsTable(void) { register_table(catalogue::dot11WEPKeyMappingsTable); }
void initialize_table_dot11PrivacyTable(void) { register_table(catalogue::dot11PrivacyTable); }
void initialize_table_dot11OperationTable(void) { register_table(catalogue::dot11OperationTable); }
void initialize_table_dot11CountersTable(void) { register_table(catalogue::dot11CountersTable); }
void initialize_table_dot11GroupAddressesTable(void) { register_table(catalogue::dot11GroupAddressesTable); }
void initialize_table_dot11ResourceInfoTable(void) { register_table(catalogue::dot11ResourceInfoTable); }
void initialize_table_dot11PhyOperationTable(void) { register_table(catalogue::dot11PhyOperationTable); }
void initialize_table_dot11PhyTxPowerTable(void) { register_table(catalogue::dot11PhyTxPowerTable); }
void initialize_table_dot11PhyDSSSTable(void) { register_table(catalogue::dot11PhyDSSSTable); }
void initialize_table_dot11RegDomainsSupportedTable(void) { register_table(catalogue::dot11RegDomainsSupportedTable); }
void initialize_table_dot11SupportedDataRatesTxTable(void) { register_table(catalogue::dot11SupportedDataRatesTxTable); }
void initialize_table_dot11SupportedDataRatesRxTable(void) { register_table(catalogue::dot11SupportedDataRatesRxTable); }
void initialize_table_dot11PhyHRDSSSTable(void) { register_table(catalogue::dot11PhyHRDSSSTable); }
void initialize_table_dot11PhyERPTable(void) { register_table(catalogue::dot11PhyERPTable); }
// clang-format on

void init_ieee802dot11(void) {
    initialize_table_dot11WEPKeyMappingsTable();
    initialize_table_dot11PhyDSSSTable();
    initialize_table_dot11ResourceInfoTable();
    initialize_table_dot11PhyOperationTable();
    initialize_table_dot11PhyHRDSSSTable();
    initialize_table_dot11StationConfigTable();
    initialize_table_dot11CountersTable();
    initialize_table_dot11PhyTxPowerTable();
    initialize_table_dot11GroupAddressesTable();
    initialize_table_dot11SupportedDataRatesRxTable();
    initialize_table_dot11AuthenticationAlgorithmsTable();
    initialize_table_dot11PrivacyTable();
    initialize_table_dot11PhyERPTable();
    initialize_table_dot11WEPDefaultKeysTable();
    initialize_table_dot11SupportedDataRatesTxTable();
    initialize_table_dot11OperationTable();
    initialize_table_dot11RegDomainsSupportedTable();
}
