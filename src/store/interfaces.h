// The wireless interfaces that the configuration store lists and that exist in the running system.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <algorithm>

#include "cfqlquery.h"

namespace dot11 {

constexpr uint32_t max_interfaces = 128;
constexpr size_t iface_tag_size = 128;
constexpr size_t longest_interface_name = 5;  // characters; interfaces of longer names are not served

#pragma GCC visibility push(default)
extern "C" {

// The names, NUL-terminated, of the interfaces that the latest entries routine of any table found. Row i of a table
// belongs to slot i. Valid only between a table's own entries routine and the end of its fill, because all tables write
// to the same slots. There is one slot more than a table serves, because the 129th name is stored before the
// enumeration is refused.
extern char iface_tags[max_interfaces + 1][iface_tag_size];

// Appends to iface_tags, at slot `*count` and up, the values of all "name" nodes that have at most 5 characters and
// are interfaces of the running system, in the order of the list, while the count is below 129. `table` is ignored.
// Returns the null pointer at which the list ends.
const cfqlquery_node* lcl_get_tags_pv(const cfqlquery_node* list, const char* table, int32_t* count);
}
#pragma GCC visibility pop

// Enumerates the wireless interfaces ("interface" objects with "type" = "service-set") into iface_tags and counts them.
// Returns 1 if there are 1 to 128 of them, otherwise 0.
int enumerate_interfaces(int32_t& count);

// How many names a fill may take: a refused enumeration leaves a count of 129.
constexpr uint32_t names_to_fill(int32_t count) {
    return std::min(static_cast<uint32_t>(count), max_interfaces);
}

}  // namespace dot11
