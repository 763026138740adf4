#include "rates.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "facts.h"

namespace cfql::tool {

std::optional<Number> number(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    constexpr std::uint64_t ceiling = std::uint64_t{1} << 32;
    std::uint32_t sum = 0;
    std::uint64_t exact = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') return std::nullopt;
        const auto value = static_cast<std::uint32_t>(digit - '0');
        sum = sum * 10 + value;
        exact = std::min(exact * 10 + value, ceiling);
    }
    const std::uint64_t highest = (ceiling / 2) - (negative ? 0 : 1);
    return Number{static_cast<int>(negative ? 0U - sum : sum), exact > highest, !text.empty()};
}

namespace {

int as_number(std::string_view text) {
    const std::optional<Number> read = number(text);
    return read ? read->value : -1;
}

}  // namespace

int served_rate(std::string_view text) {
    const int rate = as_number(text.substr(0, rate_text_width));  // at most five digits: no overflow
    return std::max(rate * 2 / 10, lowest_rate);
}

// The agent takes the octet for the character of a hexadecimal digit where it happens to be the code of one.
unsigned operational_rate(std::string_view text) {
    const auto doubled = static_cast<int>(static_cast<unsigned>(as_number(text)) * 2);
    const unsigned octet = static_cast<unsigned>(doubled / 10) & 0xff;
    if (octet >= '0' && octet <= '9') return octet - '0';
    if (octet >= 'A' && octet <= 'F') return octet - 'A' + 10;
    if (octet >= 'a' && octet <= 'f') return octet - 'a' + 10;
    return octet;
}

// The agent fetches one rate for each group and keeps them one behind the other, but looks them up as if every row of
// the groups before had one. So a group of several rows has but one rate of its own, and moves those of the groups
// after it.
std::vector<RateGroup> rate_groups(const std::vector<std::string>& names, const std::vector<std::string>& rates) {
    std::vector<RateGroup> groups;
    std::vector<std::string> fetched;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (groups.empty() || groups.back().interface != names[i]) {
            groups.push_back({names[i], 0, {}});
            fetched.push_back(rates[i]);
        }
        ++groups.back().size;
    }
    std::size_t slot = 0;
    for (RateGroup& group : groups) {
        for (std::size_t i = 0; i < std::min(group.size, most_rates); ++i, ++slot) {
            group.served.push_back(slot < fetched.size() ? served_rate(fetched[slot]) : lowest_rate);
        }
    }
    return groups;
}

}  // namespace cfql::tool
