// The tool's commands. Each writes to standard output, returns an exit status, and throws Failure.
#pragma once

#include <string>

#include "failure.h"

namespace cfql::tool {

// What the command line asks for. A command reads only the members that its help documents.
struct Request {
    std::string store;
    std::string table, object, key, value;
    std::string file;  // of import, and of export --output
    size_t nth = 1;
    bool reveal = false;
    bool salvage = false;
    bool replace = false;
    bool allow_empty = false;
    bool offline = false;
    bool defaults = false;
    bool json = false;
    bool complete = false;
    std::string agent_user;  // empty: the user of the running agent
    std::string module;      // the module's file
    std::string host, community, snmp_user;
};

Exit init(const Request& request);
Exit get(const Request& request);
Exit set(const Request& request);
Exit unset(const Request& request);
Exit list(const Request& request);
Exit import_contents(const Request& request);
Exit export_contents(const Request& request);
Exit check(const Request& request);
Exit preview(const Request& request);
Exit lint(const Request& request);
Exit watch(const Request& request);
Exit doctor(const Request& request);

}  // namespace cfql::tool
