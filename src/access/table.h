// What is served of a table and how its rows are read, without the agent's headers: for the agent, and for programs
// that want to know what it would answer.
//
// A program that links these objects (dot11_tables) provides what they call: the four calls of cfqlquery.h, and
// Net-SNMP's check_rowstatus_transition, which only the check of a SET calls. It may provide its own if_nametoindex.
// tests/unit/tables_test.cc is such a program, and shows how to read rows.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <span>

#include "checks/checks.h"
#include "store/answer.h"

namespace dot11 {

extern "C" {

// The column's value in a row: a pointer to its octets, never null, and their number in `*length`. The value of an
// integer column is a 32-bit integer in host byte order. The octets are in the row or in the column's own buffer, and
// valid until the row changes or the column's next call.
using GetColumn = void*(void* row, size_t* length);

// Writes a value, which its check has accepted, into a row. Returns an error-status; 0 if the value was stored. `value`
// is a 32-bit integer in host byte order, or octets. `length` is not used.
using SetColumn = int(void* row, const void* value, size_t length);
}

// The most octets that a SetColumn reads.
constexpr size_t max_octets_read = 8;

// ASN.1 tag of an answer (RFC 2578).
enum class Type : uint8_t { integer = 2, octet_string = 4, counter = 65, gauge = 66 };

// How a GET answers a column.
enum class Answered : uint8_t {
    when_present,  // with the accessor's value, unless that is null
    always,        // with whatever the accessor returns
    // Quirk: not at all. The handler returns at once and leaves the later requests of its list untouched. But if the
    // operator has asked for complete answers, the first of these is answered as when_present, the other one has no
    // instance, and both go on to the next request.
    complete_only,
    never,
};

struct Column {
    uint32_t number;  // below the table's entry
    Type type;
    Answered answered;
    bool write_ends_handler;  // ACTION and UNDO return at once, as a GET does
    const char* name;
    // Keys of the store that the value comes from: none, one for all rows, or one for each second index from 1.
    std::span<const StoreKey> keys;
    GetColumn* get;
    Check* check;    // null for a read-only column
    SetColumn* set;  // null for a read-only column
};

// Whether a GET of the column has a value; `complete`: with complete answers.
constexpr bool is_answered(const Column& column, bool complete) {
    return column.answered == Answered::complete_only ? complete : column.answered != Answered::never;
}

// The rows of most tables are all read at once: `entries` finds the interfaces, `table_data` fills the rows, and
// `entry_by_index` copies the row at a position below `index_count` times `rows_per_interface`. The routines return 0
// on failure, and then there is no row.
//
// The tables of rates return one row after the other instead, with `row_by_index`: see GetSuppDataRatesRxTableByIndex.
// Tables without rows have none of these routines.
struct Table {
    const char* name;
    std::span<const Column> columns;  // in order and without gaps
    uint32_t indexes;                 // 1 or 2, all of type INTEGER
    size_t row_size;                  // octets; a row begins with its index values, 32 bits each

    int (*entries)(void) = nullptr;
    int (*table_data)(void) = nullptr;
    uint32_t (*index_count)(void) = nullptr;
    uint32_t rows_per_interface = 0;
    int (*entry_by_index)(uint32_t position, void* row) = nullptr;

    int (*row_by_index)(uint32_t group, int32_t* value_index, void* row) = nullptr;
};

}  // namespace dot11
