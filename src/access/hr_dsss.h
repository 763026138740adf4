// dot11PhyHRDSSSTable (1.2.840.10036.4.12): no row stands behind it, and a walk finds none.
#pragma once

#include <cstddef>
#include <cstdint>

#include "access/column.h"

// Never made: no column is answered or written.
struct HrDsssRow {
    int32_t dot11ShortPreambleOptionImplemented;  // TruthValues (RFC 2579)
    int32_t dot11PBCCOptionImplemented;
    int32_t dot11ChannelAgilityPresent;
    int32_t dot11ChannelAgilityEnabled;
    int32_t dot11HRCCAModeSupported;
};

static_assert(sizeof(HrDsssRow) == 20);
static_assert(offsetof(HrDsssRow, dot11HRCCAModeSupported) == 16);

#pragma GCC visibility push(default)
extern "C" {

Netsnmp_First_Data_Point dot11PhyHRDSSSTable_get_first_data_point;
Netsnmp_Next_Data_Point dot11PhyHRDSSSTable_get_next_data_point;
CreateRow dot11PhyHRDSSSTable_create_data_context;
CommitRow dot11PhyHRDSSSTable_commit_row;

GetColumn get_dot11ShortPreambleOptionImplemented;
GetColumn get_dot11PBCCOptionImplemented;
GetColumn get_dot11ChannelAgilityPresent;
GetColumn get_dot11ChannelAgilityEnabled;
GetColumn get_dot11HRCCAModeSupported;
}
#pragma GCC visibility pop
