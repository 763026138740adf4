// Questions to an SNMP agent, put by Net-SNMP's own programs: linked with their library, every command of this tool
// would take twice as long to start.
#pragma once

#include <string>
#include <vector>

namespace cfql::tool {

struct SnmpAddress {
    std::string host;       // as in snmpcmd(1)
    std::string community;  // for version 2c
    std::string user;       // for version 3 when not empty; the rest is in snmp.conf(5), where no other user reads it
};

struct SnmpAnswer {
    enum class State : unsigned char { answered, no_client, failed } state = State::failed;
    std::vector<std::string> lines;  // of the answer, an OID in numbers each: ".1.3.6... = INTEGER: 1"
    std::string fault;               // of a failure: the program's last line
};

// PROGRAM: snmpget or snmpbulkwalk. SECONDS: for the answer to one request, of which there are TRIES. Takes a minute at
// most.
SnmpAnswer ask(const std::string& program, const SnmpAddress& address, int seconds, int tries,
               const std::vector<std::string>& oids);

}  // namespace cfql::tool
