// The loop: waits for events, signals and the time of the next pass.
#pragma once

#include <signal.h>
#include <stdint.h>
#include <functional>
#include <vector>

namespace collector {

// What a pass reports.
struct After {
    bool under_way = false;    // something has begun whose end no event will tell
    bool out_of_date = false;  // an event came meanwhile; the pass may have missed the change
};

// What wakes the loop, and what it then calls. Times are in ms of clock.h.
struct Work {
    std::vector<int> events;            // descriptors, readable when there are events
    std::function<bool()> read_events;  // true: a pass is due
    std::function<After(int64_t now)> pass;
    std::function<void()> reload;  // SIGHUP
    std::function<void()> alive;   // at least every `watchdog` ms
    int64_t interval = 10000;
    int64_t watchdog = 0;  // 0: alive() is never called
};

// From here on SIGTERM, SIGINT, SIGHUP and SIGUSR1 wait for the loop. Call it before anything else is started.
void hold_signals();

// Runs until SIGTERM or SIGINT. Makes the first pass at once, and one out of turn at SIGUSR1. Throws std::system_error.
void run(const Work& work);

}  // namespace collector
