// What was seen of the access points in one pass, as plain values: no attribute number, no socket, no key of the store.
#ifndef COLLECTOR_OBSERVED_H
#define COLLECTOR_OBSERVED_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace collector {

using Mac = std::array<std::uint8_t, 6>;

inline constexpr std::uint32_t threshold_off = 0xffffffff;  // the kernel's word for "no threshold"

struct Interface {
    std::uint32_t index = 0;
    std::string name;
    std::uint32_t radio = 0;
    std::uint32_t type = 0;  // of NL80211_IFTYPE_*
    Mac mac = {};
    std::string ssid;                        // as of the access point's start; empty: not started
    std::optional<std::uint32_t> frequency;  // MHz
    std::optional<std::int32_t> power;       // mBm, 1/100 dBm
};

struct Radio {
    std::uint32_t index = 0;
    std::string name;
    std::optional<std::uint8_t> short_retry;
    std::optional<std::uint8_t> long_retry;
    std::optional<std::uint32_t> rts;            // octets or threshold_off
    std::optional<std::uint32_t> fragmentation;  // octets or threshold_off
};

struct Regulatory {
    std::string country;                 // two characters, also "00", "98", "99"
    std::uint8_t dfs = 0;                // of NL80211_DFS_*
    std::optional<std::uint32_t> radio;  // of a radio that rules itself
};

// A station's counters, 32 bits wide as the kernel sends them.
struct Sample {
    std::uint32_t received = 0;
    std::uint32_t sent = 0;
    std::uint32_t failed = 0;
    std::uint32_t retries = 0;
    std::optional<std::uint32_t> bad_checksums;

    bool operator==(const Sample&) const = default;
};

struct Station {
    Mac mac = {};
    Sample sample;
    std::optional<std::uint8_t> dtim;     // of its BSS, in beacons
    std::optional<std::uint16_t> beacon;  // of its BSS, in TU
};

// All stations of an interface at one moment.
struct Stations {
    std::uint32_t generation = 0;  // 0: the driver counts none
    std::vector<Station> stations;
};

// A station has left.
struct Departed {
    std::uint32_t interface = 0;
    std::uint32_t generation = 0;  // 0: the driver counts none
    Mac mac = {};
    std::optional<Sample> last;
};

enum class Told : std::uint8_t { disassociated, deauthenticated, refused };

// A management frame that an access point sent to one station.
struct Sent {
    Told told = Told::disassociated;
    std::uint16_t code = 0;  // reason, or the status of a refused authentication
    Mac station = {};

    bool operator==(const Sent&) const = default;
};

// The last frame of each kind.
using LastSent = std::array<std::optional<Sent>, 3>;

// What hostapd says of one BSS. What it did not say is absent.
struct HostapdBss {
    bool enabled = false;
    std::optional<std::string> ssid;
    std::optional<std::uint32_t> beacon;  // TU
    std::optional<std::uint32_t> dtim;
    std::optional<std::string> suites;  // key management of WPA, in hostapd's words; empty: no WPA
    std::uint8_t wpa = 0;               // 1 WPA, 2 WPA2 and later, 3 both
};

// 64-bit sums over all stations that an interface has had.
struct Totals {
    std::uint64_t transmitted = 0;
    std::uint64_t failed = 0;
    std::uint64_t received = 0;
    std::optional<std::uint64_t> unacknowledged;  // absent: the RTS threshold was never off
    std::optional<std::uint64_t> bad_checksums;   // absent: the driver does not tell

    bool operator==(const Totals&) const = default;
};

// Who made the device; empty where the system does not say.
struct Manufacturer {
    std::string vendor;
    std::string product;
    std::string version;
};

struct AccessPoint {
    Interface interface;
    std::string name;  // under which it is served
    std::optional<HostapdBss> hostapd;
    std::optional<bool> group_key;        // absent: not ours to ask
    std::optional<std::uint8_t> dtim;     // from a station
    std::optional<std::uint16_t> beacon;  // from a station
    std::size_t stations = 0;
    Totals totals;
    LastSent sent;
};

// An interface that is not served.
struct LeftOut {
    Interface interface;
    std::string cause;
};

struct Observed {
    std::vector<AccessPoint> access_points;  // those that are served
    std::vector<LeftOut> left_out;
    std::vector<Radio> radios;
    std::vector<Regulatory> regulatory;
    Manufacturer manufacturer;
};

}  // namespace collector

#endif
