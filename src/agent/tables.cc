#include "agent/tables.h"

#include "agent/catalogue.h"

// clang-format off
int dot11StationConfigTable_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info, netsnmp_request_info* requests) { return handle_requests(catalogue::dot11StationConfigTable, info, requests); }

void initialize_table_dot11StationConfigTable(void) { register_table(catalogue::dot11StationConfigTable); }
// clang-format on

void init_ieee802dot11(void) {
    initialize_table_dot11StationConfigTable();
}
