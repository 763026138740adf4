// Families of column accessors. They work on a row as the agent holds it: a heap copy, its data context.
//
// A family that copies has a static buffer for each column.
#pragma once

#include <stdint.h>
#include <string.h>
#include <algorithm>

#include "access/columns.h"
#include "util/error_status.h"

namespace dot11 {

template <class Member>
struct MemberOf;
template <class R, class F>
struct MemberOf<F R::*> {
    using Row = R;
    using Field = F;
};

template <auto member>
using RowOf = typename MemberOf<decltype(member)>::Row;
template <auto member>
using FieldOf = typename MemberOf<decltype(member)>::Field;

template <auto member>
FieldOf<member>& field(void* row) {
    return static_cast<RowOf<member>*>(row)->*member;
}

// An integer, copied.
template <auto member>
void* word(void* row, size_t* length) {
    static FieldOf<member> value;
    static_assert(sizeof value == 4);
    value = field<member>(row);
    *length = sizeof value;
    return &value;
}

// An integer without a copy.
template <auto member>
void* word_in_place(void* row, size_t* length) {
    static_assert(sizeof(FieldOf<member>) == 4);
    *length = sizeof(FieldOf<member>);
    return &field<member>(row);
}

// As many octets as the length field says, copied.
template <auto member, auto length_member>
void* counted_octets(void* row, size_t* length) {
    static FieldOf<member> octets;
    *length = std::min<size_t>(field<length_member>(row), sizeof octets);
    memcpy(octets, field<member>(row), *length);
    return octets;
}

// The same without a copy.
template <auto member, auto length_member>
void* counted_octets_in_place(void* row, size_t* length) {
    *length = std::min<size_t>(field<length_member>(row), sizeof(FieldOf<member>));
    return field<member>(row);
}

// A fixed number of octets, copied. The buffer is a multiple of 32 bits, padded with zeroes.
template <auto member, size_t count>
void* fixed_octets(void* row, size_t* length) {
    static uint8_t octets[(count + 4) / 4 * 4];
    static_assert(count <= sizeof(FieldOf<member>));
    memcpy(octets, field<member>(row), count);
    *length = count;
    return octets;
}

// The same integer for every row. The member distinguishes columns that have the same constant.
template <auto member, uint32_t constant>
void* constant_word(size_t* length) {
    static uint32_t value = constant;
    *length = sizeof value;
    return &value;
}

// The same octets for every row, copied: a text without its terminator. The member is as above.
template <auto member, size_t size>
void* constant_octets(const char (&text)[size], size_t* length) {
    static uint8_t octets[128];
    static_assert(size - 1 <= sizeof octets);
    memcpy(octets, text, size - 1);
    *length = size - 1;
    return octets;
}

// Stores an integer into the row and nowhere else.
template <auto member>
int store_word(void* row, const void* value) {
    static_assert(sizeof(FieldOf<member>) == 4);
    memcpy(&field<member>(row), value, 4);
    return no_error;
}

// Stores a fixed number of octets into the row and nowhere else.
template <auto member, size_t count>
int store_octets(void* row, const void* value) {
    static_assert(count <= max_octets_read);
    static_assert(count <= sizeof(FieldOf<member>));
    memcpy(field<member>(row), value, count);
    return no_error;
}

// For every column of a table with rows: the configuration cannot be changed over the network.
inline int refuse_write() {
    return not_writable;
}

}  // namespace dot11
