// dot11GroupAddressesTable (1.2.840.10036.2.3): no row stands behind it, and a walk finds none. A SET is accepted and
// stored nowhere.
#pragma once

#include <cstddef>
#include <cstdint>

#include "access/column.h"

// A row lives as long as the SET that makes it.
struct GroupAddressesRow {
    uint32_t ifIndex;                   // never set
    uint8_t dot11Address[8];            // 6 used
    int32_t dot11GroupAddressesStatus;  // RowStatus (RFC 2579)
};

static_assert(sizeof(GroupAddressesRow) == 16);
static_assert(offsetof(GroupAddressesRow, dot11Address) == 4);
static_assert(offsetof(GroupAddressesRow, dot11GroupAddressesStatus) == 12);

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11GroupAddressesTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11GroupAddressesTable_get_next_data_point;
CreateRow dot11GroupAddressesTable_create_data_context;
CommitRow dot11GroupAddressesTable_commit_row;

GetColumn get_dot11Address;
GetColumn get_dot11GroupAddressesStatus;

SetColumn set_dot11Address;
SetColumn set_dot11GroupAddressesStatus;
}
#pragma GCC visibility pop
