#include "status.h"

namespace cfql {

const char* describe(Status status) {
    switch (status) {
        case Status::ok:
            return "no error";
        case Status::end:
            return "the end is reached";
        case Status::not_found:
            return "no such object or key";
        case Status::refused:
            return "a text is not allowed";
        case Status::absent:
            return "there is no store";
        case Status::exists:
            return "there is a store already";
        case Status::not_a_store:
            return "the file is not a configuration store";
        case Status::wrong_version:
            return "the store has the format of another release";
        case Status::old_mode:
            return "the store has a write-ahead log; convert it, as root: sqlite3 FILE 'PRAGMA journal_mode=TRUNCATE'";
        case Status::obstructed:
            return "a -wal, or a -journal that is no regular file, lies beside the store; remove it";
        case Status::interrupted:
            return "a write was interrupted; run cfql check as root";
        case Status::damaged:
            return "the store is damaged";
        case Status::too_large:
            return "the store is larger than 4 MiB";
        case Status::denied:
            return "the store may not be opened";
        case Status::read_only:
            return "the store may not be written";
        case Status::busy:
            return "another process holds the store locked";
        case Status::full:
            return "the file system is full, or the store has reached its 4 MiB";
        case Status::io_error:
            return "the file system failed";
        case Status::no_memory:
            return "memory is short";
    }
    return "unknown failure";
}

}  // namespace cfql
