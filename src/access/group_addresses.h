// dot11GroupAddressesTable (1.2.840.10036.2.3): it has no rows. A SET is accepted, and its value is discarded.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace dot11 {

// A row lives as long as the SET that creates it.
struct GroupAddressesRow {
    uint32_t ifIndex;                   // never set
    uint8_t dot11Address[8];            // 6 used
    int32_t dot11GroupAddressesStatus;  // RowStatus (RFC 2579)
};

static_assert(sizeof(GroupAddressesRow) == 16);
static_assert(offsetof(GroupAddressesRow, dot11Address) == 4);
static_assert(offsetof(GroupAddressesRow, dot11GroupAddressesStatus) == 12);

}  // namespace dot11
