// What the backends share: from a key of the configuration store to a field of a row.
#pragma once

#include <cstdint>

#include "store/answer.h"

// Turns a value's text into the number that a row holds. May change the text.
using Conversion = int32_t (*)(char* text);

int32_t number(char* text);               // decimal; -1 for what is no number
int32_t number_not_negative(char* text);  // decimal; 0 for negative numbers and for what is no number
int32_t true_when_one(char* text);        // TruthValue (RFC 2579): 1 for "1", 2 for any other text

// One key of an interface's own object, and the field that it fills: `absent` when the key is missing or empty.
template <class Row>
struct InterfaceKey {
    const char* key;
    ScratchText* scratch;
    int32_t Row::*field;
    Conversion convert;
    int32_t absent;
};

// Converts a value that was found, and releases it.
int32_t take_number(ScratchText& scratch, Conversion convert);

// Copies a value that was found into a field of `size` octets, and releases it. Returns how many octets of it the field
// holds: a longer text is clipped. `take_text` ends the field with a terminator, `take_octets` adds none.
uint32_t take_octets(ScratchText& scratch, uint8_t* field, uint32_t size);
uint32_t take_text(ScratchText& scratch, char* field, uint32_t size);

// The number under `key` in the answer `list`, or `absent`.
int32_t converted(const cfqlquery_node* list, const char* key, ScratchText& scratch, Conversion convert,
                  int32_t absent);

template <class Row>
void read_interface_key(Row& row, const char* interface, const InterfaceKey<Row>& key) {
    const Answer answer("interface", interface, key.key);
    row.*key.field = converted(answer.list(), key.key, *key.scratch, key.convert, key.absent);
}

template <class Row, class Keys>
void read_interface_keys(Row& row, const char* interface, const Keys& keys) {
    for (const InterfaceKey<Row>& key : keys)
        read_interface_key(row, interface, key);
}

// The look-up in one answer: find_value, or find_value_or_last.
using Find = bool (*)(const cfqlquery_node* list, const char* key, ScratchText& scratch);

// Asks for the name of an interface's BSS, which is left in `bss` for the caller to release.
bool find_bss(const char* interface, ScratchText& bss);

// Asks for the name of a BSS's radio, which is left in `radio` for the caller to release. Releases `bss`.
bool find_radio_of_bss(ScratchText& bss, ScratchText& radio, Find find = find_value);

// Asks for a value of a radio, which is left in `value` for the caller to release. Releases `radio`.
bool find_value_of_radio(ScratchText& radio, const char* key, ScratchText& value);

// Follows an interface's answer for "bss" to the name of the BSS's radio, which is left in `radio` for the caller to
// release. False when either link is missing.
bool find_radio(const cfqlquery_node* bss_answer, ScratchText& bss, ScratchText& radio, Find find = find_value);

// A text of the radio behind an interface, and the field that it fills, with its length.
template <class Row, uint32_t size>
struct RadioText {
    const char* key;
    ScratchText* scratch;
    char (Row::*text)[size];
    uint32_t Row::*length;
};

// When the text or a link to it is missing, the row gets an empty text and the length 1, so that one octet 0 is served.
template <class Row, uint32_t size>
void read_radio_text(Row& row, const cfqlquery_node* bss_answer, ScratchText& bss, ScratchText& radio,
                     const RadioText<Row, size>& key, Find find = find_value) {
    char* text = row.*key.text;
    text[0] = '\0';
    row.*key.length = 1;
    if (find_radio(bss_answer, bss, radio, find) && find_value_of_radio(radio, key.key, *key.scratch))
        row.*key.length = take_text(*key.scratch, text, size);
}

// Writes a number under `key` of the radio behind an interface. Returns setTableData's result, 0 when the interface has
// no BSS or the BSS no radio, `without_memory` when there is none for a text.
int32_t write_radio_number(uint32_t interface_index, const char* key, uint32_t value, int32_t without_memory);

// The six octets under `key` of the interface, into `octets`; when absent only the first is set, to 0. Text is taken
// without its ':' separators; missing digits count as 0, surplus ones are ignored. False without memory for the working
// buffer, and then nothing is changed.
bool read_mac_address(const char* interface, const char* key, ScratchText& scratch, uint8_t* octets);

// Copies a row out of a table's array; positions past its last record are refused. Returns 1, or 0 when refused.
template <class Row, uint32_t capacity>
int copy_row(const Row (&rows)[capacity], uint32_t position, void* destination) {
    if (position >= capacity) return 0;
    *static_cast<Row*>(destination) = rows[position];
    return 1;
}
