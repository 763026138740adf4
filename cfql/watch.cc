#include "watch.h"

#include <errno.h>
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "format.h"

namespace cfql {
namespace {

constexpr int64_t second = 1000000000;
constexpr int64_t settling = 3 * second;  // time stamps have steps of up to 2 s, and may be a tick late

int64_t time_of(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return int64_t{now.tv_sec} * second + now.tv_nsec;
}

// False if it cannot be read.
bool read_counter(const char* path, uint32_t& counter) {
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (file < 0) return false;
    unsigned char octets[4];
    const bool whole = pread(file, octets, sizeof octets, counter_offset) == sizeof octets;
    close(file);
    counter = number_at(octets, sizeof octets);
    return whole;
}

}  // namespace

Watch::Finding Watch::check(const char* path) {
    const int64_t wall = time_of(CLOCK_REALTIME_COARSE);
    struct stat file = {};
    if (stat(path, &file) != 0) return errno == ENOENT || errno == ENOTDIR ? Finding::absent : Finding::changed;
    now_ = state_of(file);
    may_settle_ = wall - std::max(now_.modified, now_.changed) >= settling;
    const bool settled = !clock_stepped_back(wall) && settled_;
    settled_ = settled;
    if (has_moved()) return Finding::changed;
    if (settled) return Finding::same;
    uint32_t counter = 0;
    if (!S_ISREG(file.st_mode) || !read_counter(path, counter) || counter != counter_) return Finding::changed;
    return may_settle_ ? Finding::changed : Finding::same;
}

// After a step back, a later change may get an earlier stamp again. Less than a second cannot hurt a settled load.
bool Watch::clock_stepped_back(int64_t wall) {
    const int64_t advance = wall - time_of(CLOCK_MONOTONIC_COARSE);
    const bool stepped = advance < advance_ - second;
    advance_ = advance;
    return stepped;
}

void Watch::loaded(uint32_t counter) {
    seen_ = now_;
    counter_ = counter;
    settled_ = may_settle_;
    known_ = true;
}

}  // namespace cfql
