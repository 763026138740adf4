// Messages to the service manager, by the protocol of sd_notify(3). Without a manager nothing is sent.
#pragma once

#include <stdint.h>
#include <string>

namespace collector {

class Notify {
  public:
    // Takes NOTIFY_SOCKET and WATCHDOG_USEC from the environment.
    Notify();

    void send(const std::string& message) const;

    // How often to send WATCHDOG=1, in ms; 0: never.
    int64_t watchdog() const { return watchdog_; }

  private:
    std::string socket_;
    int64_t watchdog_ = 0;
};

}  // namespace collector
