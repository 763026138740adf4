// dot11PhyHRDSSSTable (1.2.840.10036.4.12): it has no rows.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace dot11 {

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

}  // namespace dot11
