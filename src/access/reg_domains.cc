// dot11RegDomainsSupportedTable (1.2.840.10036.4.7).
#include "backend/phy/reg_domains.h"
#include "access/accessors.h"
#include "access/tables.h"
#include "backend/phy/phy_operation.h"

namespace dot11 {

using Row = RegDomainsRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11RegDomainsSupportValue(void* row, size_t* length) { return word_in_place<&Row::dot11RegDomainsSupportValue>(row, length); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_ONLY(2, dot11RegDomainsSupportValue, integer, key::current_reg_domain),
};
// clang-format on

constexpr Table dot11RegDomainsSupportedTable = {
    .name = "dot11RegDomainsSupportedTable",
    .columns = columns,
    .indexes = 2,
    .row_size = sizeof(Row),
    .entries = GetRegDomainSupportedEntries,
    .table_data = GetRegDomainSupportedTableData,
    .index_count = GetRegDomainsSupportedTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetRegDomainSupportedEntryByIndex,
};

}  // namespace dot11
