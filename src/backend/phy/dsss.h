// dot11PhyDSSSTable: one row for each wireless interface.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
// Quirk: read from the radio that has the interface's own name.
inline constexpr StoreKey channel = {"radio", "channel"};
}  // namespace key

struct DsssRow {
    uint32_t ifIndex;
    int32_t dot11CurrentChannel;
    int32_t dot11CCAModeSupported;  // never written: the column answers a constant
    int32_t dot11CurrentCCAMode;    // never written, and served as 0
    int32_t dot11EDThreshold;       // from the driver, in dBm; 0 if it gives none
};

static_assert(sizeof(DsssRow) == 20);
static_assert(offsetof(DsssRow, dot11CurrentChannel) == 4);
static_assert(offsetof(DsssRow, dot11CCAModeSupported) == 8);
static_assert(offsetof(DsssRow, dot11CurrentCCAMode) == 12);
static_assert(offsetof(DsssRow, dot11EDThreshold) == 16);

struct DsssScratch {
    ScratchText channel;
    ScratchText unused[2];
    ScratchText ca_threshold;
};

#pragma GCC visibility push(default)
extern "C" {

extern DsssRow pdsssinfo[max_interfaces];
extern DsssScratch phy_dsss_info;

int GetPhyDsssEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetPhyDsssTableIndexCount(void);  // rows found by the latest enumeration
int GetPhyDsssTableData(void);             // fills the rows; always 1
int GetPhyDsssEntryByIndex(uint32_t row, void* destination);  // copies one DsssRow; see copy_row
}
#pragma GCC visibility pop

}  // namespace dot11
