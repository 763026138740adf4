// Values in the wireless driver's information files, whose lines have the form name=value.
#pragma once

#include <cstddef>

namespace dot11 {

// Copies the `count` bytes (16 at most) behind the first '=' of the first line that has `key` anywhere in it: the
// value, what follows it on the line, a terminating zero, and whatever comes then. Lines are taken in pieces of up to
// 511 bytes, each a line of its own, and only the first 1024 of them: at most half a megabyte of a file is read. `path`
// may be null.
//
// Returns 0 when there is such a line, with `destination` untouched when it has no '='. Otherwise returns 1; so it does
// for what is no regular file, which might never end or never begin.
int read_driver_value(const char* path, const char* key, size_t count, char* destination);

}  // namespace dot11
