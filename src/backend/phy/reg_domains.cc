#include "backend/phy/reg_domains.h"

#include <net/if.h>

#include "backend/lookup.h"
#include "backend/phy/phy_operation.h"
#include "backend/rows.h"

namespace dot11 {

RegDomainsRow rdinfo[max_interfaces];
RegDomainsScratch reg_info;

namespace {

using Row = RegDomainsRow;

int32_t interface_count;

constexpr InterfaceKey<Row> current_reg_domain = {key::current_reg_domain, &reg_info.current_reg_domain,
                                                  &Row::dot11RegDomainsSupportValue, parse_non_negative, 16};

void fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    row.dot11RegDomainsSupportIndex = 1;
    read_interface_key(row, interface, current_reg_domain);
}

}  // namespace

int GetRegDomainSupportedEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetRegDomainsSupportedTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetRegDomainSupportedTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        fill_row(rdinfo[i], iface_tags[i]);
    return 1;
}

int GetRegDomainSupportedEntryByIndex(uint32_t row, void* destination) {
    return copy_row(rdinfo, row, destination);
}

}  // namespace dot11
