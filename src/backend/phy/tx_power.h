// dot11PhyTxPowerTable: one row for each wireless interface.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey num_supported_pow_level = {"interface", "num_supported_pow_level"};
inline constexpr StoreKey tx_power = {"interface", "tx-power"};
inline constexpr StoreKey curr_tx_power_level = {"interface", "curr_tx_power_level"};
}  // namespace key

// Power levels are as stored: whoever fills the store decides their unit.
struct TxPowerRow {
    uint32_t ifIndex;
    int32_t dot11NumberSupportedPowerLevels;
    int32_t dot11TxPowerLevel1;
    int32_t dot11TxPowerLevel2;
    int32_t dot11TxPowerLevel3;
    int32_t dot11TxPowerLevel4;
    int32_t dot11TxPowerLevel5;
    int32_t dot11TxPowerLevel6;
    int32_t dot11TxPowerLevel7;
    int32_t dot11TxPowerLevel8;
    int32_t dot11CurrentTxPowerLevel;
};

static_assert(sizeof(TxPowerRow) == 44);
static_assert(offsetof(TxPowerRow, dot11TxPowerLevel1) == 8);
static_assert(offsetof(TxPowerRow, dot11TxPowerLevel8) == 36);
static_assert(offsetof(TxPowerRow, dot11CurrentTxPowerLevel) == 40);

struct TxPowerScratch {
    ScratchText number_supported_levels, levels[8], current_level;
};

#pragma GCC visibility push(default)
extern "C" {

extern TxPowerRow ptinfo[max_interfaces];
extern TxPowerScratch phy_pow_info;

int GetPhyTxPowerEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetPhyTxPowerTableIndexCount(void);  // rows found by the latest enumeration
int GetPhyTxPowerTableData(void);             // fills the rows; always 1
int GetPhyTxPowerEntryByIndex(uint32_t row, void* destination);  // copies one TxPowerRow; see copy_row

// Writes the current power level of the interface whose index `index` points to, for callers other than SNMP. Any value
// is written. Returns setTableData's result, 0 when out of memory. `length` is ignored.
int32_t SetCurrentPowerLevel(const uint32_t* index, const uint32_t* value, uint32_t length);
}
#pragma GCC visibility pop

}  // namespace dot11
