// The handler of all tables, a state machine over the phases of a request.
#pragma once

#include "agent/catalogue.h"

namespace dot11 {

// Whether GETs of `complete_only` columns are answered, too, and no column ends the handling of a GET. Off by default.
extern bool complete_answers;

// Answers one phase of a request for all its varbinds in this table. Always SNMP_ERR_NOERROR: errors are attached to
// varbinds.
int handle_requests(const AgentTable& table, netsnmp_agent_request_info* info, netsnmp_request_info* requests);

}  // namespace dot11
