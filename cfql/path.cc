#include "path.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

namespace cfql {

const char* store_path() {
    const char* path = secure_getenv("CFQL_STORE");
    return path && *path != '\0' ? path : default_store_path;
}

bool literal_path(const char* path, char (&out)[PATH_MAX]) {
    const int size = snprintf(out, sizeof out, "%s%s", path[0] == '/' ? "" : "./", path);
    return size > 0 && static_cast<size_t>(size) < sizeof out;
}

namespace {

int64_t nanoseconds(const struct timespec& time) {
    return int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
}

}  // namespace

FileState state_of(const struct stat& file) {
    return {file.st_dev, file.st_ino, file.st_size, nanoseconds(file.st_mtim), nanoseconds(file.st_ctim)};
}

Status examine_path(const char* path, FileState& state) {
    struct stat file;
    if (stat(path, &file) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return Status::absent;
        return errno == EACCES ? Status::denied : Status::io_error;
    }
    state = state_of(file);
    return S_ISREG(file.st_mode) ? Status::ok : Status::not_a_store;
}

bool is_empty(const char* path) {
    struct stat file;
    return stat(path, &file) == 0 && S_ISREG(file.st_mode) && file.st_size == 0;
}

bool is_regular_or_absent(const char* path) {
    struct stat file;
    return lstat(path, &file) != 0 || S_ISREG(file.st_mode);
}

bool is_obstructed(const char* path) {
    char beside[PATH_MAX + 16];
    struct stat file;
    snprintf(beside, sizeof beside, "%s-wal", path);
    if (lstat(beside, &file) == 0) return true;
    snprintf(beside, sizeof beside, "%s-journal", path);
    return !is_regular_or_absent(beside);
}

}  // namespace cfql
