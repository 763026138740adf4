// Sums of stations' counters over the life of an interface: they never fall and count nothing twice, although stations
// leave with their counters, and what the kernel tells of leaving comes later than what it tells of those present.
#pragma once

#include <map>
#include <span>

#include "observed.h"

namespace collector {

// Of one interface. Pure: nothing here asks anybody.
class Accumulator {
  public:
    // Starts at zero and counts stations from their first frame: for an interface that was made, or an access point
    // that was started, under our eyes.
    Accumulator() = default;

    // Goes on from what is known. What the stations present have counted before the first look is left out: it is in
    // `totals` already, or nobody watched.
    explicit Accumulator(const Totals& totals);

    // Takes `present` in, and those that `departed` since the last look. Departures that the list of those present does
    // not know of yet are ordered by the kernel's generation. `count_acks`: missing acknowledgements are told from
    // missing CTS, as no RTS is sent.
    void look(const Stations& present, std::span<const Departed> departed, bool count_acks);

    const Totals& totals() const { return totals_; }
    size_t stations() const { return known_.size(); }

  private:
    bool is_stale(const Departed& departed) const;
    void leave(const Departed& departed);
    bool is_before(const Departed& departed, const Stations& present) const;
    void take_present(const Stations& present);
    void add(const Sample* before, const Sample& now);

    Totals totals_;
    uint64_t sent_ = 0;  // transmitted and failed
    std::map<Mac, Sample> known_;
    std::optional<uint32_t> generation_;  // of the last look
    bool baseline_ = false;               // the first look only says where the stations stand
    bool count_acks_ = false;
};

// As it is written: the agent reads signed 32-bit numbers.
inline uint32_t written(uint64_t total) {
    return static_cast<uint32_t>(total & 0x7fffffff);
}

}  // namespace collector
