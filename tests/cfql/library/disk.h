// A disk that fails on demand and a clock that stands still. A program that includes this has `disk` between SQLite and
// the file system, in the library as well, and sets the time by which the library goes.
#ifndef TESTS_CFQL_LIBRARY_DISK_H
#define TESTS_CFQL_LIBRARY_DISK_H

#include <sqlite3.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace store_test {

enum class Call : std::uint8_t {
    open_store,
    open,  // the log or the journal
    access,
    remove,
    read,
    write,
    truncate,
    sync,
    size,
    lock,
    shm_map,
    shm_lock
};

inline struct Disk {
    // What becomes of the NTH call of its kind: SQLITE_OK lets it through.
    using Fate = std::function<int(Call call, int nth)>;

    Fate fate;
    std::map<Call, int> calls;
    int failures = 0;

    void become(Fate next) { *this = {std::move(next), {}, 0}; }
    void mend() { fate = nullptr; }
    int ask(Call call) {
        const int nth = ++calls[call];
        const int code = fate ? fate(call, nth) : SQLITE_OK;
        if (code != SQLITE_OK) ++failures;
        return code;
    }
} disk;

inline std::int64_t milliseconds = 1000000;

namespace shim {

using Io = sqlite3_io_methods;

// SQLite leaves room for the file system's own file behind the one that it sees.
inline sqlite3_file* real(sqlite3_file* file) {
    return file + 1;
}

template <auto Method, class... Arguments>
auto pass(sqlite3_file* file, Arguments... arguments) {
    return (real(file)->pMethods->*Method)(real(file), arguments...);
}

template <auto Method, Call call, class... Arguments>
int ask(sqlite3_file* file, Arguments... arguments) {
    const int code = disk.ask(call);
    return code == SQLITE_OK ? pass<Method>(file, arguments...) : code;
}

// Nothing here cuts the power.
inline int sync(sqlite3_file*, int) {
    return disk.ask(Call::sync);
}

// Locks are always given back.
inline int shm_lock(sqlite3_file* file, int offset, int count, int flags) {
    const int code = (flags & SQLITE_SHM_LOCK) != 0 ? disk.ask(Call::shm_lock) : SQLITE_OK;
    return code == SQLITE_OK ? pass<&Io::xShmLock>(file, offset, count, flags) : code;
}

inline constexpr Io methods = {
    2,
    pass<&Io::xClose>,
    ask<&Io::xRead, Call::read>,
    ask<&Io::xWrite, Call::write>,
    ask<&Io::xTruncate, Call::truncate>,
    sync,
    ask<&Io::xFileSize, Call::size>,
    ask<&Io::xLock, Call::lock>,
    pass<&Io::xUnlock>,
    pass<&Io::xCheckReservedLock>,
    pass<&Io::xFileControl>,
    pass<&Io::xSectorSize>,
    pass<&Io::xDeviceCharacteristics>,
    ask<&Io::xShmMap, Call::shm_map>,
    shm_lock,
    pass<&Io::xShmBarrier>,
    pass<&Io::xShmUnmap>,
    nullptr,
    nullptr,
};

inline sqlite3_vfs* const system = sqlite3_vfs_find("unix");

inline int open(sqlite3_vfs*, sqlite3_filename path, sqlite3_file* file, int flags, int* out) {
    file->pMethods = nullptr;
    int code = disk.ask((flags & SQLITE_OPEN_MAIN_DB) != 0 ? Call::open_store : Call::open);
    if (code == SQLITE_OK) code = system->xOpen(system, path, real(file), flags, out);
    if (code == SQLITE_OK) file->pMethods = &methods;
    return code;
}

inline int access(sqlite3_vfs*, const char* path, int flags, int* out) {
    const int code = disk.ask(Call::access);
    return code == SQLITE_OK ? system->xAccess(system, path, flags, out) : code;
}

inline int remove(sqlite3_vfs*, const char* path, int synced) {
    const int code = disk.ask(Call::remove);
    return code == SQLITE_OK ? system->xDelete(system, path, synced) : code;
}

inline int sleep(sqlite3_vfs*, int microseconds) {
    milliseconds += microseconds / 1000;
    return microseconds;
}

inline const bool registered = [] {
    static sqlite3_vfs vfs = *system;
    vfs.szOsFile += static_cast<int>(sizeof(sqlite3_file));
    vfs.zName = "disk";
    vfs.xOpen = open;
    vfs.xAccess = access;
    vfs.xDelete = remove;
    vfs.xSleep = sleep;
    return sqlite3_vfs_register(&vfs, 1) == SQLITE_OK;
}();

}  // namespace shim
}  // namespace store_test

// The C library's, for whatever else asks for a time.
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
    using store_test::milliseconds;
    if (clock != CLOCK_MONOTONIC_COARSE) return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    *now = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    return 0;
}

#endif
