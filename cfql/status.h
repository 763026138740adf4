// How an operation on the store ended.
#pragma once

#include <stdint.h>

namespace cfql {

enum class Status : uint8_t {
    ok,
    end,            // of an iteration
    not_found,      // no such object or attribute
    refused,        // the text breaks a limit: see ..._error() in store_limits.h
    absent,         // no store file at the path
    exists,         // create() found a store
    not_a_store,    // a file of another kind
    wrong_version,  // a store of a later release
    old_mode,       // a store with a write-ahead log, which has to be converted
    obstructed,     // a file does not belong beside the store: PATH-wal, or a PATH-journal that is not a regular file
    interrupted,    // a write was interrupted, and this process may not undo it: opening for writing does
    damaged,        // the file's structure or a checksum is wrong
    too_large,      // the file is larger than a store may be
    denied,         // the file or its directory may not be opened
    read_only,      // the connection, the file or the file system does not allow writing
    busy,           // another process kept the store locked for the whole time-out
    full,           // no space left on the file system, or in the store
    io_error,       // the medium failed
    no_memory,
};

// One line without a full stop, for a message of the form "PATH: <line>".
const char* describe(Status status);

}  // namespace cfql
