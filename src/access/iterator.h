// Walking a table's rows for the agent's table iterator.
//
// The iterator asks for the first and then for the next row; each call leaves the row in the table's loop context and
// its index values in the index varbinds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "access/table.h"
#include "util/net_snmp.h"

namespace dot11 {

// A walk's state: one static object for each table. The agent never walks a table twice at a time.
template <class Row>
struct LoopContext {
    uint32_t position;
    Row row;
};

// The walk of a table whose rows are read as a whole, at most once every 16 seconds of silence.
//
// Quirk: the 15 seconds run from the latest call for the table, not from the latest reload, so that a table under
// steady polling is not reloaded.
template <class Row>
struct ReloadingWalk {
    LoopContext<Row> loop;
    int64_t last_pass;  // seconds since the epoch, of the latest call that got past its reload
};

// The walk of a table whose backend hands out one row after the other, and says with each whether its group goes on.
template <class Row>
struct RateWalk {
    LoopContext<Row> loop;
    int32_t value_index = 1;  // 1: a new group begins. Quirk: a new walk leaves it as it is
};

// The next row of a walk, into `row`. Returns `put_index_data` with the row's index values, or null at the end and when
// a reload failed; then the next call tries again.
netsnmp_variable_list* next_reloaded_row(const Table& table, int64_t& last_pass, uint32_t& position, void* row,
                                         netsnmp_variable_list* put_index_data);
netsnmp_variable_list* next_rate(const Table& table, int32_t& value_index, uint32_t& position, void* row,
                                 netsnmp_variable_list* put_index_data);

template <class Row>
netsnmp_variable_list* next_row(const Table& table, ReloadingWalk<Row>& walk, void* loop_context,
                                netsnmp_variable_list* put_index_data) {
    auto* loop = static_cast<LoopContext<Row>*>(loop_context);
    return next_reloaded_row(table, walk.last_pass, loop->position, &loop->row, put_index_data);
}

template <class Row>
netsnmp_variable_list* next_row(const Table& table, RateWalk<Row>& walk, void* loop_context,
                                netsnmp_variable_list* put_index_data) {
    auto* loop = static_cast<LoopContext<Row>*>(loop_context);
    return next_rate(table, walk.value_index, loop->position, &loop->row, put_index_data);
}

// A heap copy of the loop context's row, for the agent; null when out of memory.
template <template <class> class Walk, class Row>
void* copy_of_row(const Walk<Row>&, const void* loop_context) {
    static_assert(offsetof(LoopContext<Row>, row) == sizeof(uint32_t), "the row follows the position");
    void* copy = calloc(1, sizeof(Row));
    if (copy) memcpy(copy, &static_cast<const LoopContext<Row>*>(loop_context)->row, sizeof(Row));
    return copy;
}

}  // namespace dot11
