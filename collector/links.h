// Network interfaces by rtnetlink: their alternative names, and what happens to them.
#pragma once

#include <string>
#include <vector>

#include "netlink.h"

namespace collector {

// The names of `interface` that `message` tells besides the real one. Pure; takes any octets for a message of the
// announced length.
std::vector<std::string> read_alternative_names(const nlmsghdr* message);

// The interface that `message` tells of; 0: none.
uint32_t read_link_event(const nlmsghdr* message);

// Calls answer 0 or an errno value.
class Links {
  public:
    Links() = default;
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;
    virtual ~Links() = default;

    // The index of the interface that has `name`, as any of its names; 0: none.
    virtual uint32_t index_of(const std::string& name) = 0;
    virtual int alternative_names(uint32_t interface, std::vector<std::string>& names) = 0;
    // EEXIST: some interface has it; EPERM: without CAP_NET_ADMIN; EOPNOTSUPP: kernels before 5.5.
    virtual int add_name(uint32_t interface, const std::string& name) = 0;
    virtual int remove_name(uint32_t interface, const std::string& name) = 0;
};

// Those of the kernel.
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
