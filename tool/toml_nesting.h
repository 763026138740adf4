// How deep a TOML text is nested, checked before it is parsed: the parser, and the destructors of its trees, recurse.
#pragma once

#include <stddef.h>
#include <optional>
#include <string_view>

namespace cfql::tool {

// Where a text is first nested deeper than any contents of a store; line and column count from 1.
struct Excess {
    size_t line;
    size_t column;
    const char* what;
};
std::optional<Excess> excess_of_nesting(std::string_view text);

}  // namespace cfql::tool
