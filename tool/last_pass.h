// Whether a collector fills a store, and when it did so last. It keeps a file beside the store, STORE.collector, locked
// while it runs, with one line:
//
//     LAST INTERVAL
//
// LAST: end of the last pass, in seconds of CLOCK_BOOTTIME, 20 digits; INTERVAL: seconds from one pass to the next, 5
// digits.
#pragma once

#include <sys/types.h>

#include <stdint.h>
#include <optional>
#include <string>

namespace cfql::tool {

// The file of the collector of `store`. Where that is a symbolic link, the file is beside what it leads to, which need
// not exist.
std::string collector_file(const std::string& store);

inline constexpr mode_t collector_file_mode = 0640;

struct LastPass {
    enum class State : uint8_t {
        never,    // no collector has filled this store since it was made
        running,  // one does now
        stopped,  // one did
        unknown,  // the file cannot be read: see `error`
    };
    State state = State::never;
    // Seconds since the last pass ended; absent: there was none yet, or it was before the machine started.
    std::optional<int64_t> age;
    int64_t interval = 0;  // seconds from one pass to the next; 0: unknown
    int error = 0;         // an errno value; EBADMSG: the file holds something else

    // Runs without making passes: hung, or on a machine that does not get to it.
    bool is_overdue() const { return state == State::running && age && *age > 2 * interval + slack; }

    static constexpr int64_t slack = 10;  // seconds that a pass may take
};

// Never waits, takes no lock, and throws only std::bad_alloc. Reading takes the rights of the group cfql.
LastPass last_pass(const std::string& store);

}  // namespace cfql::tool
