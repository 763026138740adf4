// What iw cannot do on the virtual access point:
//
//   radio watch            prints "ready", then each station that departs, with its final counters; fails if it missed
//                          one
//   radio add BSS COUNT    adds stations without radios, so that frames to them fail
//   radio drop BSS         makes all its stations depart at once
//   radio unplug PHY       removes the radio, as if it were unplugged
#include <libmnl/libmnl.h>
#include <linux/genetlink.h>
#include <linux/nl80211.h>
#include <net/if.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

namespace {

// Of the kernel's mac80211_hwsim.h, which is not among the headers for programs.
constexpr uint8_t hwsim_del_radio = 5;
constexpr uint16_t hwsim_radio_name = 17;

[[noreturn]] void fail(const char* what) {
    perror(what);
    exit(1);
}

class Attributes {
  public:
    explicit Attributes(const nlmsghdr* message) { mnl_attr_parse(message, sizeof(genlmsghdr), keep, this); }
    explicit Attributes(const nlattr* nest) { mnl_attr_parse_nested(nest, keep, this); }
    const nlattr* operator[](size_t type) const { return found_[type]; }
    uint32_t number(size_t type) const { return found_[type] ? mnl_attr_get_u32(found_[type]) : 0; }

  private:
    static int keep(const nlattr* attribute, void* self) {
        const size_t type = mnl_attr_get_type(attribute);
        auto& found = static_cast<Attributes*>(self)->found_;
        if (type < found.size()) {
            found[type] = attribute;
        }
        return MNL_CB_OK;
    }
    std::array<const nlattr*, 512> found_{};
};

using Receive = std::function<void(const nlmsghdr*)>;

class Family {
  public:
    explicit Family(const char* name) : socket_(mnl_socket_open(NETLINK_GENERIC)) {
        if (!socket_ || mnl_socket_bind(socket_, 0, MNL_SOCKET_AUTOPID) < 0) {
            fail("netlink");
        }
        nlmsghdr* message = request(GENL_ID_CTRL, CTRL_CMD_GETFAMILY);
        mnl_attr_put_strz(message, CTRL_ATTR_FAMILY_NAME, name);
        call(name, [this](const nlmsghdr* answer) {
            const Attributes family(answer);
            id_ = mnl_attr_get_u16(family[CTRL_ATTR_FAMILY_ID]);
            join_mlme(family[CTRL_ATTR_MCAST_GROUPS]);
        });
    }

    nlmsghdr* request(uint16_t type, uint8_t command) {
        nlmsghdr* message = mnl_nlmsg_put_header(buffer_);
        message->nlmsg_type = type;
        message->nlmsg_flags = NLM_F_REQUEST | NLM_F_ACK;
        auto* header = static_cast<genlmsghdr*>(mnl_nlmsg_put_extra_header(message, sizeof(genlmsghdr)));
        header->cmd = command;
        return message;
    }
    nlmsghdr* request(uint8_t command) { return request(id_, command); }

    // Sends the request that was made last; ends the program when the kernel refuses it.
    void call(const char* what, const Receive& receive = {}) {
        auto* message = reinterpret_cast<nlmsghdr*>(buffer_);
        if (mnl_socket_sendto(socket_, message, message->nlmsg_len) < 0 || !receive_all(receive)) {
            fail(what);
        }
    }

    // Events until something fails; departures are lost then.
    void listen(const char* group, const Receive& receive) {
        int size = 8 << 20;
        const int descriptor = mnl_socket_get_fd(socket_);
        if (setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) < 0 ||
            mnl_socket_setsockopt(socket_, NETLINK_ADD_MEMBERSHIP, &mlme_, sizeof mlme_) < 0) {
            fail(group);
        }
        puts("ready");
        while (receive_all(receive)) {
        }
        fail(group);
    }

  private:
    void join_mlme(const nlattr* groups) {
        if (!groups) {
            return;
        }
        const Attributes list(groups);
        for (size_t number = 1; list[number]; ++number) {
            const Attributes group(list[number]);
            if (strcmp(mnl_attr_get_str(group[CTRL_ATTR_MCAST_GRP_NAME]), "mlme") == 0) {
                mlme_ = group.number(CTRL_ATTR_MCAST_GRP_ID);
            }
        }
    }

    bool receive_all(const Receive& receive) {
        const auto forward = [](const nlmsghdr* message, void* to) {
            const auto& function = *static_cast<const Receive*>(to);
            if (function) {
                function(message);
            }
            return MNL_CB_OK;
        };
        for (;;) {
            const ssize_t size = mnl_socket_recvfrom(socket_, buffer_, sizeof buffer_);
            if (size < 0) {
                return false;
            }
            const int rest =
                mnl_cb_run(buffer_, static_cast<size_t>(size), 0, 0, forward, const_cast<Receive*>(&receive));
            if (rest <= MNL_CB_STOP) {
                return rest == MNL_CB_STOP;
            }
        }
    }

    mnl_socket* socket_;
    uint16_t id_ = 0;
    uint32_t mlme_ = 0;
    char buffer_[1 << 16];
};

uint32_t interface(const char* name) {
    const uint32_t index = if_nametoindex(name);
    return index != 0 ? index : (fail(name), 0);
}

void print_departure(const nlmsghdr* message) {
    const auto* header = static_cast<const genlmsghdr*>(mnl_nlmsg_get_payload(message));
    const Attributes event(message);
    if (header->cmd != NL80211_CMD_DEL_STATION || !event[NL80211_ATTR_STA_INFO]) {
        return;
    }
    const Attributes counters(event[NL80211_ATTR_STA_INFO]);
    printf("departed %u %u %u %u\n", event.number(NL80211_ATTR_IFINDEX), counters.number(NL80211_STA_INFO_RX_PACKETS),
           counters.number(NL80211_STA_INFO_TX_PACKETS), counters.number(NL80211_STA_INFO_TX_FAILED));
}

void watch() {
    setvbuf(stdout, nullptr, _IOLBF, 0);
    Family("nl80211").listen("mlme", print_departure);
}

// Associated and authorised, with all rates of 802.11g.
void add_station(Family& nl80211, uint32_t bss, uint16_t number) {
    const uint8_t mac[] = {2, 0xaa, 0, 0, static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)};
    const uint8_t rates[] = {0x82, 0x84, 0x8b, 0x96, 12, 18, 24, 36, 48, 72, 96, 108};
    constexpr uint32_t state =
        1U << NL80211_STA_FLAG_AUTHORIZED | 1U << NL80211_STA_FLAG_AUTHENTICATED | 1U << NL80211_STA_FLAG_ASSOCIATED;
    const nl80211_sta_flag_update flags{state, state};
    nlmsghdr* message = nl80211.request(NL80211_CMD_NEW_STATION);
    mnl_attr_put_u32(message, NL80211_ATTR_IFINDEX, bss);
    mnl_attr_put(message, NL80211_ATTR_MAC, sizeof mac, mac);
    mnl_attr_put_u16(message, NL80211_ATTR_STA_AID, static_cast<uint16_t>(100 + number));
    mnl_attr_put_u16(message, NL80211_ATTR_STA_LISTEN_INTERVAL, 10);
    mnl_attr_put(message, NL80211_ATTR_STA_SUPPORTED_RATES, sizeof rates, rates);
    mnl_attr_put(message, NL80211_ATTR_STA_FLAGS2, sizeof flags, &flags);
    nl80211.call("NEW_STATION");
}

void add(const char* bss, uint16_t count) {
    Family nl80211("nl80211");
    for (uint16_t number = 0; number < count; ++number) {
        add_station(nl80211, interface(bss), number);
    }
}

void drop(const char* bss) {
    Family nl80211("nl80211");
    mnl_attr_put_u32(nl80211.request(NL80211_CMD_DEL_STATION), NL80211_ATTR_IFINDEX, interface(bss));
    nl80211.call("DEL_STATION");
}

void unplug(const char* phy) {
    Family hwsim("MAC80211_HWSIM");
    mnl_attr_put_strz(hwsim.request(hwsim_del_radio), hwsim_radio_name, phy);
    hwsim.call("DEL_RADIO");
}

}  // namespace

int main(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "watch" && argc == 2) {
        watch();
    } else if (command == "add" && argc == 4) {
        add(argv[2], static_cast<uint16_t>(strtoul(argv[3], nullptr, 10)));
    } else if (command == "drop" && argc == 3) {
        drop(argv[2]);
    } else if (command == "unplug" && argc == 3) {
        unplug(argv[2]);
    } else {
        fputs("Usage: radio watch | add BSS COUNT | drop BSS | unplug PHY\n", stderr);
        return 2;
    }
    return 0;
}
