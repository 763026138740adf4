#include "access/authentication_algorithms.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = AuthenticationAlgorithmsRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetAuthAlgorithmEntries,
    .table_data = GetAuthAlgorithmTableData,
    .index_count = GetAuthenticationAlgorithmTableIndexCount,
    .entry_by_index = GetAuthAlgorithmEntryByIndex,
    .rows_per_interface = algorithms_per_interface,
    .records = algorithms_per_interface * max_interfaces,
    .indexes = 2,
};

}  // namespace

netsnmp_variable_list* dot11AuthenticationAlgorithmsTable_get_first_data_point(void** loop_context, void** data_context,
                                                                               netsnmp_variable_list* put_index_data,
                                                                               netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11AuthenticationAlgorithmsTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11AuthenticationAlgorithmsTable_get_next_data_point(void** loop_context, void**,
                                                                              netsnmp_variable_list* put_index_data,
                                                                              netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11AuthenticationAlgorithmsTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11AuthenticationAlgorithmsTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11AuthenticationAlgorithmsTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11AuthenticationAlgorithmsTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11AuthenticationAlgorithm(void* row, size_t* length) { return word<&Row::dot11AuthenticationAlgorithm>(row, length); }
void* get_dot11AuthenticationAlgorithmsEnable(void* row, size_t* length) { return word<&Row::dot11AuthenticationAlgorithmsEnable>(row, length); }

int set_dot11AuthenticationAlgorithmsEnable(void*, const void*, size_t) { return refuse_write(); }
// clang-format on
