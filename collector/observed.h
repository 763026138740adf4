// What a pass observed, as plain values, without attribute numbers, sockets or keys of the store.
#pragma once

#include <stdint.h>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace collector {

using Mac = std::array<uint8_t, 6>;

inline constexpr uint32_t threshold_off = 0xffffffff;  // the kernel's value for "no threshold"

struct Interface {
    uint32_t index = 0;
    std::string name;
    uint32_t radio = 0;
    uint32_t type = 0;  // NL80211_IFTYPE_*
    Mac mac = {};
    std::string ssid;                   // since the access point's start; empty: not started
    std::optional<uint32_t> frequency;  // MHz
    std::optional<int32_t> power;       // mBm, 1/100 dBm
};

struct Radio {
    uint32_t index = 0;
    std::string name;
    std::optional<uint8_t> short_retry;
    std::optional<uint8_t> long_retry;
    std::optional<uint32_t> rts;            // octets or threshold_off
    std::optional<uint32_t> fragmentation;  // octets or threshold_off
};

struct Regulatory {
    std::string country;            // two characters, also "00", "98", "99"
    uint8_t dfs = 0;                // NL80211_DFS_*
    std::optional<uint32_t> radio;  // for one radio with rules of its own; absent: for all
};

// A station's counters, 32 bits wide as the kernel sends them.
struct Sample {
    uint32_t received = 0;
    uint32_t sent = 0;
    uint32_t failed = 0;
    uint32_t retries = 0;
    std::optional<uint32_t> bad_checksums;

    bool operator==(const Sample&) const = default;
};

struct Station {
    Mac mac = {};
    Sample sample;
    std::optional<uint8_t> dtim;     // of its BSS, in beacons
    std::optional<uint16_t> beacon;  // of its BSS, in TU
};

// All stations of an interface at one moment.
struct Stations {
    uint32_t generation = 0;  // 0: the driver counts none
    std::vector<Station> stations;
};

// A station has left.
struct Departed {
    uint32_t interface = 0;
    uint32_t generation = 0;  // 0: the driver counts none
    Mac mac = {};
    std::optional<Sample> last;
};

enum class Told : uint8_t { disassociated, deauthenticated, refused };

// A management frame that an access point sent to one station.
struct Sent {
    Told told = Told::disassociated;
    uint16_t code = 0;  // reason, or the status of a refused authentication
    Mac station = {};

    bool operator==(const Sent&) const = default;
};

// The last frame of each kind.
using LastSent = std::array<std::optional<Sent>, 3>;

// What hostapd says about a BSS. What it does not say is absent.
struct HostapdBss {
    bool enabled = false;
    std::optional<std::string> ssid;
    std::optional<uint32_t> beacon;  // TU
    std::optional<uint32_t> dtim;
    std::optional<std::string> suites;  // WPA key management, as hostapd writes it; empty: no WPA
    uint8_t wpa = 0;                    // 1 WPA, 2 WPA2 and later, 3 both

    bool operator==(const HostapdBss&) const = default;
};

// 64-bit sums over all stations that an interface has had.
struct Totals {
    uint64_t transmitted = 0;
    uint64_t failed = 0;
    uint64_t received = 0;
    std::optional<uint64_t> unacknowledged;  // absent: the RTS threshold was never off
    std::optional<uint64_t> bad_checksums;   // absent: the driver does not count them

    bool operator==(const Totals&) const = default;
};

// Who made the device; empty if unknown.
struct Manufacturer {
    std::string vendor;
    std::string product;
    std::string version;
};

struct AccessPoint {
    Interface interface;
    std::string name;  // the name under which it is served
    std::optional<HostapdBss> hostapd;
    std::optional<bool> group_key;   // absent: we may not ask
    std::optional<uint8_t> dtim;     // from a station
    std::optional<uint16_t> beacon;  // from a station
    size_t stations = 0;
    Totals totals;
    LastSent sent;
};

// An interface that is not served.
struct LeftOut {
    Interface interface;
    std::string cause;
};

// The counters of an interface that is not served now and may be later.
struct Resting {
    uint32_t index = 0;
    Totals totals;
    LastSent sent;
};

struct Observed {
    std::vector<AccessPoint> access_points;  // those that are served
    std::vector<Resting> resting;
    std::vector<LeftOut> left_out;
    std::vector<Radio> radios;
    std::vector<Regulatory> regulatory;
    Manufacturer manufacturer;
};

}  // namespace collector
