// Feeds the conversions any text. The first byte of the input chooses the routine, the second its length or flag, and
// the rest is the text. Every buffer is a heap block of exactly the size that the routine's contract asks for, so that
// the address sanitizer sees any overrun; DEMAND says what holds for every result.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "demand.h"
#include "util/convert.h"

using namespace dot11;

namespace {

struct Input {
    uint8_t number;
    std::string text;  // may hold NULs

    // A length that the text has room for, or a negative one.
    int32_t length() const {
        const auto size = static_cast<int32_t>(text.size());
        return number == 255 ? -1 : number == 254 ? INT32_MIN : number == 253 ? size : std::min<int32_t>(number, size);
    }
    std::vector<char> characters() const { return {text.begin(), text.end()}; }
    std::vector<char> terminated() const { return {text.c_str(), text.c_str() + strlen(text.c_str()) + 1}; }
};

void count_dots(const Input& input) {
    const int32_t dots = GetIpAddrLen(input.characters().data(), input.length());
    DEMAND(dots >= 0 && dots <= std::max(input.length(), 0));
}

void parse(const Input& input) {
    const int32_t valid = ParseNumber(input.characters().data(), input.length());
    DEMAND(valid == 0 || valid == 1);
}

void to_number(const Input& input) {
    const std::vector<char> text = input.terminated();
    const auto length = static_cast<int32_t>(text.size() - 1);
    uint32_t sum = 0;
    for (int32_t i = length - 1, weight = 0; i >= 0; --i) {
        const char c = text[static_cast<size_t>(i)];
        if (c == '-') sum = 0 - sum;
        if (c >= '0' && c <= '9') sum += static_cast<uint32_t>(c - '0') * PowerOf(10, weight++);
    }
    const int32_t expected = ParseNumber(text.data(), length) ? static_cast<int32_t>(sum) : -1;
    DEMAND(AlphabeticToNumeric(text.data()) == expected);
}

void reverse(const Input& input) {
    std::vector<char> once = input.characters();
    StringReverse(once.data(), input.length());
    std::vector<char> expected = input.characters();
    std::reverse(expected.begin(), expected.begin() + std::max(input.length(), 0));
    DEMAND(once == expected);
}

void big_endian(const Input& input) {
    const std::vector<uint8_t> bytes(input.text.begin(), input.text.end());
    const uint32_t value = ConvertToUnsignedInteger(bytes.data(), input.length());
    if (input.length() > 0) DEMAND((value & 0xFF) == bytes[static_cast<size_t>(input.length() - 1)]);

    uint32_t digits = 0;
    char* const text = ConvertToStringFromUnsignedInteger(&value, &digits);
    DEMAND(text == std::to_string(value) && digits == strlen(text));
    free(text);
}

void dotted(const Input& input) {
    const std::vector<char> text = input.terminated();
    const int32_t is_ip = input.number & 1;
    uint8_t* bytes = nullptr;
    const int32_t result = ConvertToOidOrIpFromString(&bytes, text.data(), is_ip);
    const auto dots = static_cast<int32_t>(std::count(text.begin(), text.end(), '.'));
    DEMAND(result == -1 || result == 0 || result == dots + is_ip);
    DEMAND(bytes || result == -1);
    if (bytes) DEMAND(bytes[dots + is_ip] == 0 || result == 0);
    free(bytes);
}

void hex_to_static_buffer(const Input& input) {
    DEMAND(ConvertHexaToBinary(input.terminated().data()) == ConvertHexaToBinary(""));
}

void upper(const Input& input) {
    std::vector<char> text = input.terminated();
    const size_t length = text.size();
    StringUpper(text.data());
    DEMAND(text.back() == '\0' && strlen(text.data()) == length - 1 && text[0] == input.text.c_str()[0]);
}

void hex_in_place(const Input& input) {
    std::vector<char> text = input.characters();
    DEMAND(ConvertToHexValue(text.data(), input.length()) == text.data());
    const auto written = static_cast<size_t>(std::max(input.length() / 2, 0));
    DEMAND(std::equal(text.begin() + static_cast<long>(written), text.end(),
                      input.text.begin() + static_cast<long>(written)));
}

void skip_delimiter(const Input& input) {
    const std::vector<char> source = input.terminated();
    std::vector<char> destination(source.size() - 1);
    SkipDelimiterInString(source.data(), static_cast<char>(input.number), destination.data());
    DEMAND(input.number == 0 ||
           std::count(destination.begin(), destination.end(), static_cast<char>(input.number)) == 0);
}

void halves(const Input& input) {
    const std::vector<uint8_t> source(input.text.begin(), input.text.end());
    std::vector<char> destination(2 * static_cast<size_t>(std::max(input.length(), 0)));
    ConvertToStringFromHex(destination.data(), source.data(), input.length());
    for (size_t i = 0; i < destination.size(); i += 2)
        DEMAND(destination[i] * 16 + destination[i + 1] == source[i / 2]);
}

void mac_address(const Input& input) {
    std::vector<char> text = input.characters();
    const int32_t length = input.length();
    if (length <= 22) text.resize(std::max(text.size(), static_cast<size_t>(std::max(length, 0)) + 2));
    const std::vector<char> before = text;
    DEMAND(ConvertToMacAddrFromString(text.data(), length) == text.data());
    if (length > 22) DEMAND(text == before);
    if (length <= 22) DEMAND(strnlen(text.data(), text.size()) <= 22);
}

constexpr void (*routines[])(const Input&) = {
    count_dots,           parse, to_number,    reverse,        big_endian, dotted,
    hex_to_static_buffer, upper, hex_in_place, skip_delimiter, halves,     mac_address,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const Input input{data[1], {reinterpret_cast<const char*>(data) + 2, size - 2}};
    routines[data[0] % std::size(routines)](input);
    return 0;
}
