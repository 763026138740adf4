#include "access/iterator.h"

#include <sys/time.h>

namespace {

constexpr int64_t quiet_seconds = 15;

// Reads the table again when it has not been asked for long enough. False when that failed.
bool is_current(const ReloadingTable& table, LastPass& last_pass) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    const int64_t seconds = now.tv_sec;
    if (last_pass + quiet_seconds < seconds && (!table.entries() || !table.table_data())) return false;
    last_pass = seconds;
    return true;
}

}  // namespace

netsnmp_variable_list* put_indexes(netsnmp_variable_list* put_index_data, const uint32_t* row, uint32_t indexes) {
    netsnmp_variable_list* index = put_index_data;
    for (uint32_t i = 0; i < indexes && index; ++i, index = index->next_variable)
        snmp_set_var_value(index, &row[i], sizeof row[i]);
    return put_index_data;
}

// A walk ends where the position equals the count. A position past the count, which a reload in the middle of a walk
// can leave, goes on with what the array holds, up to its last record.
netsnmp_variable_list* next_row(const ReloadingTable& table, LastPass& last_pass, uint32_t& position, uint32_t* row,
                                netsnmp_variable_list* put_index_data) {
    if (!is_current(table, last_pass)) return nullptr;
    const uint32_t count = table.index_count() * table.rows_per_interface;
    if (position == count || position >= table.records) return nullptr;
    table.entry_by_index(position, row);
    ++position;
    return put_indexes(put_index_data, row, table.indexes);
}
