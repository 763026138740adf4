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

Status examine_path(const char* path) {
    struct stat file;
    if (stat(path, &file) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return Status::absent;
        return errno == EACCES ? Status::denied : Status::io_error;
    }
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
