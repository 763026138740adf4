// A pass: asks the sources, adds up the counters, and writes the result to the store. Between passes it reads events.
#pragma once

#include <stdint.h>
#include <map>
#include <string>
#include <vector>

#include "configuration.h"
#include "counters.h"
#include "hostapd.h"
#include "kernel.h"
#include "log.h"
#include "names.h"
#include "observed.h"
#include "writer.h"

namespace collector {

class Collector {
  public:
    // All of them must outlive the collector.
    struct Parts {
        Kernel& kernel;
        Hostapd& hostapd;
        Names& names;
        Writer& writer;
        Log& log;
    };

    Collector(const Parts& parts, Configuration configuration, Manufacturer manufacturer)
        : parts_(parts), configuration_(std::move(configuration)), manufacturer_(std::move(manufacturer)) {}

    // Reads back what an earlier run left in the store.
    Writer::Result load();

    void configure(Configuration configuration) { configuration_ = std::move(configuration); }

    // Reads the kernel's pending events. Returns whether a pass should follow.
    bool read_events();

    // Asks all sources. False: the kernel did not answer, and there is nothing to write.
    bool observe(int64_t now);

    // Writes what the last observe() found.
    void write(int64_t now);

    const Observed& observed() const { return observed_; }
    Contents wanted() const { return contents(observed_, configuration_); }

    // An access point is about to start; no event will tell when it has.
    bool is_under_way() const { return under_way_; }

    // An event came while the last observe() was running, which may have missed the change.
    bool is_out_of_date() const { return events_.unseen; }

  private:
    struct State {
        Accumulator counters;
        LastSent sent;
        std::optional<HostapdBss> hostapd;  // its last answer since this access point was started
        std::vector<Departed> departed;     // since the last pass
    };

    State& state(const Interface& interface);
    bool read_interfaces(int64_t now);
    void read_radios(int64_t now);
    bool ask_hostapd(const Interface& interface, int64_t now);
    void log_hostapd(const Interface& interface, Answer answer, int64_t now);
    void observe_interface(const Interface& interface, int64_t now);
    void leave_out(const Interface& interface, const std::string& cause, int64_t now);
    bool add_stations(AccessPoint& point, int64_t now);
    void add_group_key(AccessPoint& point, int64_t now);
    void count();
    void hand_over_counts();
    void read_frames();
    bool acks_count(const Interface& interface) const;

    Parts parts_;
    Configuration configuration_;
    Manufacturer manufacturer_;
    Observed observed_;
    Events events_;                      // not yet dealt with by a pass
    std::vector<Interface> interfaces_;  // of the present pass
    std::map<uint32_t, State> states_;
    std::map<uint32_t, Stations> stations_;  // of the present pass
    std::map<uint32_t, Left> left_by_earlier_run_;
    bool has_observed_ = false;
    bool under_way_ = false;
};

}  // namespace collector
