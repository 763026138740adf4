// The loop: waits for events, signals and the time of the next pass.
#pragma once

#include <signal.h>
#include <stdint.h>
#include <functional>
#include <vector>

namespace collector {

// What a pass leaves.
struct After {
    bool under_way = false;    // something had begun of which no event will tell the end
    bool out_of_date = false;  // something came meanwhile that it may have missed
};

// What wakes the loop, and what it then calls. Times in ms of clock.h.
struct Work {
    std::vector<int> events;            // descriptors, readable when take_events() has something
    std::function<bool()> take_events;  // true: a pass is due
    std::function<After(int64_t now)> pass;
    std::function<void()> reload;  // SIGHUP
    std::function<void()> alive;   // at least every `watchdog` ms
    int64_t interval = 10000;
    int64_t watchdog = 0;  // 0: alive() is never called
};

// SIGTERM, SIGINT, SIGHUP and SIGUSR1 come to the loop from here on. Call it before anything else is started.
void hold_signals();

// Runs until SIGTERM or SIGINT. The first pass is at once; SIGUSR1 makes one out of turn. Throws std::system_error.
void run(const Work& work);

}  // namespace collector
