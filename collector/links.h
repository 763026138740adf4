// Network interfaces by rtnetlink: their alternative names, and what happens to them.
#pragma once

#include <string>
#include <vector>

#include "netlink.h"

namespace collector {

// The interface's alternative names in `message`. Pure; safe for any octets within the message's announced length.
std::vector<std::string> read_alternative_names(const nlmsghdr* message);

// The index of the interface that `message` is about; 0: none.
uint32_t read_link_event(const nlmsghdr* message);

// Calls return 0 or an errno value.
class Links {
  public:
    Links() = default;
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;
    virtual ~Links() = default;

    // The index of the interface that has `name` among its names; 0: none.
    virtual uint32_t index_of(const std::string& name) = 0;
    virtual int alternative_names(uint32_t interface, std::vector<std::string>& names) = 0;
    // EEXIST: some interface has the name; EPERM: without CAP_NET_ADMIN; EOPNOTSUPP: kernels before 5.5.
    virtual int add_name(uint32_t interface, const std::string& name) = 0;
    virtual int remove_name(uint32_t interface, const std::string& name) = 0;
};

// The real ones.
class KernelLinks : public Links {
  public:
    uint32_t index_of(const std::string& name) override;
    int alternative_names(uint32_t interface, std::vector<std::string>& names) override;
    int add_name(uint32_t interface, const std::string& name) override;
    int remove_name(uint32_t interface, const std::string& name) override;

  private:
    int ask(Request& request, const Visit& visit);
    int change(uint16_t type, uint16_t flags, uint32_t interface, const std::string& name);

    Netlink socket_;
};

}  // namespace collector
