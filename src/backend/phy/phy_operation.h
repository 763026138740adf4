// dot11PhyOperationTable: one row for each wireless interface.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey current_reg_domain = {"interface", "dot11-current-reg-domain"};
inline constexpr StoreKey temp_type = {"interface", "dot11-temp-type"};
inline constexpr StoreKey phy_type = {"interface", "dot11-phy-type"};
}  // namespace key

struct PhyOperationRow {
    uint32_t ifIndex;
    int32_t dot11PHYType;           // 0 to 3
    int32_t dot11CurrentRegDomain;  // 0 and up
    int32_t dot11TempType;          // 0 and up
};

static_assert(sizeof(PhyOperationRow) == 16);
static_assert(offsetof(PhyOperationRow, dot11PHYType) == 4);
static_assert(offsetof(PhyOperationRow, dot11CurrentRegDomain) == 8);
static_assert(offsetof(PhyOperationRow, dot11TempType) == 12);

struct PhyOperationScratch {
    ScratchText phy_type, current_reg_domain, temp_type;
};

#pragma GCC visibility push(default)
extern "C" {

extern PhyOperationRow poinfo[max_interfaces];
extern PhyOperationScratch phy_oper_info;

int GetPhyOperationsEntries(void);              // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetPhyOperationTableIndexCount(void);  // rows found by the latest enumeration
int GetPhyOperationsTableData(void);            // fills the rows; always 1
int GetPhyOperationsEntryByIndex(uint32_t row, void* destination);  // copies one PhyOperationRow; see copy_row

// Writes the regulatory domain of the interface whose index `index` points to, for callers other than SNMP. Any value
// is written. Returns setTableData's result, 0 when out of memory. `length` is ignored.
int32_t SetCurrentRegDomain(const uint32_t* index, const uint32_t* value, uint32_t length);
}
#pragma GCC visibility pop

}  // namespace dot11
