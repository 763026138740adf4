#include "access/iterator.h"

#include <sys/time.h>

#include "store/interfaces.h"

namespace dot11 {

namespace {

constexpr int64_t quiet_seconds = 15;
constexpr int last_of_group = 2;

// Reloads the table when it has not been asked for long enough. False when that failed.
bool reload_after_silence(const Table& table, int64_t& last_pass) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    const int64_t seconds = now.tv_sec;
    if (last_pass + quiet_seconds < seconds && (!table.entries() || !table.table_data())) return false;
    last_pass = seconds;
    return true;
}

netsnmp_variable_list* put_indexes(const Table& table, const void* row, netsnmp_variable_list* put_index_data) {
    const auto* values = static_cast<const uint32_t*>(row);
    netsnmp_variable_list* index = put_index_data;
    for (uint32_t i = 0; i < table.indexes && index; ++i, index = index->next_variable)
        snmp_set_var_value(index, &values[i], sizeof values[i]);
    return put_index_data;
}

}  // namespace

// Quirk: a walk ends where the position equals the count. A position past the count, which a reload in the middle of a
// walk can leave, goes on with what the backend's array holds, up to its last record.
netsnmp_variable_list* next_reloaded_row(const Table& table, int64_t& last_pass, uint32_t& position, void* row,
                                         netsnmp_variable_list* put_index_data) {
    if (!reload_after_silence(table, last_pass)) return nullptr;
    const uint32_t count = table.index_count() * table.rows_per_interface;
    if (position == count || position >= max_interfaces * table.rows_per_interface) return nullptr;
    table.entry_by_index(position, row);
    ++position;
    return put_indexes(table, row, put_index_data);
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
