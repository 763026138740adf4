#include "util/convert.h"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>
#include <algorithm>

namespace dot11 {

namespace {

// Lengths of texts travel as int32_t, and a text may have one component more than it has characters.
constexpr size_t longest_text = INT32_MAX - 1;

char* zeroed(size_t size) {
    return static_cast<char*>(calloc(size, 1));
}

enum class Component { stored, not_a_number, refused };

// Converts the `length` characters of one component.
//
// Quirk: a number whose lowest 8 bits are 0 must end in "0": 1280 is accepted, 256 refused.
Component convert_component(const char* text, size_t length, uint8_t* byte) {
    char token[24];
    if (length == 0 || length >= sizeof token) return Component::refused;
    memcpy(token, text, length);
    token[length] = '\0';

    const int32_t value = AlphabeticToNumeric(token);
    if (value == -1) return Component::not_a_number;
    *byte = static_cast<uint8_t>(value);
    return *byte == 0 && token[length - 1] != '0' ? Component::refused : Component::stored;
}

// Fills `bytes`, which must hold a byte for every dot of `text` and one more. `*count` is the number of bytes stored.
Component convert_components(const char* text, uint8_t* bytes, size_t* count) {
    for (*count = 0;; ++text) {
        const size_t length = strcspn(text, ".");
        const Component result = convert_component(text, length, &bytes[*count]);
        if (result != Component::stored) return result;
        ++*count;
        text += length;
        if (*text == '\0') return Component::stored;
    }
}

int upper_case_digit_value(char digit) {
    const auto code = static_cast<signed char>(digit);
    return code < ':' ? code - '0' : code - ('A' - 10);
}

bool ends_hex_text(char c) {
    return c == '\0' || c == ' ';
}

}  // namespace

int32_t GetIpAddrLen(const char* text, int32_t length) {
    return length > 0 ? static_cast<int32_t>(std::count(text, text + length, '.')) : 0;
}

int32_t ParseNumber(const char* text, int32_t length) {
    if (length <= 0) return 1;
    const char* const digits = *text == '-' || *text == '+' ? text + 1 : text;
    return std::all_of(digits, text + length, [](char c) { return c >= '0' && c <= '9'; });
}

uint32_t PowerOf(uint32_t base, int32_t exponent) {
    uint32_t power = 1;
    for (; exponent > 0; exponent >>= 1, base *= base) {
        if (exponent & 1) power *= base;
    }
    return power;
}

int32_t AlphabeticToNumeric(const char* text) {
    const size_t length = strlen(text);
    if (length > longest_text || !ParseNumber(text, static_cast<int32_t>(length))) return -1;

    uint32_t value = 0;
    for (const char* digit = *text == '-' || *text == '+' ? text + 1 : text; *digit != '\0'; ++digit) {
        value = value * 10 + static_cast<uint32_t>(*digit - '0');
    }
    return static_cast<int32_t>(*text == '-' ? 0 - value : value);
}

void StringReverse(char* buffer, int32_t length) {
    if (length <= 0) return;
    const auto size = static_cast<size_t>(length);
    char* const copy = zeroed(size + 1);
    if (!copy) return;
    memcpy(copy, buffer, size);
    std::reverse_copy(copy, copy + size, buffer);
    free(copy);
}

uint32_t ConvertToUnsignedInteger(const uint8_t* bytes, int32_t count) {
    uint32_t value = 0;
    for (int32_t i = 0; i < count; ++i)
        value = value << 8 | bytes[i];
    return value;
}

int32_t ConvertToOidOrIpFromString(uint8_t** bytes, const char* text, int32_t is_ip) {
    *bytes = nullptr;
    const size_t length = strlen(text);
    if (length > longest_text) return -1;
    const int32_t dots = GetIpAddrLen(text, static_cast<int32_t>(length));
    if (dots == 0) return -1;

    const size_t expected = static_cast<size_t>(dots) + (is_ip ? 1 : 0);
    *bytes = reinterpret_cast<uint8_t*>(zeroed(expected + 1));
    if (!*bytes) return -1;

    size_t stored = 0;
    const Component result = convert_components(is_ip ? text : text + 1, *bytes, &stored);
    if (result == Component::refused) {
        free(*bytes);
        *bytes = nullptr;
    }
    if (result != Component::stored) return -1;
    return stored == expected ? static_cast<int32_t>(stored) : 0;
}

char* ConvertToStringFromUnsignedInteger(const uint32_t* value, uint32_t* length) {
    char* const text = zeroed(20);
    if (!text) return nullptr;
    uint32_t digits = 0;
    uint32_t rest = *value;
    do {
        text[digits++] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    StringReverse(text, static_cast<int32_t>(digits));
    *length = digits;
    return text;
}

uint8_t* ConvertHexaToBinary(const char* text) {
    static uint8_t buffer[32];
    size_t at = 0;
    for (; at < sizeof buffer && !ends_hex_text(*text); ++at) {
        buffer[at] = static_cast<uint8_t>(upper_case_digit_value(*text++) * 16);
        if (ends_hex_text(*text)) break;
        buffer[at] = static_cast<uint8_t>(buffer[at] | upper_case_digit_value(*text++));
    }
    if (at + 1 < sizeof buffer) buffer[at + 1] = 0;
    return buffer;
}

void StringUpper(char* text) {
    while (*text != '\0') {
        ++text;
        *text = static_cast<char>(toupper(static_cast<unsigned char>(*text)));
    }
}

char* ConvertToHexValue(char* text, int32_t length) {
    // In place: no byte is written before both of its digits are read.
    for (int32_t i = 0; i < length / 2; ++i) {
        const int high = GetHexValue(static_cast<uint8_t>(text[2 * i]));
        const int low = GetHexValue(static_cast<uint8_t>(text[2 * i + 1]));
        text[i] = static_cast<char>(high * 16 | low);
    }
    return text;
}

uint8_t GetHexValue(uint8_t character) {
    if (character >= '0' && character <= '9') return static_cast<uint8_t>(character - '0');
    if (character >= 'A' && character <= 'F') return static_cast<uint8_t>(character - 'A' + 10);
    if (character >= 'a' && character <= 'f') return static_cast<uint8_t>(character - 'a' + 10);
    return character;
}

void SkipDelimiterInString(const char* source, char delimiter, char* destination) {
    std::remove_copy(source, source + strlen(source), destination, delimiter);
}

void ConvertToStringFromHex(char* destination, const uint8_t* source, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        *destination++ = static_cast<char>(source[i] >> 4);
        *destination++ = static_cast<char>(source[i] & 0x0F);
    }
}

char* ConvertToMacAddrFromString(char* text, int32_t length) {
    char rewritten[24];
    if (length > static_cast<int32_t>(sizeof rewritten) - 2) return text;
    char* end = rewritten;
    for (int32_t i = 0; i < length; i += 2) {
        *end++ = ':';
        *end++ = text[i];
    }
    *end = '\0';
    // strlen, because a NUL among the characters ends the copy, too.
    return static_cast<char*>(memcpy(text, rewritten, strlen(rewritten) + 1));
}

}  // namespace dot11
