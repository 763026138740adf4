// Time that no clock setting changes.
#ifndef COLLECTOR_CLOCK_H
#define COLLECTOR_CLOCK_H

#include <ctime>

#include <cstdint>

namespace collector {

// Milliseconds since some moment, suspended time included.
inline std::int64_t now_ms() {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

}  // namespace collector

#endif
