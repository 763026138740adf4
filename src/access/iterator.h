// Walking a table's rows for the agent's table iterator.
//
// The iterator asks for the first and then for the next row; each call leaves the row in the table's loop context and
// its index values in the index varbinds.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "access/table.h"
#include "util/net_snmp.h"

namespace dot11 {

// A walk's state: one static object for each table, because the agent never does two walks of a table at a time.
template <class Row>
struct LoopContext {
    uint32_t position;
    Row row;
};

// When the rows of a table are reloaded.
struct ReloadTimes {
    int64_t last_pass;  // seconds since the epoch, of the latest call whose reload, if any, succeeded
    int64_t loaded;     // milliseconds of CLOCK_MONOTONIC, of the latest load while max_age was set
};

// Whether a table's rows ascend by their indexes. Finding out costs no reading: a scan from the first row to the end
// without a reload has seen all rows, and they do not change before the next reload.
struct RowOrder {
    bool ascends;  // in the last such scan; false after a reload, and once a row does not come after the one before
    bool ascends_so_far;  // in the present scan, from the first row on
};

// The walk of a table whose rows are all read at once: if there was no request for more than 15 seconds, or if the rows
// are older than max_age.
//
// Quirk: the 15 seconds run from the latest call for the table, not from the latest reload, so that without max_age a
// table under steady polling is not reloaded.
template <class Row>
struct ReloadingWalk {
    LoopContext<Row> loop;
    ReloadTimes times;
    RowOrder order;
};

// The walk of a table whose backend returns one row after the other, and says with each whether its group has more.
template <class Row>
struct RateWalk {
    LoopContext<Row> loop;
    int32_t value_index = 1;  // 1: a new group begins. Quirk: a new walk does not reset it
};

// Seconds after which rows are reloaded however often they are polled; 0, the default: never. Such a reload happens
// only before a walk's first row, so that it never disturbs the iterator's scan of a table.
extern uint32_t max_age;

// Call it before a walk's first row.
void begin_walk(ReloadTimes& times);

// Copies the next row of a walk into `row`. Returns `put_index_data` with the row's index values, or null at the end.
// It is null, too, if a reload fails; then the next call tries again.
netsnmp_variable_list* next_reloaded_row(const Table& table, ReloadTimes& times, RowOrder& order, uint32_t& position,
                                         void* row, netsnmp_variable_list* put_index_data);
netsnmp_variable_list* next_rate(const Table& table, int32_t& value_index, uint32_t& position, void* row,
                                 netsnmp_variable_list* put_index_data);

template <class Row>
netsnmp_variable_list* next_row(const Table& table, ReloadingWalk<Row>& walk, void* loop_context,
                                netsnmp_variable_list* put_index_data) {
    auto* loop = static_cast<LoopContext<Row>*>(loop_context);
    return next_reloaded_row(table, walk.times, walk.order, loop->position, &loop->row, put_index_data);
}

template <class Row>
netsnmp_variable_list* next_row(const Table& table, RateWalk<Row>& walk, void* loop_context,
                                netsnmp_variable_list* put_index_data) {
    auto* loop = static_cast<LoopContext<Row>*>(loop_context);
    return next_rate(table, walk.value_index, loop->position, &loop->row, put_index_data);
}

// Tells the agent's iterator, which may be null, whether rows ascend, so that the first row after the one that a
// GETNEXT names is the answer, and the iterator need not scan the rest.
//
// The answers are the same as if the iterator scanned all rows. It checks the flag after each row, and counts the
// requests that the row answers. While rows ascend, no row answers a request better than the first that does, neither
// in this scan nor in the next one, which another request of the message may cause by moving on to the next column; so
// each request is counted at most once. After a reload, no request is counted before a scan has seen all rows. A GET
// does not check the flag. The tables of rates, whose cache counts its calls, never set it.
template <class Row>
void tell_order(const ReloadingWalk<Row>& walk, netsnmp_iterator_info* iterator) {
    if (!iterator) return;
    iterator->flags &= ~NETSNMP_ITERATOR_FLAG_SORTED;
    if (walk.order.ascends) iterator->flags |= NETSNMP_ITERATOR_FLAG_SORTED;
}

template <class Row>
void tell_order(const RateWalk<Row>&, netsnmp_iterator_info*) {}

template <class Row>
void begin_walk(ReloadingWalk<Row>& walk) {
    walk.loop.position = 0;
    begin_walk(walk.times);
}

template <class Row>
void begin_walk(RateWalk<Row>& walk) {
    walk.loop.position = 0;
}

// A heap copy of the loop context's row, for the agent; null when out of memory.
void* copy_of_row(const void* row, size_t size);

template <template <class> class Walk, class Row>
void* copy_of_row(const Walk<Row>&, const void* loop_context) {
    static_assert(offsetof(LoopContext<Row>, row) == sizeof(uint32_t), "the row follows the position");
    return copy_of_row(&static_cast<const LoopContext<Row>*>(loop_context)->row, sizeof(Row));
}

}  // namespace dot11
