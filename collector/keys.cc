#include "keys.h"

#include <algorithm>

#include "facts.h"

namespace collector {

namespace {

// They lead from one object to the next, and are the collector's.
constexpr std::string_view links[] = {"bss", "radio", "type"};
constexpr std::string_view tables[] = {interface_table, bss_table, radio_table};

template <class Range>
bool contains(const Range& range, std::string_view wanted) {
    return std::ranges::find(range, wanted) != std::end(range);
}

}  // namespace

std::optional<std::string_view> table_of(std::string_view key) {
    if (contains(links, key)) return std::nullopt;
    for (const cfql::tool::Fact& fact : cfql::tool::facts()) {
        if (fact.key == key && contains(tables, fact.table)) return fact.table;
    }
    return std::nullopt;
}

}  // namespace collector
