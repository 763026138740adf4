#include "vfs.h"

#include <pthread.h>
#include <sqlite3.h>

#include <stddef.h>

#include "path.h"
#include "store_limits.h"

namespace cfql {
namespace {

constexpr char name[] = "cfql";

sqlite3_vfs* under = nullptr;  // the system's
sqlite3_vfs own;

// Where our copy of a file's methods lies: behind what the system's VFS wants for a file.
size_t methods_offset() {
    constexpr size_t alignment = alignof(sqlite3_io_methods);
    return (static_cast<size_t>(under->szOsFile) + alignment - 1) / alignment * alignment;
}

int open(sqlite3_vfs*, sqlite3_filename path, sqlite3_file* file, int flags, int* out) {
    constexpr int kinds = SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL;
    file->pMethods = nullptr;
    if (!path || (flags & kinds) == 0 || !is_regular_or_absent(path)) return SQLITE_CANTOPEN;
    const int code = under->xOpen(under, path, file, flags, out);
    if (!file->pMethods) return code;
    auto* const methods = reinterpret_cast<sqlite3_io_methods*>(reinterpret_cast<char*>(file) + methods_offset());
    *methods = *file->pMethods;
    methods->iVersion = 1;  // no shared memory
    file->pMethods = methods;
    return code;
}

int access(sqlite3_vfs*, const char* path, int flags, int* result) {
    *result = 0;
    if (Text(path).ends_with("-wal")) return SQLITE_OK;
    if (!is_regular_or_absent(path)) return SQLITE_IOERR_ACCESS;
    return under->xAccess(under, path, flags, result);
}

void make() {
    under = sqlite3_vfs_find(nullptr);
    if (!under || sqlite3_vfs_find(name)) return;
    own = *under;
    own.szOsFile = static_cast<int>(methods_offset() + sizeof(sqlite3_io_methods));
    own.zName = name;
    own.xOpen = open;
    own.xAccess = access;
    sqlite3_vfs_register(&own, 0);
}

}  // namespace

const char* vfs_name() {
    static constinit pthread_once_t once = PTHREAD_ONCE_INIT;
    pthread_once(&once, make);
    return sqlite3_vfs_find(name) ? name : nullptr;
}

}  // namespace cfql
