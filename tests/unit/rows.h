// Rows as texts, for tests of the backends.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

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
    const auto* texts = reinterpret_cast<const ScratchText*>(&scratch);
    for (size_t i = 0; i < sizeof scratch / sizeof *texts; ++i)
        if (texts[i].text) return false;
    return true;
}
