#include "cache.h"

#include <stdio.h>
#include <time.h>

#include <algorithm>

#include "log.h"

namespace cfql {
namespace {

constexpr int64_t load_share = 5;  // loading takes at most one part in so many of the time

// In microseconds.
constexpr int64_t ms = 1000;
constexpr int64_t check_interval = 50 * ms;
constexpr int64_t shortest_pause = 1000 * ms;  // longer than a request takes, however many calls it makes
constexpr int64_t longest_pause = 10000 * ms;
constexpr int64_t credit = shortest_pause + 50 * ms;  // the 50 ms are more than the coarse clock is late
constexpr int64_t busy_limit = 10000 * ms;            // after that, a reader waits for the lock
constexpr int64_t log_interval = 60000 * ms;

int64_t microseconds(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return int64_t{now.tv_sec} * 1000 * ms + now.tv_nsec / 1000;
}

}  // namespace

// Every read needs the time, so the cheap coarse clock is used. It is a few milliseconds late, which does not matter.
void Cache::refresh(bool at_once) {
    now_ = microseconds(CLOCK_MONOTONIC_COARSE);
    if (now_ < next_check_ && !at_once) return;
    next_check_ = now_ + check_interval;
    const Watch::Finding found = watch_.check(store_path());
    if (found == Watch::Finding::absent) forget();
    if (found == Watch::Finding::changed && now_ + credit_ >= next_load_) load();
}

// One change is often followed by another, so a second load may follow at once, on credit. Pauses add up: a third has
// to wait.
void Cache::load() {
    const int64_t begin = microseconds(CLOCK_MONOTONIC);
    const Status status = load_contents();
    const bool good = status == Status::ok;
    const int64_t retry = good ? 0 : failed(status);
    const int64_t took = microseconds(CLOCK_MONOTONIC) - begin;
    const int64_t left = std::max(next_load_ - now_, int64_t{0});
    now_ += took;
    const int64_t pause = std::max((load_share - 1) * took, good ? shortest_pause : 0);
    credit_ = good ? credit : 0;
    next_load_ = now_ + std::min(std::max(left + pause, retry), longest_pause + credit_);
    next_check_ = std::max(next_load_ - credit_, now_ + check_interval);
}

Status Cache::load_contents() {
    Database store;
    Snapshot next;
    Status status = read_contents(store, next);
    if (status != Status::ok && store.worth_another_try()) status = read_contents(store, next);
    if (status != Status::ok) return status;
    contents_.swap(next);
    watch_.loaded(store.change_counter());
    loaded_ = true;
    suspect_ = false;
    has_written_ = false;
    busy_since_ = 0;
    return status;
}

// Examines the trees if the change counter cannot be trusted to show every change.
Status Cache::read_contents(Database& store, Snapshot& next) {
    Status status = store.open_for_load(store_path(), patience());
    if (status != Status::ok) return status;
    const bool unexplained = watch_.has_moved() && store.change_counter() == watch_.counter();
    if (suspect_ || unexplained || watch_.is_other_file()) status = store.examine_structure();
    if (status == Status::ok) status = next.load(store);
    store.close();
    return status;
}

// How long a load may wait for the lock, in ms. A process with contents answers from them instead, unless they are old
// or lack a write of its own.
int Cache::patience() const {
    const bool waits = !loaded_ || has_written_ || (busy_since_ != 0 && now_ - busy_since_ >= busy_limit);
    return waits ? reader_wait_ms : 0;
}

void Cache::expire() {
    has_written_ = true;
    next_check_ = next_load_ = 0;
}

void Cache::forget() {
    drop();
    suspect_ = false;
    busy_since_ = 0;
}

void Cache::drop() {
    contents_.clear();
    watch_.forget();
    loaded_ = false;
}

// Returns how long to leave the store alone. If the file was replaced, the contents are dropped; if it merely became
// unreadable, or is locked, they are kept.
int64_t Cache::failed(Status status) {
    if (status == Status::busy && patience() == 0) {
        if (busy_since_ == 0) busy_since_ = now_;
        return check_interval;
    }
    busy_since_ = status == Status::busy ? now_ : 0;
    suspect_ = suspect_ || status != Status::busy;
    if (status != Status::busy && watch_.is_other_file()) drop();
    report(status);
    return shortest_pause;
}

void Cache::report(Status status) {
    if (now_ < next_line_) return;
    next_line_ = now_ + log_interval;
    char line[800];
    snprintf(line, sizeof line, "%s: %s%s", store_path(), describe(status),
             loaded_ ? "; the last good contents stay in use" : "");
    log_error(line);
}

}  // namespace cfql
