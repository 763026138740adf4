// Where the store is, and what lies there.
#pragma once

#include <limits.h>
#include <stdint.h>
#include <sys/stat.h>

#include "status.h"

namespace cfql {

inline constexpr const char* default_store_path = "/var/lib/cfql/store.db";

// CFQL_STORE, unless it is empty or the process runs with raised rights; otherwise the default.
const char* store_path();

// PATH as SQLite takes it literally: names such as ":memory:" and "file:..." have a meaning of their own there, a path
// with a slash has none. False when it is too long.
bool literal_path(const char* path, char (&out)[PATH_MAX]);

// What tells a file, and one state of it from the next.
struct FileState {
    dev_t device;
    ino_t inode;
    off_t size;
    int64_t modified, changed;  // in ns
    bool operator==(const FileState&) const = default;
};
FileState state_of(const struct stat& file);

// ok for a regular file, with its STATE, otherwise absent, denied, io_error or not_a_store.
Status examine_path(const char* path, FileState& state);

// Whether a file is at PATH and has no octets, as those of /proc say of themselves: one of them is never read to its
// end.
bool is_empty(const char* path);

// Whether a file lies beside the store at PATH (resolved) that SQLite must not see: a log, which it would merge into
// the store, or a journal that is no regular file, on which it might wait for ever.
bool is_obstructed(const char* path);

// Whether SQLite may open PATH: a regular file or nothing. A link is neither.
bool is_regular_or_absent(const char* path);

}  // namespace cfql
