// dot11PhyERPTable (1.2.840.10036.4.14): it has no rows. A SET is accepted, and its value is discarded.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace dot11 {

// A row lives as long as the SET that creates it. All columns are TruthValues (RFC 2579).
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

}  // namespace dot11
