// A disk that fails on demand and a clock that stands still. A program that includes this has `disk` between SQLite and
// the file system, in the library as well, and sets the library's clock. No file is really synced.
#ifndef TESTS_CFQL_LIBRARY_DISK_H
#define TESTS_CFQL_LIBRARY_DISK_H

#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <utility>

namespace store_test {

enum class Call : std::uint8_t {
    open_store,
    open,  // the journal
    access,
    remove,
    read,
    write,
    truncate,
    sync,
    sync_directory,
    size,
    lock
};

// What a call that opens, writes, truncates, syncs or removes a file is about.
struct Change {
    const char* path = nullptr;
    std::string_view octets;
    std::int64_t place = 0;  // of the octets, or the new end
};

inline struct Disk {
    // What becomes of the `nth` call of its kind: SQLITE_OK lets it through.
    using Fate = std::function<int(Call call, int nth)>;

    Fate fate;
    std::map<Call, int> calls;
    int failures = 0;
    std::function<void(Call call, const Change& change)> witness = nullptr;  // of what is let through, just before

    void become(Fate next) { *this = {std::move(next), {}, 0, nullptr}; }
    void mend() { fate = nullptr; }
    int ask(Call call, const Change& change = {}) {
        const int nth = ++calls[call];
        const int code = fate ? fate(call, nth) : SQLITE_OK;
        if (code != SQLITE_OK) ++failures;
        if (code == SQLITE_OK && witness) witness(call, change);
        return code;
    }
} disk;

inline std::int64_t milliseconds = 1000000;

namespace shim {

using Io = sqlite3_io_methods;

struct File : sqlite3_file {
    const char* path;
};

inline const char* path(sqlite3_file* file) {
    return static_cast<File*>(file)->path;
}

// SQLite leaves room for the file system's own file behind the one that it sees.
inline sqlite3_file* real(sqlite3_file* file) {
    return static_cast<File*>(file) + 1;
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

inline int write(sqlite3_file* file, const void* octets, int count, sqlite3_int64 place) {
    const std::string_view written(static_cast<const char*>(octets), static_cast<std::size_t>(count));
    const int code = disk.ask(Call::write, {path(file), written, place});
    return code == SQLITE_OK ? pass<&Io::xWrite>(file, octets, count, place) : code;
}

inline int truncate(sqlite3_file* file, sqlite3_int64 size) {
    const int code = disk.ask(Call::truncate, {path(file), {}, size});
    return code == SQLITE_OK ? pass<&Io::xTruncate>(file, size) : code;
}

inline int sync(sqlite3_file* file, int flags) {
    const int code = disk.ask(Call::sync, {path(file), {}, 0});
    return code == SQLITE_OK ? pass<&Io::xSync>(file, flags) : code;
}

// The end of every sync, of SQLite's and of the store's own.
inline int sync(int file) {
    struct stat entry;
    const bool directory = fstat(file, &entry) == 0 && S_ISDIR(entry.st_mode);
    return !directory || disk.ask(Call::sync_directory) == SQLITE_OK ? 0 : -1;
}

inline constexpr Io methods = {
    1,
    pass<&Io::xClose>,
    ask<&Io::xRead, Call::read>,
    write,
    truncate,
    sync,
    ask<&Io::xFileSize, Call::size>,
    ask<&Io::xLock, Call::lock>,
    pass<&Io::xUnlock>,
    pass<&Io::xCheckReservedLock>,
    pass<&Io::xFileControl>,
    pass<&Io::xSectorSize>,
    pass<&Io::xDeviceCharacteristics>,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

inline sqlite3_vfs* const system = sqlite3_vfs_find("unix");

inline int open(sqlite3_vfs*, sqlite3_filename path, sqlite3_file* file, int flags, int* out) {
    file->pMethods = nullptr;
    static_cast<File*>(file)->path = path;
    int code = disk.ask((flags & SQLITE_OPEN_MAIN_DB) != 0 ? Call::open_store : Call::open, {path, {}, 0});
    if (code == SQLITE_OK) code = system->xOpen(system, path, real(file), flags, out);
    if (code == SQLITE_OK) file->pMethods = &methods;
    return code;
}

inline int access(sqlite3_vfs*, const char* path, int flags, int* out) {
    const int code = disk.ask(Call::access);
    return code == SQLITE_OK ? system->xAccess(system, path, flags, out) : code;
}

inline int remove(sqlite3_vfs*, const char* path, int synced) {
    const int code = disk.ask(Call::remove, {path, {}, 0});
    return code == SQLITE_OK ? system->xDelete(system, path, synced) : code;
}

inline const bool registered = [] {
    static sqlite3_vfs vfs = *system;
    vfs.szOsFile += static_cast<int>(sizeof(File));
    vfs.zName = "disk";
    vfs.xOpen = open;
    vfs.xAccess = access;
    vfs.xDelete = remove;
    return sqlite3_vfs_register(&vfs, 1) == SQLITE_OK;
}();

}  // namespace shim
}  // namespace store_test

// The C library's, for whatever else asks for a time.
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
    using store_test::milliseconds;
    if (clock != CLOCK_MONOTONIC_COARSE && clock != CLOCK_MONOTONIC)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    *now = {milliseconds / 1000, milliseconds % 1000 * 1000000};
    return 0;
}

// Waiting for a lock passes the time.
extern "C" int nanosleep(const timespec* pause, timespec*) {
    store_test::milliseconds += pause->tv_nsec / 1000000;
    return 0;
}

extern "C" int fsync(int file) {
    return store_test::shim::sync(file);
}

extern "C" int fdatasync(int file) {
    return store_test::shim::sync(file);
}

#endif
