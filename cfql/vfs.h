// The file system that SQLite sees when it opens a store.
#pragma once

namespace cfql {

// The name of our own VFS, which never becomes the default. It is the system's, restricted to what a store needs, so
// that files planted beside a store do no harm: it opens only regular files, stores and journals, and has no
// write-ahead log and no shared memory. Null if SQLite cannot register it.
const char* vfs_name();

}  // namespace cfql
