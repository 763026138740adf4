#include "backend/phy/tx_power.h"

#include <net/if.h>

#include "backend/lookup.h"
#include "backend/rows.h"
#include "store/write.h"
#include "util/convert.h"

namespace dot11 {

TxPowerRow ptinfo[max_interfaces];
TxPowerScratch phy_pow_info;

namespace {

using Row = TxPowerRow;

int32_t interface_count;

// Quirk: only level 1 turns a negative number into the default instead of 0.
int32_t parse_level_1(char* text) {
    const int32_t value = AlphabeticToNumeric(text);
    return value < 0 ? 100 : value;
}

// Quirk: all levels are read from one key, each with a query of its own.
// clang-format off
constexpr InterfaceKey<Row> keys[] = {
    {key::num_supported_pow_level, &phy_pow_info.number_supported_levels, &Row::dot11NumberSupportedPowerLevels, parse_non_negative, 1},
    {key::tx_power, &phy_pow_info.levels[0], &Row::dot11TxPowerLevel1, parse_level_1, 100},
    {key::tx_power, &phy_pow_info.levels[1], &Row::dot11TxPowerLevel2, parse_non_negative, 100},
    {key::tx_power, &phy_pow_info.levels[2], &Row::dot11TxPowerLevel3, parse_non_negative, 100},
    {key::tx_power, &phy_pow_info.levels[3], &Row::dot11TxPowerLevel4, parse_non_negative, 100},
    {key::tx_power, &phy_pow_info.levels[4], &Row::dot11TxPowerLevel5, parse_non_negative, 100},
    {key::tx_power, &phy_pow_info.levels[5], &Row::dot11TxPowerLevel6, parse_non_negative, 100},
    {key::tx_power, &phy_pow_info.levels[6], &Row::dot11TxPowerLevel7, parse_non_negative, 100},
    {key::tx_power, &phy_pow_info.levels[7], &Row::dot11TxPowerLevel8, parse_non_negative, 100},
    {key::curr_tx_power_level, &phy_pow_info.current_level, &Row::dot11CurrentTxPowerLevel, parse_non_negative, 1},
};
// clang-format on

}  // namespace

int GetPhyTxPowerEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetPhyTxPowerTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetPhyTxPowerTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i) {
        ptinfo[i].ifIndex = if_nametoindex(iface_tags[i]);
        read_interface_keys(ptinfo[i], iface_tags[i], keys);
    }
    return 1;
}

int GetPhyTxPowerEntryByIndex(uint32_t row, void* destination) {
    return copy_row(ptinfo, row, destination);
}

int32_t SetCurrentPowerLevel(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::curr_tx_power_level, *value, 0);
}

}  // namespace dot11
