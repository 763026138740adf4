// From an interface to its radio: the interface names its BSS, and the BSS its radio.
#pragma once

#include <stdint.h>

#include "backend/lookup.h"
#include "store/answer.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey bss = {"interface", "bss"};
inline constexpr StoreKey radio = {"bss", "radio"};
inline constexpr StoreKey manufacturer_product_name = {"radio", "manufacturer-product-name"};
}  // namespace key

// How a link is found in an answer: find_value, or find_value_or_last.
using Find = bool (*)(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch);

// Asks for the name of an interface's BSS, which is left in `bss` for the caller to release.
bool find_bss(const char* interface, ScratchText& bss);

// Asks for the name of a BSS's radio, which is left in `radio` for the caller to release. Releases `bss`.
bool find_radio_of_bss(ScratchText& bss, ScratchText& radio, Find find = find_value);

// Asks for a value of a radio, which is left in `value` for the caller to release. Releases `radio`.
bool find_value_of_radio(ScratchText& radio, const StoreKey& key, ScratchText& value);

// Follows an interface's answer for "bss" to the name of the BSS's radio, which is left in `radio` for the caller to
// release. False if either link is missing.
bool find_radio(const cfqlquery_node* bss_answer, ScratchText& bss, ScratchText& radio, Find find = find_value);

// A text of the radio behind an interface, and the field that it fills, with its length.
template <class Row, uint32_t size>
struct RadioText {
    const StoreKey& key;
    ScratchText* scratch;
    char (Row::*text)[size];
    uint32_t Row::*length;
};

// If the text or a link to it is missing, the row gets an empty text and the length 1, so that a single zero octet is
// served.
template <class Row, uint32_t size>
void read_radio_text(Row& row, const cfqlquery_node* bss_answer, ScratchText& bss, ScratchText& radio,
                     const RadioText<Row, size>& key, Find find = find_value) {
    char* text = row.*key.text;
    text[0] = '\0';
    row.*key.length = 1;
    if (find_radio(bss_answer, bss, radio, find) && find_value_of_radio(radio, key.key, *key.scratch))
        row.*key.length = move_text(*key.scratch, text, size);
}

// Writes a number under `key` of the radio behind an interface. Returns setTableData's result, 0 if the interface has
// no BSS or the BSS no radio, `out_of_memory` if a text cannot be allocated.
int32_t write_radio_number(uint32_t interface_index, const StoreKey& key, uint32_t value, int32_t out_of_memory);

}  // namespace dot11
