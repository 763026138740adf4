// Interfaces and configurations by number, for the tests of all tables.
#pragma once

#include <string>

#include "columns.h"

// Interface i of a test, i < 256: its name, "w0" and so on, and its index in the system. In a full configuration i is
// the last octet of its MAC address.
std::string interface_name(unsigned i);
unsigned interface_index(unsigned i);

// Creates so many interfaces.
void add_interfaces(unsigned count);

// A configuration of so many interfaces with every key that the agent reads, or with only their names. In a full one
// each interface has a bss, whose radio is not the one of the interface's name: that one has only the channel.
std::string full_configuration(unsigned count);
std::string empty_configuration(unsigned count);

// The answer to a GET of a column's row of interface i in a full configuration.
std::string example_answer(const ColumnFact& column, size_t row, unsigned i);
