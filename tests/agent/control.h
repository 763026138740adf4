// Memory that a test shares with the agent that it runs: a mapped file, named by the environment variable
// AGENT_CONTROL.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

// A number in shared memory. The agent may have another byte order and word size than the test.
template <class Number>
class Shared {
  public:
    operator Number() const {
        std::make_unsigned_t<Number> number = 0;
        for (size_t i = 0; i < sizeof number; ++i)
            number |= static_cast<std::make_unsigned_t<Number>>(octets_[i]) << (8 * i);
        return static_cast<Number>(number);
    }
    Shared& operator=(Number number) {
        const auto value = static_cast<std::make_unsigned_t<Number>>(number);
        for (size_t i = 0; i < sizeof value; ++i)
            octets_[i] = static_cast<uint8_t>(value >> (8 * i));
        return *this;
    }

  private:
    volatile uint8_t octets_[sizeof(Number)];
};

struct agent_control {
    Shared<int64_t> now;        // what gettimeofday answers in the agent, seconds since the epoch; 0: the real time
    Shared<int64_t> monotonic;  // likewise CLOCK_MONOTONIC, milliseconds
    Shared<uint32_t> grids;     // calls of cfqlquery_get_grid so far
    Shared<uint32_t> gets;      // calls of cfqlquery_get_pv so far
    Shared<uint32_t> sets;      // calls of cfqlquery_set_pv so far
};
