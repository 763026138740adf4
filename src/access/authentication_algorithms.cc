// dot11AuthenticationAlgorithmsTable (1.2.840.10036.1.2).
#include "backend/smt/authentication_algorithms.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = AuthenticationAlgorithmsRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11AuthenticationAlgorithm(void* row, size_t* length) { return word<&Row::dot11AuthenticationAlgorithm>(row, length); }
void* get_dot11AuthenticationAlgorithmsEnable(void* row, size_t* length) { return word<&Row::dot11AuthenticationAlgorithmsEnable>(row, length); }

int set_dot11AuthenticationAlgorithmsEnable(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    ALWAYS_ANSWERED(2, dot11AuthenticationAlgorithm, integer, no_key),
    READ_WRITE(3, dot11AuthenticationAlgorithmsEnable, integer, key::authentication_algorithms),
};
// clang-format on

constexpr Table dot11AuthenticationAlgorithmsTable = {
    .name = "dot11AuthenticationAlgorithmsTable",
    .columns = columns,
    .indexes = 2,
    .row_size = sizeof(Row),
    .entries = GetAuthAlgorithmEntries,
    .table_data = GetAuthAlgorithmTableData,
    .index_count = GetAuthenticationAlgorithmTableIndexCount,
    .rows_per_interface = algorithms_per_interface,
    .entry_by_index = GetAuthAlgorithmEntryByIndex,
};

}  // namespace dot11
