// dot11PhyOperationTable (1.2.840.10036.4.1).
#include "backend/phy/phy_operation.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = PhyOperationRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11PHYType(void* row, size_t* length) { return word<&Row::dot11PHYType>(row, length); }
void* get_dot11CurrentRegDomain(void* row, size_t* length) { return word<&Row::dot11CurrentRegDomain>(row, length); }
void* get_dot11TempType(void* row, size_t* length) { return word<&Row::dot11TempType>(row, length); }

int set_dot11CurrentRegDomain(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    NOT_ANSWERED(1, dot11PHYType, integer, key::phy_type),
    READ_WRITE(2, dot11CurrentRegDomain, integer, key::current_reg_domain),
    ALWAYS_ANSWERED(3, dot11TempType, integer, key::temp_type),
};
// clang-format on

constexpr Table dot11PhyOperationTable = {
    .name = "dot11PhyOperationTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetPhyOperationsEntries,
    .table_data = GetPhyOperationsTableData,
    .index_count = GetPhyOperationTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetPhyOperationsEntryByIndex,
};

}  // namespace dot11
