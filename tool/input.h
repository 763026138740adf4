// Texts from standard input and from files.
#pragma once

#include <string>

namespace cfql::tool {

// All of standard input without one trailing newline. Stops reading once it is longer than any value may be.
std::string value_from_input();

// All of `file`, or of standard input if it is "-". Throws Failure (Exit::input).
std::string text_of(const std::string& file);

}  // namespace cfql::tool
