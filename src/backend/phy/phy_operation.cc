#include "backend/phy/phy_operation.h"

#include <net/if.h>

#include "backend/lookup.h"
#include "backend/rows.h"
#include "store/write.h"
#include "util/convert.h"

namespace dot11 {

PhyOperationRow poinfo[max_interfaces];
PhyOperationScratch phy_oper_info;

namespace {

using Row = PhyOperationRow;

int32_t interface_count;

// Quirk: every other number, including the higher codes of the MIB, becomes 1.
int32_t parse_phy_type(char* text) {
    const int32_t value = AlphabeticToNumeric(text);
    return value >= 0 && value < 4 ? value : 1;
}

// clang-format off
constexpr InterfaceKey<Row> keys[] = {
    {key::current_reg_domain, &phy_oper_info.current_reg_domain, &Row::dot11CurrentRegDomain, parse_non_negative, 0},
    {key::temp_type, &phy_oper_info.temp_type, &Row::dot11TempType, parse_non_negative, 1},
    {key::phy_type, &phy_oper_info.phy_type, &Row::dot11PHYType, parse_phy_type, 1},
};
// clang-format on

}  // namespace

int GetPhyOperationsEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetPhyOperationTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetPhyOperationsTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i) {
        poinfo[i].ifIndex = if_nametoindex(iface_tags[i]);
        read_interface_keys(poinfo[i], iface_tags[i], keys);
    }
    return 1;
}

int GetPhyOperationsEntryByIndex(uint32_t row, void* destination) {
    return copy_row(poinfo, row, destination);
}

int32_t SetCurrentRegDomain(const uint32_t* index, const uint32_t* value, uint32_t) {
    return write_interface_number(*index, key::current_reg_domain, *value, 0);
}

}  // namespace dot11
