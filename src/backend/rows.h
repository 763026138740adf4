// The arrays of rows.
#pragma once

#include <cstdint>
#include <cstring>

namespace dot11 {

// Copies a row out of a table's array; positions past its last record are refused. Returns 1, or 0 when refused.
//
// memmove is a call, where gcc optimizing for size makes of an assignment a string instruction that takes a step for
// each word. The agent has every row copied for most of its questions.
template <class Row, uint32_t capacity>
int copy_row(const Row (&rows)[capacity], uint32_t position, void* destination) {
    if (position >= capacity) return 0;
    memmove(destination, &rows[position], sizeof(Row));
    return 1;
}

}  // namespace dot11
