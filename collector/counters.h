// Sums of the stations' counters over the life of an interface. They never fall and count nothing twice, although a
// station that leaves takes its counters along, and the kernel announces departures later than it lists those present.
#pragma once

#include <map>
#include <span>

#include "observed.h"

namespace collector {

// The sums of one interface. Pure: nothing here asks the kernel.
class Accumulator {
  public:
    // Starts at zero and counts stations from their first frame: for an interface or an access point that appeared
    // while the collector was running.
    Accumulator() = default;

    // Continues from `totals`. What the stations present have counted before the first update() is left out: it is in
    // `totals` already, or was counted while no collector ran.
    explicit Accumulator(const Totals& totals);

    // Adds the counters of the stations `present` and of those that `departed` since the last update. The kernel's
    // generations tell which departures came after the list was made. `count_acks`: no RTS is sent, so every missing
    // answer is a missing acknowledgement.
    void update(const Stations& present, std::span<const Departed> departed, bool count_acks);

    const Totals& totals() const { return totals_; }
    size_t stations() const { return known_.size(); }

  private:
    bool is_stale(const Departed& departed) const;
    void leave(const Departed& departed);
    bool is_before(const Departed& departed, const Stations& present) const;
    void add_present(const Stations& present);
    void add(const Sample* before, const Sample& now);

    Totals totals_;
    uint64_t sent_ = 0;  // transmitted and failed
    std::map<Mac, Sample> known_;
    std::optional<uint32_t> generation_;  // of the last list
    bool baseline_ = false;               // the next update only records where the stations stand
    bool count_acks_ = false;
};

// `total` as the store holds it: modulo 2^31, because the agent reads signed 32-bit numbers.
inline uint32_t counter_value(uint64_t total) {
    return static_cast<uint32_t>(total & 0x7fffffff);
}

}  // namespace collector
