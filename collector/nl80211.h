// The messages of nl80211, the kernel's wireless configuration interface, as typed values. No other file knows an
// attribute's number.
#pragma once

#include <variant>

#include "kernel.h"
#include "netlink.h"

namespace collector::nl80211 {

// The readers are pure and safe for any octets within the message's announced length. They return nothing for a message
// of another kind.
std::optional<Interface> read_interface(const nlmsghdr* message);
std::optional<Radio> read_radio(const nlmsghdr* message);
std::optional<Regulatory> read_regulatory(const nlmsghdr* message);

// One station of a list, with the list's generation.
struct Listed {
    uint32_t generation = 0;
    Station station;
};
std::optional<Listed> read_station(const nlmsghdr* message);

// A frame that an interface sent; valid as long as the message.
struct Transmission {
    uint32_t interface = 0;
    std::string_view frame;
};
struct Nothing {};
struct Change {};  // a pass is due
using Event = std::variant<Nothing, Change, Departed, Transmission>;
Event read_event(const nlmsghdr* message);

// The number that generic netlink gave to a family, and those of its groups.
struct Family {
    uint16_t id = 0;
    uint32_t config = 0, mlme = 0, regulatory = 0;  // 0: no such group
};
std::optional<Family> read_family(const nlmsghdr* message);

}  // namespace collector::nl80211
