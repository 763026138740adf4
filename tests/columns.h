// The lines of columns.tsv, which says what the fields are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

struct CheckFact {
    enum Kind { none, range, one_of, octets, row_status } kind = none;
    int64_t lowest = 0, highest = 0;  // of a number, of the members, or of the count of octets
    std::set<int64_t> members;        // of `one_of`
    int64_t old_status = 0;           // of `row_status`
};

struct ColumnFact {
    std::string oid;  // below 1.2.840.10036
    std::string name, type, access, get, set;
    CheckFact check;
    bool has_rows = false;
    std::vector<std::string> rows;  // what follows the interface's index in the OID of a cell: "", or ".1" and so on
    std::vector<std::string> keys;  // "interface/mac"
    std::vector<std::string> defaults, stored,
        answers;  // one for each row; answers as in "INTEGER 100" and "STRING 30"

    bool is_answered() const { return get == "yes" || get == "always"; }
    bool is_answered_completely() const { return get != "no"; }  // with "dot11Answers complete"
    bool is_writable() const { return access == "read-write"; }
    std::string table() const;  // "1.1" of "1.1.1.12"
    uint32_t number() const;    // 12 of "1.1.1.12"
    // Whether the table's rows have a second index.
    bool has_second_index() const { return !rows.front().empty(); }
};

// All of them, in the order of the file.
const std::vector<ColumnFact>& column_facts();

// How many cells an interface has: in all its rows, columns with a value; and, of these, with a value from the store.
size_t answered_cells(bool completely = false);
size_t stored_cells();

// The number of a table's last column; the table as in "1.5".
uint32_t last_column(const std::string& table);
