// The arrays of rows.
#pragma once

#include <stdint.h>

namespace dot11 {

// Copies a row out of a table's array; positions past its last record are refused. Returns 1, or 0 when refused.
template <class Row, uint32_t capacity>
int copy_row(const Row (&rows)[capacity], uint32_t position, void* destination) {
    if (position >= capacity) return 0;
    *static_cast<Row*>(destination) = rows[position];
    return 1;
}

}  // namespace dot11
