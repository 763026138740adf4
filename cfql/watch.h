// Finds out whether a store may have changed since it was loaded, with a single system call as long as it has not.
// Nothing stays open.
#pragma once

#include <stdint.h>

#include "path.h"

namespace cfql {

// To follow a store:
//
//     Finding found = watch.check(path);           // changed at first
//     if (found == changed) { open, read, close;   // with any Access
//         if (all went well) watch.loaded(store.change_counter()); }
//
// After a failure do not call loaded(): the next check() finds `changed` again.
class Watch {
  public:
    enum class Finding : uint8_t { same, changed, absent };

    // Compares the file's stat with the one taken before the last good load. Equal time stamps may hide a change within
    // their granularity. So a load counts as settled if, before it began, the clock was 3 s past both stamps; until
    // then the header's change counter is read too, and after that one more load follows.
    Finding check(const char* path);

    // Reports that the load after the last check() was good; `counter` is the change counter that it found.
    void loaded(uint32_t counter);
    void forget() { known_ = false; }

    // About the file that the last check() found: whether it is another one than was loaded, and whether its stat has
    // changed.
    bool is_other_file() const { return !known_ || now_.device != seen_.device || now_.inode != seen_.inode; }
    bool has_moved() const { return !known_ || !(now_ == seen_); }
    uint32_t counter() const { return counter_; }  // the one that the last good load found

  private:
    bool clock_stepped_back(int64_t wall);

    FileState seen_ = {};  // before the last good load
    FileState now_ = {};   // at the last check
    uint32_t counter_ = 0;
    bool known_ = false;
    bool settled_ = false;     // the last good load was settled
    bool may_settle_ = false;  // a load that begins after the last check will be
    int64_t advance_ = 0;      // wall clock minus monotonic clock, at the last check, in ns
};

}  // namespace cfql
