// The checksums of what the store holds.
#pragma once

#include <stdint.h>

#include "store_limits.h"

namespace cfql {

// CRC-32 (IEEE 802.3) over the object's id (8 octets, most significant first) and the given texts, each followed by a
// NUL. An object's own checksum is over its table and name; an attribute's over table, name, key and value.
uint32_t checksum_of_object(int64_t id, Text table, Text object);
uint32_t checksum_of_attribute(int64_t id, Text table, Text object, Text key, Text value);

}  // namespace cfql
