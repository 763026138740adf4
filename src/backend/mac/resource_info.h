// dot11ResourceInfoTable: one row for each wireless interface, with the maker, product and version of the radio behind
// it.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey manufacturer_oui = {"radio", "manufacturer-oui"};
inline constexpr StoreKey manufacturer_name = {"radio", "manufacturer-name"};
inline constexpr StoreKey manufacturer_product_version = {"radio", "manufacturer-product-version"};
}  // namespace key

struct ResourceInfoRow {
    uint32_t ifIndex;
    uint8_t dot11manufacturerOUI[8];  // the stored text unchanged, such as "00:10:18"
    uint32_t dot11manufacturerOUILen;
    char dot11manufacturerName[256];  // NUL-terminated, like the next two
    uint32_t dot11manufacturerNameLen;
    char dot11manufacturerProductName[256];
    uint32_t dot11manufacturerProductNameLen;
    char dot11manufacturerProductVersion[256];
    uint32_t dot11manufacturerProductVersionLen;
};

static_assert(sizeof(ResourceInfoRow) == 796);
static_assert(offsetof(ResourceInfoRow, dot11manufacturerOUI) == 4);
static_assert(offsetof(ResourceInfoRow, dot11manufacturerOUILen) == 12);
static_assert(offsetof(ResourceInfoRow, dot11manufacturerName) == 16);
static_assert(offsetof(ResourceInfoRow, dot11manufacturerProductName) == 276);
static_assert(offsetof(ResourceInfoRow, dot11manufacturerProductVersion) == 536);
static_assert(offsetof(ResourceInfoRow, dot11manufacturerProductVersionLen) == 792);

struct ResourceInfoScratch {
    ScratchText radio, bss, oui, name, product_name, product_version;
};

#pragma GCC visibility push(default)
extern "C" {

extern ResourceInfoRow rinfo[max_interfaces];
extern ResourceInfoScratch res_info;

int GetResourceInfoEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetResourceInfoTableIndexCount(void);  // rows found by the latest enumeration
int GetResourceInfoTableData(void);             // fills the rows; 1
int GetResourceInfoEntryByIndex(uint32_t row, void* destination);  // copies one ResourceInfoRow; see copy_row
}
#pragma GCC visibility pop

}  // namespace dot11
