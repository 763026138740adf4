// The module's entry, and the request handler and the registration of every table.
#pragma once

#include "util/net_snmp.h"

#pragma GCC visibility push(default)
extern "C" {

// Called by the agent once when it has loaded the module: registers the tables. A table that fails is left out.
void init_ieee802dot11(void);

typedef void InitializeTable(void);

InitializeTable initialize_table_dot11StationConfigTable;

// Always SNMP_ERR_NOERROR.
Netsnmp_Node_Handler dot11StationConfigTable_handler;
}
#pragma GCC visibility pop
