#include "backend/lookup.h"

#include <stdlib.h>
#include <string.h>
#include <algorithm>

#include "util/convert.h"

namespace dot11 {

int32_t parse_number(char* text) {
    return AlphabeticToNumeric(text);
}

int32_t parse_non_negative(char* text) {
    const int32_t value = AlphabeticToNumeric(text);
    return value < 0 ? 0 : value;
}

int32_t parse_one_as_true(char* text) {
    return strcmp(text, "1") == 0 ? 1 : 2;
}

int32_t convert_and_release(ScratchText& scratch, Conversion convert) {
    const int32_t value = convert(scratch.text);
    release(scratch);
    return value;
}

uint32_t move_octets(ScratchText& scratch, uint8_t* field, uint32_t size) {
    const uint32_t length = std::min(scratch.length, size);
    memcpy(field, scratch.text, length);
    release(scratch);
    return length;
}

uint32_t move_text(ScratchText& scratch, char* field, uint32_t size) {
    const uint32_t length = std::min(scratch.length, size - 1);
    memcpy(field, scratch.text, length);
    field[length] = '\0';
    release(scratch);
    return length;
}

int32_t read_number(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch, Conversion convert,
                    int32_t absent) {
    return find_value(list, key, scratch) ? convert_and_release(scratch, convert) : absent;
}

namespace {

constexpr uint32_t mac_digits = 12;

// Truncates the text after its twelfth character other than ':', so that it fits the buffer without its separators.
void keep_mac_digits(char* text) {
    uint32_t digits = 0;
    while (*text && digits < mac_digits)
        if (*text++ != ':') ++digits;
    *text = '\0';
}

}  // namespace

bool read_mac_address(const char* interface, const StoreKey& key, ScratchText& scratch, uint8_t* octets) {
    const Answer answer(key, interface);
    if (!find_value(answer.list(), key, scratch)) {
        octets[0] = 0;
        return true;
    }
    auto* digits = static_cast<char*>(calloc(mac_digits + 1, 1));
    if (digits) {
        keep_mac_digits(scratch.text);
        SkipDelimiterInString(scratch.text, ':', digits);
        ConvertToHexValue(digits, mac_digits);
        memcpy(octets, digits, mac_digits / 2);
    }
    free(digits);
    release(scratch);
    return digits != nullptr;
}

}  // namespace dot11
