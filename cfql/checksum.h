// Checksums of objects and attributes.
#pragma once

#include <stdint.h>

#include "store_limits.h"

namespace cfql {

// CRC-32 (IEEE 802.3) over an object's id (8 octets, most significant first) and texts, each followed by a NUL: table
// and name for the object itself; table, name, key and value for an attribute. The common beginning is computed only
// once.
class Checksum {
  public:
    constexpr Checksum() = default;
    Checksum(int64_t id, Text table, Text object);

    uint32_t of_object() const { return ~state_; }
    uint32_t of_attribute(Text key, Text value) const;

  private:
    uint32_t state_ = 0;
};

}  // namespace cfql
