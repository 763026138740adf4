// dot11PhyTxPowerTable (1.2.840.10036.4.3).
#include "backend/phy/tx_power.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = TxPowerRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11NumberSupportedPowerLevels(void* row, size_t* length) { return word_in_place<&Row::dot11NumberSupportedPowerLevels>(row, length); }
void* get_dot11TxPowerLevel1(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel1>(row, length); }
void* get_dot11TxPowerLevel2(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel2>(row, length); }
void* get_dot11TxPowerLevel3(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel3>(row, length); }
void* get_dot11TxPowerLevel4(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel4>(row, length); }
void* get_dot11TxPowerLevel5(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel5>(row, length); }
void* get_dot11TxPowerLevel6(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel6>(row, length); }
void* get_dot11TxPowerLevel7(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel7>(row, length); }
void* get_dot11TxPowerLevel8(void* row, size_t* length) { return word_in_place<&Row::dot11TxPowerLevel8>(row, length); }
void* get_dot11CurrentTxPowerLevel(void* row, size_t* length) { return word_in_place<&Row::dot11CurrentTxPowerLevel>(row, length); }

int set_dot11CurrentTxPowerLevel(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    COMPLETE_ONLY(1, dot11NumberSupportedPowerLevels, integer, key::num_supported_pow_level),
    COMPLETE_ONLY(2, dot11TxPowerLevel1, integer, key::tx_power),
    COMPLETE_ONLY(3, dot11TxPowerLevel2, integer, key::tx_power),
    COMPLETE_ONLY(4, dot11TxPowerLevel3, integer, key::tx_power),
    COMPLETE_ONLY(5, dot11TxPowerLevel4, integer, key::tx_power),
    COMPLETE_ONLY(6, dot11TxPowerLevel5, integer, key::tx_power),
    COMPLETE_ONLY(7, dot11TxPowerLevel6, integer, key::tx_power),
    COMPLETE_ONLY(8, dot11TxPowerLevel7, integer, key::tx_power),
    COMPLETE_ONLY(9, dot11TxPowerLevel8, integer, key::tx_power),
    COMPLETE_ONLY_WRITE(10, dot11CurrentTxPowerLevel, integer, key::curr_tx_power_level),
};
// clang-format on

constexpr Table dot11PhyTxPowerTable = {
    .name = "dot11PhyTxPowerTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetPhyTxPowerEntries,
    .table_data = GetPhyTxPowerTableData,
    .index_count = GetPhyTxPowerTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetPhyTxPowerEntryByIndex,
};

}  // namespace dot11
