// dot11PhyERPTable (1.2.840.10036.4.14): no row stands behind it, and a walk finds none. A SET is accepted and stored
// nowhere.
#pragma once

#include <cstddef>
#include <cstdint>

#include "access/column.h"

// A row lives as long as the SET that makes it. All are TruthValues (RFC 2579).
struct ErpRow {
    int32_t dot11ERPPBCCOptionImplemented;
    int32_t dot11ERPBCCOptionEnabled;
    int32_t dot11DSSSOFDMOptionImplemented;
    int32_t dot11DSSSOFDMOptionEnabled;
    int32_t dot11ShortSlotTimeOptionImplemented;
    int32_t dot11ShortSlotTimeOptionEnabled;
};

static_assert(sizeof(ErpRow) == 24);
static_assert(offsetof(ErpRow, dot11ERPBCCOptionEnabled) == 4);
static_assert(offsetof(ErpRow, dot11ShortSlotTimeOptionEnabled) == 20);

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11PhyERPTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11PhyERPTable_get_next_data_point;
CreateRow dot11PhyERPTable_create_data_context;
CommitRow dot11PhyERPTable_commit_row;

GetColumn get_dot11ERPPBCCOptionImplemented;
GetColumn get_dot11ERPBCCOptionEnabled;
GetColumn get_dot11DSSSOFDMOptionImplemented;
GetColumn get_dot11DSSSOFDMOptionEnabled;
GetColumn get_dot11ShortSlotTimeOptionImplemented;
GetColumn get_dot11ShortSlotTimeOptionEnabled;

SetColumn set_dot11ERPBCCOptionEnabled;
SetColumn set_dot11DSSSOFDMOptionEnabled;
SetColumn set_dot11ShortSlotTimeOptionImplemented;
SetColumn set_dot11ShortSlotTimeOptionEnabled;
}
#pragma GCC visibility pop
