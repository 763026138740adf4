#include "backend/phy/driver_file.h"

#include <sys/stat.h>

#include <stdio.h>
#include <string.h>
#include <algorithm>

namespace dot11 {

namespace {

constexpr int line_size = 512;
constexpr size_t max_value_size = 16;
constexpr int max_lines = 1024;

// Room for a value behind an '=' that is the last character of the longest line.
using Line = char[line_size + max_value_size];

// fopen waits for the writer of a FIFO. Only the kernel creates files in the driver's directory, so none can be swapped
// between this check and the opening. A path that cannot be checked is left to fopen.
bool may_block(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && !S_ISREG(status.st_mode);
}

bool find_line(FILE* file, const char* key, Line& line) {
    for (int i = 0; i < max_lines && fgets(line, line_size, file); ++i)
        if (strstr(line, key)) return true;
    return false;
}

}  // namespace

int read_driver_value(const char* path, const char* key, size_t count, char* destination) {
    if (!path || may_block(path)) return 1;
    FILE* file = fopen(path, "re");
    if (!file) return 1;
    Line line = {};
    const bool found = find_line(file, key, line);
    fclose(file);
    if (!found) return 1;
    if (const char* equals = strchr(line, '=')) memcpy(destination, equals + 1, std::min(count, max_value_size));
    return 0;
}

}  // namespace dot11
