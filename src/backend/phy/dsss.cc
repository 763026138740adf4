#include "backend/phy/dsss.h"

#include <net/if.h>

#include <stdio.h>
#include <stdlib.h>
#include <algorithm>

#include "backend/lookup.h"
#include "backend/phy/driver_file.h"
#include "backend/rows.h"

namespace dot11 {

DsssRow pdsssinfo[max_interfaces];
DsssScratch phy_dsss_info;

namespace {

int32_t interface_count;

// Like atoi with a 32-bit long: numbers out of range become the nearest limit.
int32_t parse_leading_number(const char* text) {
    return static_cast<int32_t>(std::clamp<long long>(strtoll(text, nullptr, 10), INT32_MIN, INT32_MAX));
}

// Quirk: the driver's files are numbered by the position of the row, whatever the interface's name and index.
int32_t read_ed_threshold(uint32_t position) {
    constexpr size_t value_size = 16;
    ScratchText& value = phy_dsss_info.ca_threshold;
    release(value);
    value.text = static_cast<char*>(calloc(value_size + 1, 1));
    if (!value.text) return 0;
    char path[128];
    snprintf(path, sizeof path, "/proc/net/mura/wlan%d.11/info", static_cast<int>(position));
    int32_t threshold = 0;
    if (read_driver_value(path, "caThreshold", value_size, value.text) == 0) {
        value.length = sizeof threshold;
        threshold = parse_leading_number(value.text);
    }
    release(value);
    return threshold;
}

// The store's answer is released only after the driver's file has been read.
void fill_row(DsssRow& row, const char* interface, uint32_t position) {
    row.ifIndex = if_nametoindex(interface);
    const Answer answer(key::channel, interface);
    row.dot11CurrentChannel = read_number(answer.list(), key::channel, phy_dsss_info.channel, parse_number, 6);
    row.dot11EDThreshold = read_ed_threshold(position);
}

}  // namespace

int GetPhyDsssEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetPhyDsssTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetPhyDsssTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        fill_row(pdsssinfo[i], iface_tags[i], i);
    return 1;
}

int GetPhyDsssEntryByIndex(uint32_t row, void* destination) {
    return copy_row(pdsssinfo, row, destination);
}

}  // namespace dot11
