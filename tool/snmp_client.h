// Queries an SNMP agent with Net-SNMP's own programs: if this tool were linked with their library, each of its commands
// would take twice as long to start.
#pragma once

#include <string>
#include <vector>

namespace cfql::tool {

struct SnmpAddress {
    std::string host;       // as in snmpcmd(1)
    std::string community;  // for version 2c
    std::string user;       // for version 3 if not empty; the rest is in snmp.conf(5), hidden from other users
};

struct SnmpAnswer {
    enum class State : unsigned char { answered, no_client, failed } state = State::failed;
    std::vector<std::string> lines;  // of the answer, each with a numeric OID: ".1.3.6... = INTEGER: 1"
    std::string fault;               // after a failure, the program's last line
};

// `program`: snmpget or snmpbulkwalk. Each request is sent up to `tries` times, and each time `seconds` are waited for
// the answer. Takes at most a minute.
SnmpAnswer ask(const std::string& program, const SnmpAddress& address, int seconds, int tries,
               const std::vector<std::string>& oids);

}  // namespace cfql::tool
