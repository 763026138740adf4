#include "vfs.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <sqlite3.h>
#include <stddef.h>
#include <sys/stat.h>
#include <unistd.h>

#include "path.h"
#include "store_limits.h"

namespace cfql {
namespace {

constexpr char name[] = "cfql";

sqlite3_vfs* under = nullptr;  // the system's
sqlite3_vfs own;

// The offset of our copy of a file's methods: after the memory that the system's VFS needs for a file.
size_t methods_offset() {
    constexpr size_t alignment = alignof(sqlite3_io_methods);
    return (static_cast<size_t>(under->szOsFile) + alignment - 1) / alignment * alignment;
}

// The system's VFS would open a FIFO and wait for ever for its other end. Checking the path first is not enough,
// because the file may be swapped before it is opened. So while a file of ours is opened, that VFS calls open() through
// here.
using OpenCall = int (*)(const char* path, int flags, int mode);
constexpr char open_call[] = "open";

pthread_mutex_t opening = PTHREAD_MUTEX_INITIALIZER;
const char* ours = nullptr;  // our path, compared by address; other users' files pass through
OpenCall next_open = nullptr;

int open_regular(const char* path, int flags, int mode) {
    if (path != ours) return next_open(path, flags, mode);
    const int file = next_open(path, flags | O_NONBLOCK | O_NOCTTY, mode);
    struct stat found;
    if (file < 0 || (fstat(file, &found) == 0 && S_ISREG(found.st_mode))) return file;
    close(file);
    errno = EACCES;
    return -1;
}

int open_without_waiting(const char* path, sqlite3_file* file, int flags, int* out) {
    pthread_mutex_lock(&opening);
    sqlite3_syscall_ptr const before = under->xGetSystemCall(under, open_call);
    next_open = reinterpret_cast<OpenCall>(before);
    ours = path;
    under->xSetSystemCall(under, open_call, reinterpret_cast<sqlite3_syscall_ptr>(open_regular));
    const int code = under->xOpen(under, path, file, flags, out);
    under->xSetSystemCall(under, open_call, before);
    ours = nullptr;
    pthread_mutex_unlock(&opening);
    return code;
}

int open(sqlite3_vfs*, sqlite3_filename path, sqlite3_file* file, int flags, int* out) {
    constexpr int kinds = SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL;
    file->pMethods = nullptr;
    if (!path || (flags & kinds) == 0 || !is_regular_or_absent(path)) return SQLITE_CANTOPEN;
    const int code = open_without_waiting(path, file, flags, out);
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
    if (!under || under->iVersion < 3 || !under->xSetSystemCall || sqlite3_vfs_find(name)) return;
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
