// dot11RegDomainsSupportedTable: one row for each wireless interface, with the one regulatory domain that is
// configured.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

struct RegDomainsRow {
    uint32_t ifIndex;
    int32_t dot11RegDomainsSupportIndex;  // always 1
    int32_t dot11RegDomainsSupportValue;  // 0 and up; 16 = FCC, 48 = ETSI, ...
};

static_assert(sizeof(RegDomainsRow) == 12);
static_assert(offsetof(RegDomainsRow, dot11RegDomainsSupportIndex) == 4);
static_assert(offsetof(RegDomainsRow, dot11RegDomainsSupportValue) == 8);

struct RegDomainsScratch {
    ScratchText current_reg_domain;
};

#pragma GCC visibility push(default)
extern "C" {

extern RegDomainsRow rdinfo[max_interfaces];
extern RegDomainsScratch reg_info;

int GetRegDomainSupportedEntries(void);  // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetRegDomainsSupportedTableIndexCount(void);                    // rows found by the latest enumeration
int GetRegDomainSupportedTableData(void);                                // fills the rows; always 1
int GetRegDomainSupportedEntryByIndex(uint32_t row, void* destination);  // copies one RegDomainsRow; see copy_row
}
#pragma GCC visibility pop

}  // namespace dot11
