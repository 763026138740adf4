// dot11WEPKeyMappingsTable (1.2.840.10036.1.4): it has no rows. A SET is accepted, and its value is discarded.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace dot11 {

// A row lives as long as the SET that creates it.
struct WEPKeyMappingsRow {
    uint32_t ifIndex;  // room for the index values, never set
    uint32_t dot11WEPKeyMappingIndex;
    uint8_t dot11WEPKeyMappingAddress[8];  // 6 used
    int32_t dot11WEPKeyMappingWEPOn;       // TruthValue (RFC 2579)
    uint8_t dot11WEPKeyMappingValue[8];    // 5 used
    int32_t dot11WEPKeyMappingStatus;      // RowStatus (RFC 2579)
};

static_assert(sizeof(WEPKeyMappingsRow) == 32);
static_assert(offsetof(WEPKeyMappingsRow, dot11WEPKeyMappingAddress) == 8);
static_assert(offsetof(WEPKeyMappingsRow, dot11WEPKeyMappingWEPOn) == 16);
static_assert(offsetof(WEPKeyMappingsRow, dot11WEPKeyMappingValue) == 20);
static_assert(offsetof(WEPKeyMappingsRow, dot11WEPKeyMappingStatus) == 28);

}  // namespace dot11
