// When the next pass is due. Pure; times in ms of any clock that does not step.
#pragma once

#include <stdint.h>
#include <algorithm>
#include <optional>

namespace collector {

class Schedule {
  public:
    static constexpr int64_t quiet = 50;           // a burst has ended when nothing came for so long,
    static constexpr int64_t longest_burst = 500;  // or is taken for ended after so long
    static constexpr int64_t second_look = 1000;   // after a pass that found something under way

    Schedule(int64_t interval, int64_t now) : interval_(interval), regular_(now) {}

    void event(int64_t now) {
        first_event_ = first_event_.value_or(now);
        last_event_ = now;
    }

    // A pass began at `now`. `under_way`: something had begun of which no event will tell the end.
    void pass(int64_t now, bool under_way) {
        const bool by_event = first_event_.has_value();
        first_event_.reset();
        regular_ = now + (by_event && under_way ? std::min(second_look, interval_) : interval_);
    }

    int64_t due() const {
        if (!first_event_) return regular_;
        return std::min({regular_, last_event_ + quiet, *first_event_ + longest_burst});
    }

  private:
    int64_t interval_;
    int64_t regular_;
    std::optional<int64_t> first_event_;  // that no pass has seen
    int64_t last_event_ = 0;
};

}  // namespace collector
