// The real kernel: nl80211, and the events of links.
#pragma once

#include <set>

#include "kernel.h"
#include "netlink.h"
#include "nl80211.h"

namespace collector {

class Wireless : public Kernel {
  public:
    // 0, or an errno value if there is no netlink at all. A kernel without nl80211 is no error: it may be loaded later.
    int open();

    // Descriptors to poll: readable when there are events.
    int wireless_events() const { return events_.descriptor(); }
    int link_events() const { return link_events_.descriptor(); }

    int interfaces(std::vector<Interface>& found) override;
    int radio(uint32_t index, Radio& radio) override;
    int regulatory(std::vector<Regulatory>& found) override;
    int stations(uint32_t interface, Stations& found) override;
    int group_key(uint32_t interface, bool& present) override;
    void events(Events& events) override;

  private:
    int find_family();
    int ask(uint8_t command, uint16_t flags, const std::function<void(nlmsghdr*)>& add, const Visit& visit);
    int list(uint8_t command, const std::function<void(nlmsghdr*)>& add, const std::function<void()>& begin,
             const Visit& visit);

    Netlink questions_, events_, link_events_;
    nl80211::Family family_;
    int64_t asked_for_family_ = 0;  // when; 0: never
    std::set<uint32_t> watched_;    // interfaces of access points
};

}  // namespace collector
