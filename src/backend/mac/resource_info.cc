#include "backend/mac/resource_info.h"

#include <net/if.h>

#include <string.h>

#include "backend/lookup.h"
#include "backend/radio.h"
#include "backend/rows.h"

namespace dot11 {

ResourceInfoRow rinfo[max_interfaces];
ResourceInfoScratch res_info;

namespace {

using Row = ResourceInfoRow;

int32_t interface_count;

// clang-format off
constexpr RadioText<Row, sizeof Row::dot11manufacturerName> names[] = {
    {key::manufacturer_name, &res_info.name, &Row::dot11manufacturerName, &Row::dot11manufacturerNameLen},
    {key::manufacturer_product_name, &res_info.product_name, &Row::dot11manufacturerProductName, &Row::dot11manufacturerProductNameLen},
    {key::manufacturer_product_version, &res_info.product_version, &Row::dot11manufacturerProductVersion, &Row::dot11manufacturerProductVersionLen},
};
// clang-format on

void read_oui(Row& row, const cfqlquery_node* bss_answer) {
    memcpy(row.dot11manufacturerOUI, "XYZ", 3);
    row.dot11manufacturerOUILen = 3;
    if (find_radio(bss_answer, res_info.bss, res_info.radio) &&
        find_value_of_radio(res_info.radio, key::manufacturer_oui, res_info.oui))
        row.dot11manufacturerOUILen =
            move_octets(res_info.oui, row.dot11manufacturerOUI, sizeof row.dot11manufacturerOUI);
}

// One answer for "bss" serves all four; each follows the links again.
void fill_row(Row& row, const char* interface) {
    row.ifIndex = if_nametoindex(interface);
    const Answer bss_answer(key::bss, interface);
    read_oui(row, bss_answer.list());
    for (const auto& name : names)
        read_radio_text(row, bss_answer.list(), res_info.bss, res_info.radio, name);
}

}  // namespace

int GetResourceInfoEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetResourceInfoTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetResourceInfoTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        fill_row(rinfo[i], iface_tags[i]);
    return 1;
}

int GetResourceInfoEntryByIndex(uint32_t row, void* destination) {
    return copy_row(rinfo, row, destination);
}

}  // namespace dot11
