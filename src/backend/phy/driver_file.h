// Values in the wireless driver's information files, whose lines have the form name=value.
#pragma once

#include <stddef.h>

namespace dot11 {

// Copies the `count` bytes (16 at most) after the first '=' of the first line that has `key` anywhere in it: the value,
// the rest of the line, a terminating zero, and whatever comes then. Lines are read in pieces of up to 511 bytes, each
// counting as a line, and only the first 1024 of them: at most half a megabyte of a file is read. `path` may be null.
//
// Returns 0 if there is such a line; if it has no '=', `destination` stays as it is. Returns 1 otherwise, and for
// anything but a regular file, which might block or never end.
int read_driver_value(const char* path, const char* key, size_t count, char* destination);

}  // namespace dot11
