#include "counters.h"

#include <algorithm>

namespace collector {

namespace {

// Steps of a 32-bit counter, which may have wrapped.
uint32_t steps(uint32_t before, uint32_t now) {
    return now - before;
}

// Nobody sends 2^31 frames between two passes.
bool fell(uint32_t before, uint32_t now) {
    return steps(before, now) > 0x7fffffff;
}

// A counter fell: the station left unnoticed and has come back.
bool is_another(const Sample& before, const Sample& now) {
    return fell(before.received, now.received) || fell(before.sent, now.sent) || fell(before.failed, now.failed) ||
           fell(before.retries, now.retries);
}

bool is_after(uint32_t generation, uint32_t other) {
    return generation != other && !fell(other, generation);
}

// The list `present` was made before this departure.
bool is_behind(const Departed& departed, const Stations& present) {
    return departed.generation != 0 && present.generation != 0 && is_after(departed.generation, present.generation);
}

}  // namespace

Accumulator::Accumulator(const Totals& totals)
    : totals_(totals), sent_(totals.transmitted + totals.failed), baseline_(true) {}

void Accumulator::add(const Sample* before, const Sample& now) {
    static constexpr Sample none;
    if (!before || is_another(*before, now)) before = &none;
    const uint32_t failed = steps(before->failed, now.failed);
    sent_ += steps(before->sent, now.sent);
    totals_.failed += failed;
    totals_.received += steps(before->received, now.received);
    // A frame in flight counts as sent and may fail later, so the difference of the two can step back by one.
    if (sent_ > totals_.failed) totals_.transmitted = std::max(totals_.transmitted, sent_ - totals_.failed);
    if (count_acks_) {
        totals_.unacknowledged = totals_.unacknowledged.value_or(0) + failed + steps(before->retries, now.retries);
    }
    if (now.bad_checksums) {
        const uint32_t last = before->bad_checksums.value_or(0);
        const uint32_t more = fell(last, *now.bad_checksums) ? 0 : steps(last, *now.bad_checksums);
        totals_.bad_checksums = totals_.bad_checksums.value_or(0) + more;
    }
}

// An earlier list was made after this departure, whose counters are thus in the sums already.
bool Accumulator::is_stale(const Departed& departed) const {
    return generation_ && !is_after(departed.generation, *generation_);
}

void Accumulator::leave(const Departed& departed) {
    const auto known = known_.find(departed.mac);
    const Sample* before = known == known_.end() ? nullptr : &known->second;
    if (departed.last && (before || !baseline_)) add(before, *departed.last);
    if (known != known_.end()) known_.erase(known);
}

void Accumulator::add_present(const Stations& present) {
    std::map<Mac, Sample> now;
    for (const Station& station : present.stations) {
        const auto known = known_.find(station.mac);
        const Sample* before = known == known_.end() ? nullptr : &known->second;
        if (now.contains(station.mac)) continue;
        if (before || !baseline_) add(before, station.sample);
        now.emplace(station.mac, station.sample);
    }
    known_ = std::move(now);
}

// Whether `departed` left before the list `present` was made. If the driver counts no generations, nobody knows when a
// listed station left: then the list is right, and what it does not show is dropped.
bool Accumulator::is_before(const Departed& departed, const Stations& present) const {
    if (departed.generation == 0 || (present.generation == 0 && !present.stations.empty())) {
        const auto same = [&](const Station& station) { return station.mac == departed.mac; };
        return known_.contains(departed.mac) && std::ranges::none_of(present.stations, same);
    }
    if (is_stale(departed)) return false;
    return present.stations.empty() || !is_after(departed.generation, present.generation);
}

void Accumulator::update(const Stations& present, std::span<const Departed> departed, bool count_acks) {
    count_acks_ = count_acks;
    if (count_acks && !totals_.unacknowledged) totals_.unacknowledged = 0;
    for (const Departed& station : departed) {
        if (is_before(station, present)) leave(station);
    }
    add_present(present);
    baseline_ = false;
    for (const Departed& station : departed) {
        if (is_behind(station, present)) leave(station);
    }
    if (present.generation != 0) generation_ = present.generation;
}

}  // namespace collector
