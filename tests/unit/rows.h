// Rows as texts, for tests of the backends.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "scripted.h"
#include "store/answer.h"

// A row's fields: name and value.
using Fields = std::map<std::string, std::string>;

// Octets in hex: "00 1f".
inline std::string hex(const void* octets, size_t count) {
    std::string text;
    char digits[4];
    for (size_t i = 0; i < count; ++i) {
        snprintf(digits, sizeof digits, i ? " %02x" : "%02x", static_cast<const uint8_t*>(octets)[i]);
        text += digits;
    }
    return text;
}

// The fields of `row` that differ from those of `base`.
inline Fields differences(const Fields& base, const Fields& row) {
    Fields found;
    for (const auto& [name, value] : row)
        if (base.at(name) != value) found[name] = value;
    return found;
}

// Whether every value of a scratch record has been released.
template <class Scratch>
bool all_released(const Scratch& scratch) {
    const auto* texts = reinterpret_cast<const dot11::ScratchText*>(&scratch);
    for (size_t i = 0; i < sizeof scratch / sizeof *texts; ++i)
        if (texts[i].text) return false;
    return true;
}

// What a row loses without memory for the n-th allocation: the fields that differ from those of the whole row then;
// nullopt: the fill ends with -1.
using Losses = std::vector<std::optional<Fields>>;

// `fill` enumerates and fills, and returns the fill's result; `shown` returns the row's fields.
template <class Fill, class Shown>
void expect_losses(ScriptedDevice& device, const Losses& losses, Fill fill, Shown shown) {
    EXPECT_EQ(fill(), 1);
    const Fields whole = shown();
    int n = 0;
    for (const std::optional<Fields>& lost : losses) {
        device.fail_allocation(++n);
        EXPECT_EQ(fill(), lost ? 1 : -1) << "allocation " << n;
        EXPECT_TRUE(device.allocation_failed()) << "allocation " << n;
        EXPECT_EQ(lost ? differences(whole, shown()) : Fields{}, lost.value_or(Fields{})) << "allocation " << n;
    }
    device.fail_allocation(++n);
    EXPECT_EQ(fill(), 1);
    EXPECT_FALSE(device.allocation_failed());
    EXPECT_EQ(shown(), whole);
}
