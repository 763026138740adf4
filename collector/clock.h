// A clock that nobody sets.
#pragma once

#include <time.h>

#include <stdint.h>

namespace collector {

// Milliseconds since boot, suspended time included.
inline int64_t now_ms() {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

}  // namespace collector
