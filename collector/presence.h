// That a collector fills a store, and when it did so last: the file that tool/last_pass.h describes.
#pragma once

#include <stdint.h>
#include <string>

#include "last_pass.h"

namespace collector {

class Presence {
  public:
    explicit Presence(const std::string& store) : path_(cfql::tool::collector_file(store)) {}
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;
    ~Presence();

    // 0; EWOULDBLOCK when another collector has it; or another errno value.
    int claim();

    // A pass has ended, at SECONDS of CLOCK_BOOTTIME. INTERVAL: seconds from one pass to the next.
    void stamp(int64_t seconds, int64_t interval) const;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace collector
