#include "backend/keys.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "store/write.h"
#include "util/convert.h"

int32_t number(char* text) {
    return AlphabeticToNumeric(text);
}

int32_t number_not_negative(char* text) {
    const int32_t value = AlphabeticToNumeric(text);
    return value < 0 ? 0 : value;
}

int32_t true_when_one(char* text) {
    return strcmp(text, "1") == 0 ? 1 : 2;
}

int32_t take_number(ScratchText& scratch, Conversion convert) {
    const int32_t value = convert(scratch.text);
    release(scratch);
    return value;
}

uint32_t take_octets(ScratchText& scratch, uint8_t* field, uint32_t size) {
    const uint32_t length = std::min(scratch.length, size);
    memcpy(field, scratch.text, length);
    release(scratch);
    return length;
}

uint32_t take_text(ScratchText& scratch, char* field, uint32_t size) {
    const uint32_t length = std::min(scratch.length, size - 1);
    memcpy(field, scratch.text, length);
    field[length] = '\0';
    release(scratch);
    return length;
}

int32_t converted(const cfqlquery_node* list, const char* key, ScratchText& scratch, Conversion convert,
                  int32_t absent) {
    return find_value(list, key, scratch) ? take_number(scratch, convert) : absent;
}

bool find_bss(const char* interface, ScratchText& bss) {
    const Answer answer("interface", interface, "bss");
    return find_value(answer.list(), "bss", bss);
}

bool find_radio_of_bss(ScratchText& bss, ScratchText& radio, Find find) {
    const Answer answer("bss", bss.text, "radio");
    release(bss);
    return find(answer.list(), "radio", radio);
}

bool find_value_of_radio(ScratchText& radio, const char* key, ScratchText& value) {
    const Answer answer("radio", radio.text, key);
    release(radio);
    return find_value(answer.list(), key, value);
}

bool find_radio(const cfqlquery_node* bss_answer, ScratchText& bss, ScratchText& radio, Find find) {
    return find(bss_answer, "bss", bss) && find_radio_of_bss(bss, radio, find);
}

int32_t write_radio_number(uint32_t interface_index, const char* key, uint32_t value, int32_t without_memory) {
    const InterfaceName name(interface_index);
    if (!name.text()) return without_memory;
    ScratchText bss = {};
    ScratchText radio = {};
    if (!find_bss(name.text(), bss) || !find_radio_of_bss(bss, radio)) return 0;
    const int32_t result = write_number("radio", radio.text, key, value, without_memory);
    release(radio);
    return result;
}

namespace {

constexpr uint32_t mac_digits = 12;

// Ends the text behind its twelfth character that is no ':', so that it fits the buffer without its separators.
void keep_mac_digits(char* text) {
    uint32_t digits = 0;
    while (*text && digits < mac_digits)
        if (*text++ != ':') ++digits;
    *text = '\0';
}

}  // namespace

bool read_mac_address(const char* interface, const char* key, ScratchText& scratch, uint8_t* octets) {
    const Answer answer("interface", interface, key);
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
