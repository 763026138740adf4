// A file that only its owner reads.
#pragma once

#include <string>
#include <string_view>

namespace cfql::tool {

// Makes or replaces FILE, mode 0600, with TEXT, wholly or not at all. Throws Failure (Exit::output); what
// is there and is no regular file stays.
void write_private_file(const std::string& file, std::string_view text);

}  // namespace cfql::tool
