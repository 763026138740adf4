// Creating a store.
#include <errno.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "database.h"
#include "format.h"

namespace cfql {
namespace {

// Does not open an existing file: closing it again would drop the locks that this process may hold on it.
Status make_file(const char* path) {
    const int file = ::open(path, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0640);
    if (file < 0) {
        if (errno == EEXIST) return Status::ok;
        if (errno == ENOENT || errno == ENOTDIR) return Status::absent;
        if (errno == EROFS) return Status::read_only;
        if (errno == ENOSPC || errno == EDQUOT) return Status::full;
        return errno == EACCES ? Status::denied : Status::io_error;
    }
    const bool moded = fchmod(file, 0640) == 0;  // whatever the umask
    return close(file) == 0 && moded ? Status::ok : Status::io_error;
}

Status sync_directory(const char* path) {
    char directory[PATH_MAX];
    snprintf(directory, sizeof directory, "%s", path);
    *(strrchr(directory, '/') + 1) = '\0';
    const int handle = ::open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return Status::io_error;
    const bool synced = fsync(handle) == 0;
    close(handle);
    return synced ? Status::ok : Status::io_error;
}

}  // namespace

Status Database::create(const char* path) {
    char file[PATH_MAX];
    Status status = literal_path(path, file) ? make_file(file) : Status::absent;
    if (status == Status::ok) status = open_file(file, SQLITE_OPEN_READWRITE, writer_wait_ms);
    if (status == Status::ok) status = empty_file();
    if (status == Status::ok) status = build();
    if (status != Status::ok) rollback();
    close();
    return status == Status::ok ? sync_directory(file) : status;
}

// Whether the file is still empty, as create() made it. The query takes the lock, and undoes an interrupted write.
Status Database::empty_file() {
    int64_t kind = 0;
    FirstPage page;
    const char* fault = nullptr;
    Status status = number("PRAGMA application_id", kind);
    if (status == Status::ok) status = read_page(page);
    if (status != Status::ok || page.file_size == 0) return status;
    return examine_first_page(page, fault) == Status::not_a_store ? Status::not_a_store : Status::exists;
}

Status Database::build() {
    char marks[128];
    snprintf(marks, sizeof marks, "PRAGMA application_id=%u; PRAGMA user_version=%u", application_id, format_version);
    Status status = run("PRAGMA page_size=1024");
    if (status == Status::ok) status = prepare_to_write();
    if (status == Status::ok) status = run("BEGIN IMMEDIATE");
    if (status == Status::ok) status = empty_file();  // another process may have been faster
    for (const SchemaEntry& entry : schema) {
        if (status == Status::ok) status = run(entry.sql);
    }
    if (status == Status::ok) status = run(marks);
    return status == Status::ok ? commit() : status;
}

}  // namespace cfql
