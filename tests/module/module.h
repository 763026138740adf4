// The built module, loaded with dlopen.
#pragma once

#include <string>
#include <vector>

#include "util/net_snmp.h"

// The module's own routine or object of that name, also where the program has another. The test fails without it.
void* find_symbol(const char* name);

template <class Symbol>
Symbol* symbol(const std::string& name) {
    return reinterpret_cast<Symbol*>(find_symbol(name.c_str()));
}

// Lines of the agent's log, with their priority before them: "3 text".
class Log {
  public:
    Log();
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    std::vector<std::string> lines;
};
