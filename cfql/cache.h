// What a process knows of the store: loads it, follows its changes and its replacement, and goes on with the last good
// contents when it cannot be read. The rules are in docs/store-format.md.
#pragma once

#include <stdint.h>

#include "snapshot.h"
#include "watch.h"

namespace cfql {

class Cache {
  public:
    // Not copied, not for several threads at once. Nothing is opened before the first refresh().
    constexpr Cache() = default;

    // Brings the contents up to date: checks the store always when AT_ONCE, otherwise when the last check is 50 ms old,
    // and loads it if it has changed and loading is due.
    void refresh(bool at_once);

    // Empty as long as there was nothing to load. Valid until the next refresh().
    const Snapshot& contents() const { return contents_; }

    void expire();  // the next refresh() checks and loads, however recent the last load is
    void forget();  // the contents

  private:
    void load();
    Status take_contents();
    Status read_contents(Database& store, Snapshot& next);
    int patience() const;
    int64_t failed(Status status);
    void drop();
    void report(Status status);

    Watch watch_;
    Snapshot contents_;
    bool loaded_ = false;       // contents_ are a store's
    bool has_written_ = false;  // since the last good load
    bool suspect_ = false;      // the last load failed, and not for want of the lock
    int64_t now_ = 0;           // times in microseconds of CLOCK_MONOTONIC
    int64_t next_check_ = 0;
    int64_t next_load_ = 0;
    int64_t credit_ = 0;      // so much before it a load may begin
    int64_t busy_since_ = 0;  // when the first load failed for want of the lock; 0: the last did not
    int64_t next_line_ = 0;
};

}  // namespace cfql
