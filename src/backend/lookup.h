// From a key of the store to a field of a row.
#pragma once

#include <stdint.h>

#include "store/answer.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey mac = {"interface", "mac"};
}

// Turns a value's text into the number that a row holds. It may change the text.
using Conversion = int32_t (*)(char* text);

int32_t parse_number(char* text);        // decimal; -1 if it is not a number
int32_t parse_non_negative(char* text);  // decimal; 0 if it is negative or not a number
int32_t parse_one_as_true(char* text);   // TruthValue (RFC 2579): 1 for "1", 2 for any other text

// A key of an interface's own object and the field that it fills; `absent` is the value if the key is missing or empty.
template <class Row>
struct InterfaceKey {
    const StoreKey& key;
    ScratchText* scratch;
    int32_t Row::*field;
    Conversion convert;
    int32_t absent;
};

// Converts a value that was found and releases it.
int32_t convert_and_release(ScratchText& scratch, Conversion convert);

// Moves a value that was found into a field of `size` octets. Returns how many octets the field holds: a longer text is
// truncated. `move_text` terminates the field, `move_octets` does not.
uint32_t move_octets(ScratchText& scratch, uint8_t* field, uint32_t size);
uint32_t move_text(ScratchText& scratch, char* field, uint32_t size);

// The number that the answer `list` has for `key`, or `absent`.
int32_t read_number(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch, Conversion convert,
                    int32_t absent);

template <class Row>
void read_interface_key(Row& row, const char* interface, const InterfaceKey<Row>& key) {
    const Answer answer(key.key, interface);
    row.*key.field = read_number(answer.list(), key.key, *key.scratch, key.convert, key.absent);
}

template <class Row, class Keys>
void read_interface_keys(Row& row, const char* interface, const Keys& keys) {
    for (const InterfaceKey<Row>& key : keys)
        read_interface_key(row, interface, key);
}

// Reads the MAC address under `key` of the interface into the six `octets`. ':' is skipped, missing digits count as 0,
// surplus ones are ignored. False when out of memory; then nothing is changed.
//
// Quirk: if the key is absent, only the first octet is set, to 0.
bool read_mac_address(const char* interface, const StoreKey& key, ScratchText& scratch, uint8_t* octets);

}  // namespace dot11
