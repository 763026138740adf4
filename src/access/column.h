// The shapes of the exported routines of every table. Headers declare a routine with its shape's name: GetColumn
// get_dot11StationID;
#pragma once

#include "util/net_snmp.h"

extern "C" {

// The column's value in a row: a pointer to its octets, never null, and their number in `*length`. See accessors.h.
typedef void* GetColumn(void* row, size_t* length);

// The most octets that a SetColumn reads.
constexpr size_t most_octets_read = 8;

// Writes a value, which its check has accepted, into a row; an SNMP error status (RFC 3416), 0 when it was stored.
// `value` is a 32-bit integer in host order or octets. The length is not used.
typedef int SetColumn(void* row, const void* value, size_t length);

// A row for index values that the table does not hold: a heap block that the caller releases with free, or null.
typedef void* CreateRow(netsnmp_variable_list* indexes);

// Ends the SET of a row. 0.
typedef int CommitRow(void** row, int is_new);
}
