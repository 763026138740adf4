#include "nl80211.h"

#include <linux/genetlink.h>
#include <linux/nl80211.h>

#include <algorithm>

#include "attributes.h"

namespace collector::nl80211 {

namespace {

// The command of `message`; 0 when it is too short to have one.
uint8_t command(const nlmsghdr* message) {
    if (mnl_nlmsg_get_payload_len(message) < sizeof(genlmsghdr)) return 0;
    return static_cast<const genlmsghdr*>(mnl_nlmsg_get_payload(message))->cmd;
}

Attributes attributes(const nlmsghdr* message) {
    return Attributes::of(message, sizeof(genlmsghdr));
}

std::optional<Mac> mac(const nlattr* attribute) {
    const std::string_view from = octets(attribute);
    Mac value;
    if (from.size() != value.size()) return std::nullopt;
    memcpy(value.data(), from.data(), value.size());
    return value;
}

template <class Number>
void assign(Number& target, const nlattr* attribute) {
    target = number<Number>(attribute).value_or(target);
}

void read_bss(const nlattr* nest, Station& station) {
    Attributes::in(nest).each([&](uint16_t type, const nlattr* attribute) {
        if (type == NL80211_STA_BSS_PARAM_DTIM_PERIOD) station.dtim = number<uint8_t>(attribute);
        if (type == NL80211_STA_BSS_PARAM_BEACON_INTERVAL) station.beacon = number<uint16_t>(attribute);
    });
}

void read_info(const nlattr* nest, Station& station) {
    Attributes::in(nest).each([&](uint16_t type, const nlattr* attribute) {
        switch (type) {
            case NL80211_STA_INFO_RX_PACKETS:
                return assign(station.sample.received, attribute);
            case NL80211_STA_INFO_TX_PACKETS:
                return assign(station.sample.sent, attribute);
            case NL80211_STA_INFO_TX_FAILED:
                return assign(station.sample.failed, attribute);
            case NL80211_STA_INFO_TX_RETRIES:
                return assign(station.sample.retries, attribute);
            case NL80211_STA_INFO_BSS_PARAM:
                return read_bss(attribute, station);
            case NL80211_STA_INFO_FCS_ERROR_COUNT:
                station.sample.bad_checksums = number<uint32_t>(attribute);
                return;
            default:
                return;
        }
    });
}

// The kernel may announce a leaving station without its counters, and then without any content.
bool has_counters(const nlattr* nest) {
    bool found = false;
    Attributes::in(nest).each([&](uint16_t type, const nlattr*) {
        found = found || type == NL80211_STA_INFO_RX_PACKETS || type == NL80211_STA_INFO_TX_PACKETS;
    });
    return found;
}

Event read_departure(const nlmsghdr* message) {
    Departed departed;
    Station station;
    std::optional<Mac> address;
    bool counted = false;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        if (type == NL80211_ATTR_IFINDEX) assign(departed.interface, attribute);
        if (type == NL80211_ATTR_GENERATION) assign(departed.generation, attribute);
        if (type == NL80211_ATTR_MAC) address = mac(attribute);
        if (type == NL80211_ATTR_STA_INFO) {
            counted = has_counters(attribute);
            read_info(attribute, station);
        }
    });
    if (departed.interface == 0 || !address) return Change{};
    departed.mac = *address;
    if (counted) departed.last = station.sample;
    return departed;
}

Event read_transmission(const nlmsghdr* message) {
    Transmission sent;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        if (type == NL80211_ATTR_IFINDEX) assign(sent.interface, attribute);
        if (type == NL80211_ATTR_FRAME) sent.frame = octets(attribute);
    });
    if (sent.interface == 0 || sent.frame.empty()) return Nothing{};
    return sent;
}

void read_group(const nlattr* nest, Family& family) {
    std::string_view name;
    uint32_t id = 0;
    Attributes::in(nest).each([&](uint16_t type, const nlattr* attribute) {
        if (type == CTRL_ATTR_MCAST_GRP_NAME) name = text(attribute);
        if (type == CTRL_ATTR_MCAST_GRP_ID) assign(id, attribute);
    });
    if (name == NL80211_MULTICAST_GROUP_CONFIG) family.config = id;
    if (name == NL80211_MULTICAST_GROUP_MLME) family.mlme = id;
    if (name == NL80211_MULTICAST_GROUP_REG) family.regulatory = id;
}

}  // namespace

std::optional<Family> read_family(const nlmsghdr* message) {
    if (command(message) != CTRL_CMD_NEWFAMILY) return std::nullopt;
    Family family;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        if (type == CTRL_ATTR_FAMILY_ID) assign(family.id, attribute);
        if (type != CTRL_ATTR_MCAST_GROUPS) return;
        Attributes::in(attribute).each([&](uint16_t, const nlattr* group) { read_group(group, family); });
    });
    if (family.id == 0) return std::nullopt;
    return family;
}

std::optional<Interface> read_interface(const nlmsghdr* message) {
    if (command(message) != NL80211_CMD_NEW_INTERFACE) return std::nullopt;
    Interface found;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        switch (type) {
            case NL80211_ATTR_IFINDEX:
                return assign(found.index, attribute);
            case NL80211_ATTR_IFNAME:
                found.name = text(attribute);
                return;
            case NL80211_ATTR_WIPHY:
                return assign(found.radio, attribute);
            case NL80211_ATTR_IFTYPE:
                return assign(found.type, attribute);
            case NL80211_ATTR_MAC:
                found.mac = mac(attribute).value_or(Mac{});
                return;
            case NL80211_ATTR_SSID:
                found.ssid = octets(attribute).substr(0, 32);
                return;
            case NL80211_ATTR_WIPHY_FREQ:
                found.frequency = number<uint32_t>(attribute);
                return;
            case NL80211_ATTR_WIPHY_TX_POWER_LEVEL:
                found.power = number<int32_t>(attribute);
                return;
            default:
                return;
        }
    });
    if (found.index == 0 || found.name.empty()) return std::nullopt;  // a P2P device has neither
    return found;
}

std::optional<Radio> read_radio(const nlmsghdr* message) {
    if (command(message) != NL80211_CMD_NEW_WIPHY) return std::nullopt;
    Radio found;
    bool numbered = false;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        switch (type) {
            case NL80211_ATTR_WIPHY:
                numbered = true;
                return assign(found.index, attribute);
            case NL80211_ATTR_WIPHY_NAME:
                found.name = text(attribute);
                return;
            case NL80211_ATTR_WIPHY_RETRY_SHORT:
                found.short_retry = number<uint8_t>(attribute);
                return;
            case NL80211_ATTR_WIPHY_RETRY_LONG:
                found.long_retry = number<uint8_t>(attribute);
                return;
            case NL80211_ATTR_WIPHY_RTS_THRESHOLD:
                found.rts = number<uint32_t>(attribute);
                return;
            case NL80211_ATTR_WIPHY_FRAG_THRESHOLD:
                found.fragmentation = number<uint32_t>(attribute);
                return;
            default:
                return;
        }
    });
    if (!numbered) return std::nullopt;
    return found;
}

std::optional<Regulatory> read_regulatory(const nlmsghdr* message) {
    if (command(message) != NL80211_CMD_GET_REG) return std::nullopt;
    Regulatory found;
    std::optional<uint32_t> radio;
    bool rules_itself = false;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        if (type == NL80211_ATTR_REG_ALPHA2) found.country = text(attribute).substr(0, 2);
        if (type == NL80211_ATTR_DFS_REGION) assign(found.dfs, attribute);
        if (type == NL80211_ATTR_WIPHY) radio = number<uint32_t>(attribute);
        if (type == NL80211_ATTR_WIPHY_SELF_MANAGED_REG) rules_itself = true;
    });
    if (found.country.size() != 2 || (radio && !rules_itself)) return std::nullopt;
    found.radio = radio;
    return found;
}

std::optional<Listed> read_station(const nlmsghdr* message) {
    if (command(message) != NL80211_CMD_NEW_STATION) return std::nullopt;
    Listed found;
    std::optional<Mac> address;
    attributes(message).each([&](uint16_t type, const nlattr* attribute) {
        if (type == NL80211_ATTR_GENERATION) assign(found.generation, attribute);
        if (type == NL80211_ATTR_MAC) address = mac(attribute);
        if (type == NL80211_ATTR_STA_INFO) read_info(attribute, found.station);
    });
    if (!address) return std::nullopt;
    found.station.mac = *address;
    return found;
}

Event read_event(const nlmsghdr* message) {
    switch (command(message)) {
        case NL80211_CMD_DEL_STATION:
            return read_departure(message);
        case NL80211_CMD_FRAME_TX_STATUS:
            return read_transmission(message);
        case NL80211_CMD_NEW_STATION:
        case NL80211_CMD_NEW_INTERFACE:
        case NL80211_CMD_DEL_INTERFACE:
        case NL80211_CMD_SET_INTERFACE:
        case NL80211_CMD_NEW_WIPHY:
        case NL80211_CMD_DEL_WIPHY:
        case NL80211_CMD_START_AP:
        case NL80211_CMD_STOP_AP:
        case NL80211_CMD_CH_SWITCH_NOTIFY:
        case NL80211_CMD_REG_CHANGE:
        case NL80211_CMD_WIPHY_REG_CHANGE:
            return Change{};
        default:
            return Nothing{};
    }
}

}  // namespace collector::nl80211
