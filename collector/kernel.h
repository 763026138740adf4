// What a pass asks the kernel. Tests have kernels of their own.
#pragma once

#include <string>
#include <vector>

#include "observed.h"

namespace collector {

// What came by itself since the last call.
struct Events {
    bool changed = false;  // a pass is due
    bool unseen = false;   // a list that was read before may be out of date
    bool lost = false;     // there was more than the buffer holds
    std::vector<Departed> departed;
    std::vector<std::pair<uint32_t, std::string>> frames;  // interface, frame as it was sent
};

// Calls answer 0 or an errno value, with which they leave their results as they were.
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
