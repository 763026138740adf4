// How deep a TOML text is nested, found out before it is parsed: the parser, and what takes its trees apart, go down by
// recursion.
#pragma once

#include <stddef.h>
#include <optional>
#include <string_view>

namespace cfql::tool {

// Where a text first goes deeper than any contents of a store do; line and column count from 1.
struct Excess {
    size_t line;
    size_t column;
    const char* what;
};
std::optional<Excess> excess_of_nesting(std::string_view text);

}  // namespace cfql::tool
