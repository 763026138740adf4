// The file system as SQLite sees it when it opens a store.
#pragma once

namespace cfql {

// The name of a VFS of our own, which never becomes the default: the system's, without what a store has no use for and
// what a foreign hand could lay beside it. It opens regular files alone, stores and journals; there is no write-ahead
// log and no shared memory. Null when SQLite cannot take it.
const char* vfs_name();

}  // namespace cfql
