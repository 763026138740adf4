// Whether a collector fills a store, and when it last did. It keeps a file beside the store, STORE.collector, locked
// while it runs, with one line:
//
//     LAST INTERVAL
//
// LAST: the end of the last pass, in seconds of CLOCK_BOOTTIME, 20 digits; INTERVAL: seconds from one pass to the next,
// 5 digits.
#pragma once

#include <sys/types.h>

#include <stdint.h>
#include <optional>
#include <string>

namespace cfql::tool {

// The collector's file for `store`. If `store` is a symbolic link, the file lies beside the link's target, which need
// not exist.
std::string collector_file(const std::string& store);

inline constexpr mode_t collector_file_mode = 0640;

struct LastPass {
    enum class State : uint8_t {
        never,    // no collector has filled this store since it was created
        running,  // one runs now
        stopped,  // one ran
        unknown,  // the file cannot be read: see `error`
    };
    State state = State::never;
    // Seconds since the last pass ended; absent: there was none since the machine started.
    std::optional<int64_t> age;
    int64_t interval = 0;  // seconds from one pass to the next; 0: unknown
    int error = 0;         // an errno value; EBADMSG: the file holds something else

    // It runs but makes no passes: it hangs, or the machine is overloaded.
    bool is_overdue() const { return state == State::running && age && *age > 2 * interval + slack; }

    static constexpr int64_t slack = 10;  // seconds that a pass may take
};

// Never waits, takes no lock, and throws only std::bad_alloc. Reading needs the rights of the group cfql.
LastPass last_pass(const std::string& store);

}  // namespace cfql::tool
