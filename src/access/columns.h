// A column's line in its table's list: number, name, type of the answer, and the keys of the store that its value comes
// from. The column's routines are found by its name.
#pragma once

#include <span>

#include "access/table.h"

namespace dot11 {

constexpr std::span<const StoreKey> keys_of(const StoreKey& key) {
    return {&key, 1};
}
constexpr std::span<const StoreKey> keys_of(std::span<const StoreKey> keys) {
    return keys;
}

// A constant, or a value that does not come from the store.
inline constexpr std::span<const StoreKey> no_key;

}  // namespace dot11

#define READ_ONLY(number, name, type, key) \
    { number, Type::type, Answered::when_present, false, #name, keys_of(key), get_##name, nullptr, nullptr }
#define READ_WRITE(number, name, type, key) \
    { number, Type::type, Answered::when_present, false, #name, keys_of(key), get_##name, check_##name, set_##name }

// Read-only, and answered with whatever the accessor returns.
#define ALWAYS_ANSWERED(number, name, type, key) \
    { number, Type::type, Answered::always, false, #name, keys_of(key), get_##name, nullptr, nullptr }

// Answered only with "dot11Answers complete". Also for a column that accepts a SET.
#define COMPLETE_ONLY(number, name, type, key) \
    { number, Type::type, Answered::complete_only, false, #name, keys_of(key), get_##name, nullptr, nullptr }
#define COMPLETE_ONLY_WRITE(number, name, type, key) \
    { number, Type::type, Answered::complete_only, false, #name, keys_of(key), get_##name, check_##name, set_##name }

// Never answered, because its record does not hold what a manager expects. Also for a column that accepts a SET.
#define NOT_ANSWERED(number, name, type, key) \
    { number, Type::type, Answered::never, false, #name, keys_of(key), get_##name, nullptr, nullptr }
#define NOT_ANSWERED_WRITE(number, name, type, key) \
    { number, Type::type, Answered::never, false, #name, keys_of(key), get_##name, check_##name, set_##name }

// Quirk: never answered; a SET is checked, and then ACTION and UNDO end the handler as a GET does: nothing is written.
#define CHECKED_ONLY(number, name, type, key) \
    { number, Type::type, Answered::never, true, #name, keys_of(key), get_##name, check_##name, set_##name }
