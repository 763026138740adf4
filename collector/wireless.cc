#include "wireless.h"

#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <linux/rtnetlink.h>

#include <errno.h>

#include "clock.h"
#include "links.h"

namespace collector {

namespace {

constexpr int event_buffer = 1 << 20;       // octets: the departures of 350 stations at once
constexpr unsigned most_tries = 3;          // for a list that changes while it is read
constexpr int64_t family_interval = 60000;  // ms; each request for a family makes the kernel try to load a module
constexpr uint8_t group_keys = 4;           // indexes 0 to 3; later ones protect management frames
constexpr size_t most_departures = 16384;
constexpr size_t most_frames = 1024;

Request generic(uint16_t family, uint8_t command, uint16_t flags) {
    Request request(family, flags);
    auto* header = static_cast<genlmsghdr*>(mnl_nlmsg_put_extra_header(request.header(), sizeof(genlmsghdr)));
    header->cmd = command;
    header->version = 1;
    return request;
}

}  // namespace

int Wireless::open() {
    if (const int error = questions_.open(NETLINK_GENERIC)) return error;
    if (const int error = events_.open(NETLINK_GENERIC)) return error;
    if (const int error = link_events_.open(NETLINK_ROUTE)) return error;
    events_.enlarge(event_buffer);
    return link_events_.join(RTNLGRP_LINK);
}

int Wireless::find_family() {
    if (asked_for_family_ != 0 && now_ms() - asked_for_family_ < family_interval) return ENOENT;
    asked_for_family_ = now_ms();
    Request request = generic(GENL_ID_CTRL, CTRL_CMD_GETFAMILY, NLM_F_ACK);
    mnl_attr_put_strz(request.header(), CTRL_ATTR_FAMILY_NAME, NL80211_GENL_NAME);
    nl80211::Family found;
    const int error = questions_.ask(
        request, [&](const nlmsghdr* message) { found = nl80211::read_family(message).value_or(found); });
    if (error != 0) return error;
    if (found.id == 0) return ENOENT;
    for (const uint32_t group : {found.config, found.mlme, found.regulatory}) {
        if (group != 0) events_.join(group);
    }
    family_ = found;
    asked_for_family_ = 0;
    return 0;
}

int Wireless::ask(uint8_t command, uint16_t flags, const std::function<void(nlmsghdr*)>& add, const Visit& visit) {
    if (family_.id == 0) {
        if (const int error = find_family()) return error;
    }
    Request request = generic(family_.id, command, flags);
    add(request.header());
    const int error = questions_.ask(request, visit);
    // The module was unloaded; loaded again, it has another number.
    if (error == ENOENT && command == NL80211_CMD_GET_INTERFACE) family_ = {};
    return error;
}

// Reads a list. If it changes meanwhile, calls `begin` and reads it again.
int Wireless::list(uint8_t command, const std::function<void(nlmsghdr*)>& add, const std::function<void()>& begin,
                   const Visit& visit) {
    int error = EINTR;
    for (unsigned i = 0; i < most_tries && error == EINTR; ++i) {
        begin();
        error = ask(command, NLM_F_DUMP | NLM_F_ACK, add, visit);
    }
    return error;
}

int Wireless::interfaces(std::vector<Interface>& found) {
    std::vector<Interface> now;
    const int error = list(
        NL80211_CMD_GET_INTERFACE, [](nlmsghdr*) {}, [&] { now.clear(); },
        [&](const nlmsghdr* message) {
            if (std::optional<Interface> interface = nl80211::read_interface(message))
                now.push_back(*std::move(interface));
        });
    if (error != 0) return error;
    watched_.clear();
    for (const Interface& interface : now) {
        if (interface.type == NL80211_IFTYPE_AP) watched_.insert(interface.index);
    }
    found = std::move(now);
    return 0;
}

int Wireless::radio(uint32_t index, Radio& radio) {
    std::optional<Radio> found;
    const int error = ask(
        NL80211_CMD_GET_WIPHY, NLM_F_ACK,
        [&](nlmsghdr* request) { mnl_attr_put_u32(request, NL80211_ATTR_WIPHY, index); },
        [&](const nlmsghdr* message) { found = nl80211::read_radio(message); });
    if (error != 0) return error;
    if (!found) return EBADMSG;
    radio = *std::move(found);
    return 0;
}

int Wireless::regulatory(std::vector<Regulatory>& found) {
    std::vector<Regulatory> now;
    const int error = list(
        NL80211_CMD_GET_REG, [](nlmsghdr*) {}, [&] { now.clear(); },
        [&](const nlmsghdr* message) {
            if (std::optional<Regulatory> rules = nl80211::read_regulatory(message)) now.push_back(*std::move(rules));
        });
    if (error == 0) found = std::move(now);
    return error;
}

int Wireless::stations(uint32_t interface, Stations& found) {
    Stations now;
    bool changed = false;
    int error = EINTR;
    for (unsigned i = 0; i < most_tries && error == EINTR; ++i) {
        error = list(
            NL80211_CMD_GET_STATION,
            [&](nlmsghdr* request) { mnl_attr_put_u32(request, NL80211_ATTR_IFINDEX, interface); },
            [&] {
                now = {};
                changed = false;
            },
            [&](const nlmsghdr* message) {
                const std::optional<nl80211::Listed> listed = nl80211::read_station(message);
                if (!listed) return;
                changed = changed || (!now.stations.empty() && now.generation != listed->generation);
                now.generation = listed->generation;
                now.stations.push_back(listed->station);
            });
        if (error == 0 && changed) error = EINTR;
    }
    if (error == 0) found = std::move(now);
    return error;
}

int Wireless::group_key(uint32_t interface, bool& present) {
    for (uint8_t index = 0; index < group_keys; ++index) {
        const int error = ask(
            NL80211_CMD_GET_KEY, NLM_F_ACK,
            [&](nlmsghdr* request) {
                mnl_attr_put_u32(request, NL80211_ATTR_IFINDEX, interface);
                mnl_attr_put_u8(request, NL80211_ATTR_KEY_IDX, index);
            },
            [](const nlmsghdr*) {});
        if (error == 0) {
            present = true;
            return 0;
        }
        if (error != ENOENT) return error;
    }
    present = false;
    return 0;
}

namespace {

struct Sort {
    Events& events;

    void operator()(nl80211::Nothing) const {}
    void operator()(nl80211::Change) const { events.changed = events.unseen = true; }
    void operator()(const Departed& departed) const {
        events.changed = true;
        if (events.departed.size() < most_departures) {
            events.departed.push_back(departed);
        } else {
            events.lost = true;
        }
    }
    void operator()(const nl80211::Transmission& sent) const {
        // Only the last of each kind counts.
        if (events.frames.size() >= most_frames)
            events.frames.erase(events.frames.begin(), events.frames.begin() + most_frames / 2);
        events.frames.emplace_back(sent.interface, sent.frame);
        events.changed = true;
    }
};

}  // namespace

void Wireless::events(Events& events) {
    const int error = events_.drain([&](const nlmsghdr* message) {
        if (message->nlmsg_type == family_.id) std::visit(Sort{events}, nl80211::read_event(message));
    });
    events.lost = events.lost || error == ENOBUFS;
    const int link_error = link_events_.drain(
        [&](const nlmsghdr* message) { events.unseen = events.unseen || watched_.contains(read_link_event(message)); });
    events.unseen = events.unseen || events.lost || link_error == ENOBUFS;
    events.changed = events.changed || events.unseen;
}

}  // namespace collector
