// Rows as texts, and the facts about numbers that every table shares, for tests of the backends.
#pragma once

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
    const auto* texts = reinterpret_cast<const ScratchText*>(&scratch);
    for (size_t i = 0; i < sizeof scratch / sizeof *texts; ++i)
        if (texts[i].text) return false;
    return true;
}

// A key that holds a number, the field that it fills, and what the field is when the key is absent.
struct NumberKey {
    std::string table, object, key, field, absent;
};

// An answer of the store, and what becomes of it; nullopt: the key counts as absent.
struct NumberFact {
    std::vector<ScriptedDevice::Pair> nodes;
    std::optional<std::string> number;
};

// What is no number, and what is negative, is -1 and the negative number, or 0 in a table that has no negative numbers.
inline std::vector<NumberFact> number_facts(const std::string& key, bool negative) {
    const std::string zeroes(300, '0');
    return {
        {{{key, "0"}}, "0"},
        {{{key, "7"}}, "7"},
        {{{key, "+7"}}, "7"},
        {{{key, "2147483647"}}, "2147483647"},
        {{{key, "2147483648"}}, negative ? "-2147483648" : "0"},
        {{{key, "4294967303"}}, "7"},
        {{{key, "10000000000"}}, "1410065408"},
        {{{key, zeroes + "7"}}, "7"},
        {{{key, "-3"}}, negative ? "-3" : "0"},
        {{{key, "-"}}, "0"},
        {{{key, "12a"}}, negative ? "-1" : "0"},
        {{{key, " 7"}}, negative ? "-1" : "0"},
        {{{key, "\x80\xff"}}, negative ? "-1" : "0"},
        {{{key, ""}}, std::nullopt},
        {{{key, std::nullopt}}, std::nullopt},
        {{{std::nullopt, "7"}}, std::nullopt},
        {{{std::nullopt, std::nullopt}}, std::nullopt},
        {{{"other", "7"}, {key, "7"}}, std::nullopt},
        {{{key, ""}, {key, "7"}}, std::nullopt},
        {{}, std::nullopt},
    };
}

// Answers KEY with every fact in turn; `row` fills the row and returns it. The last fact's answer is taken back.
template <class RowOfFields>
void expect_numbers(ScriptedDevice& device, const std::vector<NumberKey>& keys, bool negative, RowOfFields row) {
    for (const NumberKey& key : keys) {
        for (const NumberFact& fact : number_facts(key.key, negative)) {
            device.answer(key.table, key.object, key.key, fact.nodes);
            const std::string value = fact.nodes.empty() ? "-" : fact.nodes[0].second.value_or("-");
            EXPECT_EQ(row().at(key.field), fact.number.value_or(key.absent)) << key.key << " = " << value;
        }
        device.unset(key.table, key.object, key.key);
    }
}
