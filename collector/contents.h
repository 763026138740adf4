// Turns what was observed into what the store is to hold: every key and its conversion. Pure.
#pragma once

#include <stdint.h>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "configuration.h"
#include "observed.h"

namespace collector {

struct ObjectName {
    std::string table;
    std::string name;

    bool operator==(const ObjectName&) const = default;
    bool operator<(const ObjectName& other) const { return std::tie(table, name) < std::tie(other.table, other.name); }
};

using Contents = std::map<ObjectName, Values>;

// The number of the channel at `frequency`, in MHz, of any band; absent: there is none.
std::optional<uint32_t> channel(uint32_t frequency);

// `power`, in 1/100 dBm, as milliwatts, rounded; at least 1.
uint32_t milliwatts(int32_t power);

// The MIB's number of the regulatory domain; absent: it has none.
std::optional<uint32_t> regulatory_domain(const Regulatory& rules);

// Lower-case hexadecimal digits, separated by colons.
std::string mac_text(const Mac& mac);
std::optional<Mac> mac_of(std::string_view text);

// The printable ASCII of `text`, without blanks at its ends, at most 127 octets.
std::string plain(std::string_view text);

Contents contents(const Observed& observed, const Configuration& configuration);

// The reverse, for a restart: what an earlier run left in the store about an interface.
struct Left {
    Totals totals;
    LastSent sent;
    std::optional<HostapdBss> hostapd;

    bool operator==(const Left&) const = default;
};

// By ifIndex. `held` are the collector's objects; texts that it would not have written are ignored.
std::map<uint32_t, Left> left_in(const Contents& held);

}  // namespace collector
