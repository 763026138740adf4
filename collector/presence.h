// The file that says whether a collector fills a store and when it last did; tool/last_pass.h describes it.
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

    // 0; EWOULDBLOCK if another collector holds it; or another errno value.
    int claim();

    // Records that a pass has ended, at `seconds` of CLOCK_BOOTTIME. `interval`: seconds from one pass to the next.
    void stamp(int64_t seconds, int64_t interval) const;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace collector
