// What a pass asks the kernel. An interface, so that tests can stand in for the kernel.
#pragma once

#include <string>
#include <vector>

#include "observed.h"

namespace collector {

// What the kernel sent unasked since the last call.
struct Events {
    bool changed = false;  // a pass is due
    bool unseen = false;   // a list that was read before may be out of date
    bool lost = false;     // the buffer overflowed
    std::vector<Departed> departed;
    std::vector<std::pair<uint32_t, std::string>> frames;  // interface, frame as it was sent
};

// Calls return 0, or an errno value and leave their results as they were.
class Kernel {
  public:
    Kernel() = default;
    Kernel(const Kernel&) = delete;
    Kernel& operator=(const Kernel&) = delete;
    virtual ~Kernel() = default;

    virtual int interfaces(std::vector<Interface>& found) = 0;  // ENOENT: a kernel without nl80211
    virtual int radio(uint32_t index, Radio& radio) = 0;
    virtual int regulatory(std::vector<Regulatory>& found) = 0;
    virtual int stations(uint32_t interface, Stations& found) = 0;
    virtual int group_key(uint32_t interface, bool& present) = 0;  // EPERM without CAP_NET_ADMIN

    // Never waits.
    virtual void events(Events& events) = 0;
};

}  // namespace collector
