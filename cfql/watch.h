// Whether a store may have changed since it was loaded, by one call to the system as long as nothing happens. Nothing
// stays open.
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

    // Compares the file's stat with the one that was taken before the last good load. Stamps of equal value may hide a
    // change that came within their granularity. So a load counts as settled when the clock was 3 s past both stamps
    // before it began; until then the header's change counter is read too, and after that one more load follows.
    Finding check(const char* path);

    // The load that began after the last check() was good; COUNTER is the change counter that it found.
    void loaded(uint32_t counter);
    void forget() { known_ = false; }

    // Of the file as the last check() found it: another one than was loaded; the same, but its stat has moved.
    bool is_other_file() const { return !known_ || now_.device != seen_.device || now_.inode != seen_.inode; }
    bool has_moved() const { return !known_ || !(now_ == seen_); }
    uint32_t counter() const { return counter_; }  // of the last good load

  private:
    bool clock_stepped_back(int64_t wall);

    FileState seen_ = {};  // before the last good load
    FileState now_ = {};   // at the last check
    uint32_t counter_ = 0;
    bool known_ = false;
    bool settled_ = false;     // the last good load was
    bool may_settle_ = false;  // a load that begins after the last check is
    int64_t advance_ = 0;      // of the clock before the time since the start, at the last check; ns
};

}  // namespace cfql
