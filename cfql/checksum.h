// The checksums of what the store holds.
#ifndef CFQL_CHECKSUM_H
#define CFQL_CHECKSUM_H

#include <cstdint>

#include "store_limits.h"

namespace cfql {

// CRC-32 (IEEE 802.3) over the object's id (8 octets, most significant first) and the given texts, each followed by a
// NUL. An object's own checksum is over its table and name; an attribute's over table, name, key and value.
std::uint32_t checksum_of_object(std::int64_t id, Text table, Text object);
std::uint32_t checksum_of_attribute(std::int64_t id, Text table, Text object, Text key, Text value);

}  // namespace cfql

#endif
