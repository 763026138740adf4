// Files that only their owner may read.
#pragma once

#include <string>
#include <string_view>

namespace cfql::tool {

// Writes `text` to `file`, mode 0600, replacing it as a whole or not at all. Throws Failure (Exit::output), also if
// something other than a regular file is there, which is left alone.
void write_private_file(const std::string& file, std::string_view text);

}  // namespace cfql::tool
