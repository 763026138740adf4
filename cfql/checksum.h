// The checksums of what the store holds.
#pragma once

#include <stdint.h>

#include "store_limits.h"

namespace cfql {

// CRC-32 (IEEE 802.3) over an object's id (8 octets, most significant first) and texts, each followed by a NUL: its own
// checksum is over its table and name; an attribute's over table, name, key and value. Those of one object begin alike,
// so that is computed once.
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
