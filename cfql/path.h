// The store's path, and what is found there.
#pragma once

#include <limits.h>
#include <stdint.h>
#include <sys/stat.h>

#include "status.h"

namespace cfql {

inline constexpr const char* default_store_path = "/var/lib/cfql/store.db";

// CFQL_STORE, unless it is empty or the process runs with raised rights; otherwise the default.
const char* store_path();

// Turns `path` into one that SQLite takes literally: names such as ":memory:" and "file:..." are special, paths with a
// slash are not. False if it is too long.
bool literal_path(const char* path, char (&out)[PATH_MAX]);

// Identifies a file, and a state of it.
struct FileState {
    dev_t device;
    ino_t inode;
    off_t size;
    int64_t modified, changed;  // in ns
    bool operator==(const FileState&) const = default;
};
FileState state_of(const struct stat& file);

// ok for a regular file, with its `state`; otherwise absent, denied, io_error or not_a_store.
Status examine_path(const char* path, FileState& state);

// Whether there is a file of size 0 at `path`. Files of /proc have that size too, and reading one may never end.
bool is_empty(const char* path);

// Whether there is a file beside the store at `path` (resolved) that SQLite must not see: a write-ahead log, which it
// would merge into the store, or a journal that is not a regular file, on which it might wait for ever.
bool is_obstructed(const char* path);

// Whether SQLite may open `path`: it is a regular file, or nothing is there. A link is neither.
bool is_regular_or_absent(const char* path);

}  // namespace cfql
