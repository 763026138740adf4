// What is served of a table and how its rows are read, without a word of the agent's: for the agent, and for programs
// that want to know what it would answer.
//
// A program that links these objects (dot11_tables) brings what they call: the four calls of cfqlquery.h, and
// check_rowstatus_transition, which is Net-SNMP's and which only the check of a SET calls. It may bring an
// if_nametoindex of its own. tests/unit/tables_test.cc is such a program, and shows how rows are read.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <span>

#include "checks/checks.h"
#include "store/answer.h"

namespace dot11 {

extern "C" {

// The column's value in a row: a pointer to its octets, never null, and their number in `*length`. The value of an
// integer column is a 32-bit integer in host order. The octets stand in the row or in a buffer of the column's own, and
// are good until the row changes or the column's next call.
using GetColumn = void*(void* row, size_t* length);

// Writes a value, which its check has accepted, into a row; an error-status, 0 when it was stored. `value` is a 32-bit
// integer in host order or octets. The length is not used.
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
    // Quirk: not at all. The handler returns at once and leaves the later requests of its list untouched, unless the
    // operator has asked for complete answers: then the first of these is answered as when_present, the other one has
    // no instance, and both go on to the next request.
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
    Check* check;    // null for a column that is read-only
    SetColumn* set;  // null for a column that is read-only
};

// Whether a GET has a value, with complete answers and without.
constexpr bool is_answered(const Column& column, bool complete) {
    return column.answered == Answered::complete_only ? complete : column.answered != Answered::never;
}

// Rows of most tables are read from the store as a whole: `entries` finds the interfaces, `table_data` fills the rows,
// `entry_by_index` copies the row at a position below `index_count` times `rows_per_interface`. The routines return 0
// for failure, and then there is no row.
//
// The tables of rates hand out one row after the other instead, with `row_by_index`: see
// GetSuppDataRatesRxTableByIndex. Tables without rows have none of these routines.
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
