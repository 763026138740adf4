#include "links.h"

#include <linux/rtnetlink.h>
#include <net/if.h>

#include <errno.h>

#include "attributes.h"

namespace collector {

namespace {

constexpr size_t longest_name = 127;

// A request about one interface.
Request request_for(uint16_t type, uint16_t flags, uint32_t interface) {
    Request request(type, flags);
    auto* link = static_cast<ifinfomsg*>(mnl_nlmsg_put_extra_header(request.header(), sizeof(ifinfomsg)));
    link->ifi_family = AF_UNSPEC;
    link->ifi_index = static_cast<int>(interface);
    return request;
}

}  // namespace

std::vector<std::string> read_alternative_names(const nlmsghdr* message) {
    std::vector<std::string> names;
    if (message->nlmsg_type != RTM_NEWLINK) return names;
    Attributes::of(message, sizeof(ifinfomsg)).each([&](uint16_t type, const nlattr* attribute) {
        if (type != IFLA_PROP_LIST) return;
        Attributes::in(attribute).each([&](uint16_t property, const nlattr* name) {
            if (property == IFLA_ALT_IFNAME) names.emplace_back(text(name));
        });
    });
    return names;
}

uint32_t read_link_event(const nlmsghdr* message) {
    if (message->nlmsg_type != RTM_NEWLINK && message->nlmsg_type != RTM_DELLINK) return 0;
    if (mnl_nlmsg_get_payload_len(message) < sizeof(ifinfomsg)) return 0;
    return static_cast<uint32_t>(static_cast<const ifinfomsg*>(mnl_nlmsg_get_payload(message))->ifi_index);
}

uint32_t KernelLinks::index_of(const std::string& name) {
    return if_nametoindex(name.c_str());
}

int KernelLinks::ask(Request& request, const Visit& visit) {
    if (!socket_.is_open()) {
        if (const int error = socket_.open(NETLINK_ROUTE)) return error;
    }
    return socket_.ask(request, visit);
}

int KernelLinks::alternative_names(uint32_t interface, std::vector<std::string>& names) {
    Request request = request_for(RTM_GETLINK, NLM_F_ACK, interface);
    std::vector<std::string> found;
    const int error = ask(request, [&](const nlmsghdr* message) { found = read_alternative_names(message); });
    if (error == 0) names = std::move(found);
    return error;
}

int KernelLinks::change(uint16_t type, uint16_t flags, uint32_t interface, const std::string& name) {
    if (name.empty() || name.size() > longest_name) return EINVAL;
    Request request = request_for(type, static_cast<uint16_t>(NLM_F_ACK | flags), interface);
    nlattr* list = mnl_attr_nest_start(request.header(), IFLA_PROP_LIST);
    mnl_attr_put_strz(request.header(), IFLA_ALT_IFNAME, name.c_str());
    mnl_attr_nest_end(request.header(), list);
    return ask(request, [](const nlmsghdr*) {});
}

int KernelLinks::add_name(uint32_t interface, const std::string& name) {
    return change(RTM_NEWLINKPROP, NLM_F_CREATE | NLM_F_EXCL | NLM_F_APPEND, interface, name);
}

int KernelLinks::remove_name(uint32_t interface, const std::string& name) {
    return change(RTM_DELLINKPROP, 0, interface, name);
}

}  // namespace collector
