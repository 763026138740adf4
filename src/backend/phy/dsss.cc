#include "backend/phy/dsss.h"

#include <net/if.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "backend/keys.h"
#include "backend/phy/driver_file.h"

DsssRow pdsssinfo[max_interfaces];
DsssScratch phy_dsss_info;

namespace {

int32_t counter;

// The interface's own name is taken as the radio's: meant, and kept.
int32_t read_channel(const char* interface) {
    const Answer answer("radio", interface, "channel");
    return converted(answer.list(), "channel", phy_dsss_info.channel, number, 6);
}

// As atoi reads it where a long has 32 bits: numbers that are too great end at the limits.
int32_t leading_number(const char* text) {
    return static_cast<int32_t>(std::clamp<long long>(strtoll(text, nullptr, 10), INT32_MIN, INT32_MAX));
}

// The driver numbers its files by the position of the row, whatever the interface's name and index: meant, and kept.
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
        threshold = leading_number(value.text);
    }
    release(value);
    return threshold;
}

}  // namespace

int GetPhyDsssEntries(void) {
    return enumerate_interfaces(counter);
}

uint32_t GetPhyDsssTableIndexCount(void) {
    return static_cast<uint32_t>(counter);
}

int GetPhyDsssTableData(void) {
    for (uint32_t i = 0; i < names_to_fill(counter); ++i) {
        pdsssinfo[i].ifIndex = if_nametoindex(iface_tags[i]);
        pdsssinfo[i].dot11CurrentChannel = read_channel(iface_tags[i]);
        pdsssinfo[i].dot11EDThreshold = read_ed_threshold(i);
    }
    return 1;
}

int GetPhyDsssEntryByIndex(uint32_t row, void* destination) {
    return copy_row(pdsssinfo, row, destination);
}
