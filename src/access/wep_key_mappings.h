// dot11WEPKeyMappingsTable (1.2.840.10036.1.4): no row stands behind it, and a walk finds none. A SET is accepted and
// stored nowhere.
#pragma once

#include <cstddef>
#include <cstdint>

#include "access/column.h"

// A row lives as long as the SET that makes it.
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

#pragma GCC visibility push(default)
extern "C" {

// Rows made so far for SETs of rows that the table does not hold, which is every row. Nothing reads it back.
extern uint32_t dot11WEPKeyMappingIndexMax;

Netsnmp_First_Data_Point dot11WEPKeyMappingsTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11WEPKeyMappingsTable_get_next_data_point;
CreateRow dot11WEPKeyMappingsTable_create_data_context;
CommitRow dot11WEPKeyMappingsTable_commit_row;

GetColumn get_dot11WEPKeyMappingAddress;
GetColumn get_dot11WEPKeyMappingWEPOn;
GetColumn get_dot11WEPKeyMappingValue;
GetColumn get_dot11WEPKeyMappingStatus;

SetColumn set_dot11WEPKeyMappingAddress;
SetColumn set_dot11WEPKeyMappingWEPOn;
SetColumn set_dot11WEPKeyMappingValue;
SetColumn set_dot11WEPKeyMappingStatus;
}
#pragma GCC visibility pop
