// Suggestions for mistyped names.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cfql::tool {

// The one of `known` that takes the fewest slips (a letter wrong, missing, too many, or two exchanged) to become
// `text`: at most one slip for every three letters, but always one. The first of several; empty if none is that near.
std::string nearest(std::string_view text, const std::vector<std::string>& known);

// `; did you mean "..."?` with the nearest, or nothing.
std::string suggestion(std::string_view text, const std::vector<std::string>& known);

}  // namespace cfql::tool
