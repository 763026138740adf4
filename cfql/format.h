// The first page of a store's file, with the header and the schema, which is examined before SQLite may see it.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "status.h"

namespace cfql {

inline constexpr uint32_t application_id = 0x6366716c;  // "cfql"
inline constexpr uint32_t format_version = 1;
inline constexpr size_t page_size = 1024;
inline constexpr int64_t file_limit = 4 << 20;  // octets
inline constexpr int64_t page_limit = file_limit / int64_t{page_size};
inline constexpr size_t counter_offset = 24;  // of the change counter: 4 octets, most significant first

// The schema, in the order in which it is created. Texts are BLOBs: octets that SQLite does not interpret.
struct SchemaEntry {
    const char *type, *name, *table, *sql;
};
inline constexpr SchemaEntry schema[] = {
    {"table", "attribute", "attribute",
     "CREATE TABLE attribute(object INTEGER NOT NULL, key BLOB NOT NULL, value BLOB NOT NULL, crc INTEGER NOT NULL, "
     "PRIMARY KEY(object, key)) WITHOUT ROWID"},
    {"table", "object", "object",
     "CREATE TABLE object(id INTEGER PRIMARY KEY, tab BLOB NOT NULL, name BLOB NOT NULL, crc INTEGER NOT NULL)"},
    {"index", "object_name", "object", "CREATE INDEX object_name ON object(tab, name)"},
};

// The unsigned number in `size` octets, most significant first.
constexpr uint32_t number_at(const unsigned char* octets, size_t size) {
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i)
        number = (number << 8) | octets[i];
    return number;
}

struct FirstPage {
    int64_t file_size = 0;
    unsigned char octets[page_size] = {};  // zeroes where the file is shorter
};

// Whether the file says that its latest changes lie in a write-ahead log.
constexpr bool has_log_mode(const FirstPage& page) {
    return page.octets[18] == 2 || page.octets[19] == 2;
}

// ok: a store of this version within the size limit, whose schema is exactly the one above and fits in one page, and
// whose trees have distinct roots. `fault` names what is damaged, or is null.
Status examine_first_page(const FirstPage& page, const char*& fault);

}  // namespace cfql
