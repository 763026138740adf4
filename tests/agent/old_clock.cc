// Preloaded before the C library: a clock that has never been set.
#include <time.h>

extern "C" time_t time(time_t* result) {
    constexpr time_t now = 7;
    if (result) *result = now;
    return now;
}
