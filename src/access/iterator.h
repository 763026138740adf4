// Walking a table's rows for the agent's table iterator.
//
// The iterator asks for the first and then for the next row; each call leaves the row in the table's loop context and
// its index values in the index varbinds. Rows are read from the configuration store inside these calls, at most once
// every 16 seconds of silence: the 15 seconds run from the latest call for the table, not from the latest reload, so
// that a table under steady polling is not read again. That is meant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "util/net_snmp.h"

// What a table's walk stands on: one static object for each table. The agent walks a table once at a time.
template <class Row>
struct LoopContext {
    uint32_t position;
    Row row;  // begins with the index values, 32 bits each
};

// A table that the iterator reloads. Routines return 0 for failure.
struct ReloadingTable {
    int (*entries)(void);
    int (*table_data)(void);
    uint32_t (*index_count)(void);
    int (*entry_by_index)(uint32_t position, void* row);
    uint32_t rows_per_interface;
    uint32_t records;  // in the backend's array: a walk ends behind the last one, wherever the count is
    uint32_t indexes;  // index values of a row, 1 or 2
};

// Seconds since the epoch, of the latest call for the table that got past its reload.
using LastPass = int64_t;

// The next row of a walk into `row`. Returns `put_index_data` with the row's index values, or null at the end and when
// a reload failed; then the next call tries again.
netsnmp_variable_list* next_row(const ReloadingTable& table, LastPass& last_pass, uint32_t& position, uint32_t* row,
                                netsnmp_variable_list* put_index_data);

// Sets the index varbinds from the leading words of a row.
netsnmp_variable_list* put_indexes(netsnmp_variable_list* put_index_data, const uint32_t* row, uint32_t indexes);

// Puts a walk before the first row.
template <class Row>
void rewind_walk(LoopContext<Row>& loop, void** loop_context_out) {
    loop.position = 0;
    *loop_context_out = &loop;
}

template <class Row>
netsnmp_variable_list* next_row(const ReloadingTable& table, LastPass& last_pass, void** loop_context_out,
                                netsnmp_variable_list* put_index_data) {
    auto* loop = static_cast<LoopContext<Row>*>(*loop_context_out);
    return next_row(table, last_pass, loop->position, reinterpret_cast<uint32_t*>(&loop->row), put_index_data);
}

// A heap copy of the loop context's row, for the agent; null without memory.
template <class Row>
void* copy_of_row(const void* loop_context) {
    static_assert(offsetof(LoopContext<Row>, row) == sizeof(uint32_t), "the row follows the position");
    void* copy = calloc(1, sizeof(Row));
    if (copy) memcpy(copy, &static_cast<const LoopContext<Row>*>(loop_context)->row, sizeof(Row));
    return copy;
}
