// A process's copy of the store: loads it, follows its changes and its replacement, and keeps the last good contents
// while the store cannot be read. The rules are in docs/store-format.md.
#pragma once

#include <stdint.h>

#include "snapshot.h"
#include "watch.h"

namespace cfql {

class Cache {
  public:
    // For one thread at a time. Nothing is opened before the first refresh().
    constexpr Cache() = default;

    // Brings the contents up to date: checks the store, unless the last check is less than 50 ms old and `at_once` is
    // false, and loads it if it has changed and a load is due.
    void refresh(bool at_once);

    // Empty as long as nothing could be loaded. Valid until the next refresh().
    const Snapshot& contents() const { return contents_; }

    void expire();  // makes the next refresh() check and load, however recent the last load is
    void forget();  // drops the contents

  private:
    void load();
    Status load_contents();
    Status read_contents(Database& store, Snapshot& next);
    int patience() const;
    int64_t failed(Status status);
    void drop();
    void report(Status status);

    Watch watch_;
    Snapshot contents_;
    bool loaded_ = false;       // contents_ come from a store
    bool has_written_ = false;  // since the last good load
    bool suspect_ = false;      // the last load failed, and not because the store was locked
    int64_t now_ = 0;           // times in microseconds of CLOCK_MONOTONIC
    int64_t next_check_ = 0;
    int64_t next_load_ = 0;
    int64_t credit_ = 0;      // how much earlier than next_load_ a load may begin
    int64_t busy_since_ = 0;  // when a series of loads that found the store locked began; 0: there is none
    int64_t next_line_ = 0;
};

}  // namespace cfql
