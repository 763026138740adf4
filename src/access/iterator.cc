#include "access/iterator.h"

#include <sys/time.h>

#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <array>

#include "store/interfaces.h"

namespace dot11 {

uint32_t max_age = 0;

namespace {

constexpr int64_t quiet_seconds = 15;
constexpr int last_of_group = 2;

// The last pass of a table that has to be reloaded: earlier than any clock's time.
constexpr int64_t never = INT64_MIN / 2;

int64_t monotonic_milliseconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

bool reload(const Table& table, ReloadTimes& times, RowOrder& order) {
    order = {};
    // Taken first: the age of the rows counts from the beginning of the load.
    if (max_age != 0) times.loaded = monotonic_milliseconds();
    return table.entries() && table.table_data();
}

// Reloads the table if there was no request for it for long enough. False if that fails.
bool reload_after_silence(const Table& table, ReloadTimes& times, RowOrder& order) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    const int64_t seconds = now.tv_sec;
    if (times.last_pass + quiet_seconds < seconds && !reload(table, times, order)) return false;
    times.last_pass = seconds;
    return true;
}

// Unsigned, so that they compare like OIDs, in which a negative index is a large sub-identifier.
using Indexes = std::array<uint32_t, 2>;

Indexes indexes_of(const Table& table, const void* row) {
    const auto* values = static_cast<const uint32_t*>(row);
    return {values[0], values[table.indexes - 1]};
}

netsnmp_variable_list* put_indexes(const Table& table, const void* row, netsnmp_variable_list* put_index_data) {
    const auto* values = static_cast<const uint32_t*>(row);
    netsnmp_variable_list* index = put_index_data;
    for (uint32_t i = 0; i < table.indexes && index; ++i, index = index->next_variable)
        snmp_set_var_value(index, &values[i], sizeof values[i]);
    return put_index_data;
}

}  // namespace

void begin_walk(ReloadTimes& times) {
    if (max_age != 0 && monotonic_milliseconds() - times.loaded >= int64_t{max_age} * 1000) times.last_pass = never;
}

// Quirk: a walk ends when the position equals the count. From a position past the count, which a reload in the middle
// of a walk can leave, it goes on with what the backend's array holds, up to its last record.
netsnmp_variable_list* next_reloaded_row(const Table& table, ReloadTimes& times, RowOrder& order, uint32_t& position,
                                         void* row, netsnmp_variable_list* put_index_data) {
    if (!reload_after_silence(table, times, order)) return nullptr;
    const bool is_first = position == 0;
    if (is_first) order.ascends_so_far = true;
    const uint32_t count = table.index_count() * table.rows_per_interface;
    if (position == count || position >= max_interfaces * table.rows_per_interface) {
        order.ascends = order.ascends_so_far;
        return nullptr;
    }
    const Indexes before = indexes_of(table, row);
    table.entry_by_index(position, row);
    if (!is_first && indexes_of(table, row) <= before) order = {};
    ++position;
    return put_indexes(table, row, put_index_data);
}

void* copy_of_row(const void* row, size_t size) {
    void* copy = calloc(1, size);
    if (copy) memcpy(copy, row, size);
    return copy;
}

netsnmp_variable_list* next_rate(const Table& table, int32_t& value_index, uint32_t& position, void* row,
                                 netsnmp_variable_list* put_index_data) {
    const int result = table.row_by_index(position, &value_index, row);
    if (result < 1) return nullptr;
    if (result == last_of_group) {
        value_index = 1;
        ++position;
    }
    return put_indexes(table, row, put_index_data);
}

}  // namespace dot11
