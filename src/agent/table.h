// What the request handler and the registration know of a table.
#pragma once

#include <cstdint>
#include <span>

#include "access/column.h"
#include "checks/checks.h"
#include "util/net_snmp.h"

// How a GET answers a column.
enum class Answered : uint8_t {
    when_present,  // with the accessor's value, unless that is null
    always,        // with whatever the accessor returns
    never,         // not at all: the handler returns at once and leaves the later requests of its list untouched
};

struct Column {
    uint32_t number;  // below the table's entry
    u_char type;      // ASN.1 type of an answer
    Answered answered;
    bool write_ends_handler;  // ACTION and UNDO return at once, as a GET does
    const char* name;
    GetColumn* get;
    Check* check;    // null for a column that is read-only
    SetColumn* set;  // null for a column that is read-only
};

// What a SET of a row that the table does not hold meets. Refused: 11 (noCreation). Made: the row that the table
// creates. Stood in: a private row of zeroes; what is written there goes nowhere.
enum class MissingRow : uint8_t { refused, made, stood_in };

// What UNDO answers. Strict: 15 (undoFailed) when nothing was saved, otherwise the write accessor's own status. Plain:
// 15 for every failure.
enum class Undo : uint8_t { none, strict, plain };

struct Table {
    const char* name;
    std::span<const oid> root;
    std::span<const Column> columns;  // in order and without gaps
    uint32_t indexes;                 // all of type INTEGER
    MissingRow missing_row;
    Undo undo;
    size_t row_size;

    Netsnmp_Node_Handler* handler;
    Netsnmp_First_Data_Point* get_first_data_point;
    Netsnmp_Next_Data_Point* get_next_data_point;
    Netsnmp_Make_Data_Context* make_data_context;  // null for a table that never has rows
    Netsnmp_Free_Data_Context* free_data_context;  // null for a table that never has rows
    CreateRow* create_row;
    CommitRow* commit_row;
};

// The column with that number, or null.
const Column* find_column(const Table& table, uint32_t number);

// Registers the table with the agent. Without memory it is left out, with a line in the agent's log.
void register_table(const Table& table);

// Answers one phase of a request for all its varbinds in this table. Always SNMP_ERR_NOERROR: errors are attached to
// varbinds.
int handle_requests(const Table& table, netsnmp_agent_request_info* info, netsnmp_request_info* requests);
