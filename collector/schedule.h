// When the next pass is due. Pure; times in ms of any clock that does not step.
#pragma once

#include <stdint.h>
#include <algorithm>
#include <optional>

namespace collector {

class Schedule {
  public:
    static constexpr int64_t quiet = 50;           // a burst of events is over when none came for so long,
    static constexpr int64_t longest_burst = 500;  // or after so long in any case
    static constexpr int64_t follow_up = 1000;     // the next pass after one that found something under way

    Schedule(int64_t interval, int64_t now) : interval_(interval), regular_(now) {}

    void event(int64_t now) {
        first_event_ = first_event_.value_or(now);
        last_event_ = now;
    }

    // A pass began at `now`. `under_way`: something has begun whose end no event will tell.
    void pass(int64_t now, bool under_way) {
        const bool by_event = first_event_.has_value();
        first_event_.reset();
        regular_ = now + (by_event && under_way ? std::min(follow_up, interval_) : interval_);
    }

    int64_t due() const {
        if (!first_event_) return regular_;
        return std::min({regular_, last_event_ + quiet, *first_event_ + longest_burst});
    }

  private:
    int64_t interval_;
    int64_t regular_;
    std::optional<int64_t> first_event_;  // since the last pass
    int64_t last_event_ = 0;
};

}  // namespace collector
