// What somebody may have meant who wrote something else.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cfql::tool {

// The one of KNOWN that takes the fewest slips (a letter wrong, missing, too many, or two exchanged) to become TEXT:
// one slip for every three letters, at least one. The first of several; empty when none is that near.
std::string nearest(std::string_view text, const std::vector<std::string>& known);

// `; did you mean "..."?` for the nearest, or nothing.
std::string suggestion(std::string_view text, const std::vector<std::string>& known);

}  // namespace cfql::tool
