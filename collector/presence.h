// That a collector fills a store, and when it did so last: the file beside the store named STORE.collector. The
// collector keeps it locked (flock); it holds one line:
//
//     LAST INTERVAL
//
// LAST: end of the last pass, in seconds of CLOCK_BOOTTIME, 20 digits; INTERVAL: seconds between two passes, 5 digits.
#ifndef COLLECTOR_PRESENCE_H
#define COLLECTOR_PRESENCE_H

#include <cstdint>
#include <string>

namespace collector {

class Presence {
  public:
    explicit Presence(const std::string& store) : path_(store + ".collector") {}
    Presence(const Presence&) = delete;
    Presence& operator=(const Presence&) = delete;
    ~Presence();

    // 0; EWOULDBLOCK when another collector has it; or another errno value.
    int claim();

    // A pass has ended.
    void stamp(std::int64_t seconds, std::int64_t interval) const;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace collector

#endif
