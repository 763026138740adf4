#include "util/convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace dot11;

namespace {

int calls_until_failure = 0;  // the n-th calloc from now fails; 0: none does

}  // namespace

extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size) {
    if (calls_until_failure > 0 && --calls_until_failure == 0) return nullptr;
    return __real_calloc(count, size);
}

namespace {

class FailingCalloc {
  public:
    explicit FailingCalloc(int nth) { calls_until_failure = nth; }
    ~FailingCalloc() { calls_until_failure = 0; }
    FailingCalloc(const FailingCalloc&) = delete;
    FailingCalloc& operator=(const FailingCalloc&) = delete;
};

using Bytes = std::vector<uint8_t>;

int32_t length_of(const std::string& text) {
    return static_cast<int32_t>(text.size());
}

// A heap block of exactly the text's size, so that the sanitizer sees a byte read or written past it.
std::vector<char> block(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string text_of(const std::vector<char>& characters) {
    return {characters.begin(), characters.end()};
}

TEST(GetIpAddrLen, CountsDots) {
    struct {
        std::string text;
        int32_t length;
        int32_t dots;
    } const rows[] = {
        {"192.168.1.1", 11, 3}, {"192.168.1.1", 4, 1}, {"192.168.1.1", 3, 0}, {"", 0, 0},     {"...", 3, 3},
        {"...", 0, 0},          {"...", -1, 0},        {"...", INT32_MIN, 0}, {"none", 4, 0}, {{".\0.\0.", 5}, 5, 3},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(GetIpAddrLen(block(row.text).data(), row.length), row.dots) << row.text << " " << row.length;
    }
}

TEST(ParseNumber, AcceptsDigitsAfterOneSign) {
    struct {
        std::string text;
        int32_t length;
        int32_t valid;
    } const rows[] = {
        {"", 0, 1},       {"abc", 0, 1},   {"abc", -1, 1}, {"abc", INT32_MIN, 1},
        {"0", 1, 1},      {"9", 1, 1},     {"123", 3, 1},  {"-45", 3, 1},
        {"+7", 2, 1},     {"-", 1, 1},     {"+", 1, 1},    {"/", 1, 0},
        {":", 1, 0},      {"12a", 3, 0},   {"12a", 2, 1},  {"1-2", 3, 0},
        {"--1", 3, 0},    {"-+1", 3, 0},   {"1 ", 2, 0},   {" 1", 2, 0},
        {"1.0", 3, 0},    {"1\x80", 2, 0}, {"\xff", 1, 0}, {{"1\0", 2}, 2, 0},
        {"-1\xb2", 3, 0}, {"0x1F", 4, 0},  {"a12", 3, 0},  {"12345678901234567890", 20, 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ParseNumber(block(row.text).data(), row.length), row.valid) << row.text << " " << row.length;
    }
}

TEST(PowerOf, WrapsAt32Bits) {
    struct {
        uint32_t base;
        int32_t exponent;
        uint32_t power;
    } const rows[] = {
        {10, 0, 1},
        {10, 1, 10},
        {10, 9, 1000000000},
        {10, 10, 1410065408},  // 10^10 - 2 * 2^32
        {10, 31, 2147483648},  // the last power of ten with a bit left
        {10, 32, 0},
        {10, -1, 1},
        {10, INT32_MIN, 1},
        {0, 0, 1},
        {0, -5, 1},
        {0, 5, 0},
        {2, 31, 2147483648},
        {2, 32, 0},
        {1, INT32_MAX, 1},
        {4294967295, 2, 1},
        {4294967295, INT32_MAX, 4294967295},
        {65536, 2, 0},
        {3, 21, 1870418611},         // 3^21 - 2 * 2^32
        {3, INT32_MAX, 2863311531},  // the inverse of 3, as 3^(2^30) is 1
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PowerOf(row.base, row.exponent), row.power) << row.base << "^" << row.exponent;
    }
}

uint32_t slow_power(uint32_t base, int32_t exponent) {
    uint32_t power = 1;
    for (int32_t i = 0; i < exponent; ++i)
        power *= base;
    return power;
}

TEST(PowerOf, EqualsRepeatedMultiplication) {
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        const auto base = static_cast<uint32_t>(random());
        const int32_t exponent = static_cast<int32_t>(random() % 210) - 10;
        ASSERT_EQ(PowerOf(base, exponent), slow_power(base, exponent)) << base << "^" << exponent;
    }
}

TEST(AlphabeticToNumeric, ReadsDecimalTexts) {
    struct {
        const char* text;
        int32_t value;
    } const rows[] = {
        {"123", 123},
        {"-45", -45},
        {"+7", 7},
        {"", 0},
        {"-", 0},
        {"+", 0},
        {"-0", 0},
        {"0", 0},
        {"007", 7},
        {"-1", -1},
        {"12a", -1},
        {"1-2", -1},
        {"+-1", -1},
        {" 1", -1},
        {"1 ", -1},
        {"1.5", -1},
        {"\xb1", -1},
        {"2147483647", INT32_MAX},
        {"2147483648", INT32_MIN},
        {"-2147483648", INT32_MIN},
        {"-2147483649", INT32_MAX},
        {"4294967294", -2},
        {"4294967295", -1},
        {"4294967296", 0},
        {"4294967297", 1},
        {"-4294967295", 1},
        {"99999999999999999999", 1661992959},  // 10^20 - 1, its lowest 32 bits
        {"100000000000000000000000000000000", 0},
        {"500000000000000000000000000000007", 7},
    };
    for (const auto& row : rows)
        EXPECT_EQ(AlphabeticToNumeric(row.text), row.value) << row.text;
}

// From the last digit to the first, each with its power of ten: the definition that the quick form must agree with.
int32_t slow_number(const std::string& text) {
    if (!ParseNumber(text.data(), length_of(text))) return -1;
    uint32_t sum = 0;
    int32_t weight = 0;
    for (auto c = text.rbegin(); c != text.rend(); ++c) {
        if (*c == '-') {
            sum = 0 - sum;
        } else if (*c != '+') {
            sum += static_cast<uint32_t>(*c - '0') * slow_power(10, weight++);
        }
    }
    return static_cast<int32_t>(sum);
}

TEST(AlphabeticToNumeric, EqualsTheSumOfWeightedDigits) {
    std::mt19937 random(2);
    const std::string usual = "0123456789";
    const std::string strange = "0123456789+-a\xff";
    for (int i = 0; i < 20000; ++i) {
        std::string text(random() % 4 == 0 ? 1 : 0, random() % 2 ? '-' : '+');
        const std::string& alphabet = random() % 4 == 0 ? strange : usual;
        for (auto n = random() % 40; n > 0; --n)
            text += alphabet[random() % alphabet.size()];
        ASSERT_EQ(AlphabeticToNumeric(text.c_str()), slow_number(text)) << text;
    }
}

// Quadratic work would be 10^12 steps here, and multiplying out the exponent 2^31 steps a call, a thousand times.
TEST(Effort, GrowsWithTheTextAndNotWithThePower) {
    std::string digits(1 << 20, '9');
    EXPECT_EQ(AlphabeticToNumeric(digits.c_str()), -1);  // 10^(2^20) - 1: all 32 bits set
    digits.replace(digits.size() - 3, 3, "123");
    EXPECT_EQ(AlphabeticToNumeric(digits.c_str()), -877);  // ...9123 = ...0000 - 877
    digits.back() = 'x';
    EXPECT_EQ(AlphabeticToNumeric(digits.c_str()), -1);

    uint32_t sum = 0;
    for (int i = 0; i < 1000; ++i)
        sum += PowerOf(3, INT32_MAX - (i & 1));
    EXPECT_EQ(sum, 500 * (2863311531u + 954437177u));  // the inverses of 3 and of 9
}

TEST(StringReverse, ReversesThatManyBytes) {
    struct {
        std::string text;
        int32_t length;
        std::string reversed;
    } const rows[] = {
        {"", 0, ""},
        {"a", 1, "a"},
        {"ab", 2, "ba"},
        {"abc", 3, "cba"},
        {"abcdef", 3, "cbadef"},
        {"abc", 0, "abc"},
        {"abc", -1, "abc"},
        {"abc", INT32_MIN, "abc"},
        {{"a\0b", 3}, 3, {"b\0a", 3}},
    };
    for (const auto& row : rows) {
        auto buffer = block(row.text);
        StringReverse(buffer.data(), row.length);
        EXPECT_EQ(text_of(buffer), row.reversed);
    }
}

TEST(StringReverse, WithoutMemoryLeavesTheBuffer) {
    char buffer[] = "abc";
    const FailingCalloc failing(1);
    StringReverse(buffer, 3);
    EXPECT_STREQ(buffer, "abc");
}

TEST(ConvertToUnsignedInteger, ReadsBigEndian) {
    struct {
        Bytes bytes;
        int32_t count;
        uint32_t value;
    } const rows[] = {
        {{}, 0, 0},
        {{0x12}, 1, 0x12},
        {{0x12, 0x34}, 2, 0x1234},
        {{0xFF, 0xEE, 0xDD, 0xCC}, 4, 0xFFEEDDCC},
        {{0x01, 0x02, 0x03, 0x04, 0x05}, 5, 0x02030405},
        {{0x12, 0x34}, 1, 0x12},
        {{0x12}, 0, 0},
        {{0x12}, -1, 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ConvertToUnsignedInteger(row.bytes.data(), row.count), row.value);
}

constexpr int32_t oid = 0;
constexpr int32_t ip = 1;
const Bytes none = {};

// What the routine answers, and the first bytes of the array that it leaves; an array that is absent has none.
struct Dotted {
    int32_t mode;
    std::string text;
    int32_t result;
    bool array;
    Bytes bytes;
};

void expect_dotted(const Dotted& row) {
    SCOPED_TRACE(row.text.substr(0, 60));
    uint8_t former = 0;
    uint8_t* array = &former;
    EXPECT_EQ(ConvertToOidOrIpFromString(&array, row.text.c_str(), row.mode), row.result);
    EXPECT_NE(array, &former);
    ASSERT_EQ(array != nullptr, row.array);
    if (array) {
        EXPECT_EQ(Bytes(array, array + row.bytes.size()), row.bytes);
    }
    free(array);
}

TEST(ConvertToOidOrIpFromString, Addresses) {
    const Dotted rows[] = {
        {ip, "192.168.1.1", 4, true, {192, 168, 1, 1, 0}},
        {-1, "192.168.1.1", 4, true, {192, 168, 1, 1, 0}},
        {ip, "1.2", 2, true, {1, 2, 0}},
        {ip, "0.00.000", 3, true, {0, 0, 0, 0}},
        {ip, "255.255.255.255", 4, true, {255, 255, 255, 255}},
        {ip, "10.0.0.256", -1, false, none},
        {ip, "10.0.0.512", -1, false, none},
        {ip, "256.0.0.10", -1, false, none},
        {ip, "10.0.0.257", 4, true, {10, 0, 0, 1}},
        {ip, "10.0.0.1280", 4, true, {10, 0, 0, 0}},
        {ip, "1280.0.0.1", 4, true, {0, 0, 0, 1}},
        {ip, "10..1", -1, false, none},
        {ip, ".10.1", -1, false, none},
        {ip, "10.1.", -1, false, none},
        {ip, ".", -1, false, none},
        {ip, "10", -1, false, none},
        {ip, "", -1, false, none},
        {ip, "1.-5", 2, true, {1, 251}},
        {ip, "+1.+2", 2, true, {1, 2}},
        {ip, "-0.-00", 2, true, {0, 0}},
        {ip, "1.-", -1, false, none},  // 0 that does not end in "0"
        {ip, "+.1", -1, false, none},
        // What is not a number, or is -1, leaves the array.
        {ip, "1.2.x", -1, true, {1, 2, 0, 0}},
        {ip, "x.1", -1, true, {0, 0, 0}},
        {ip, "1.-1", -1, true, {1, 0, 0}},
        {ip, "1.4294967295", -1, true, {1, 0, 0}},
        {ip, "1. 2", -1, true, {1, 0, 0}},
    };
    for (const Dotted& row : rows)
        expect_dotted(row);
}

TEST(ConvertToOidOrIpFromString, ObjectIdentifiers) {
    const Dotted rows[] = {
        {oid, ".1.3.6", 3, true, {1, 3, 6, 0}},
        {oid, ".1", 1, true, {1, 0}},
        {oid, "x1.3", 0, true, {1, 3}},  // the skipped character may be any, but the dots count
        {oid, "13.6", 0, true, {3, 6}},
        {oid, "1.3", -1, false, none},  // nothing between the skipped character and the dot
        {oid, ".", -1, false, none},
        {oid, "..", -1, false, none},
        {oid, ".1.", -1, false, none},
        {oid, ".1..3", -1, false, none},
        {oid, "1", -1, false, none},
        {oid, "", -1, false, none},
        {oid, ".1.256", -1, false, none},
        {oid, ".1.10036", 2, true, {1, 52}},
        {oid, ".1.x", -1, true, {1, 0, 0}},
    };
    for (const Dotted& row : rows)
        expect_dotted(row);
}

TEST(ConvertToOidOrIpFromString, RefusesComponentsThatAreTooLong) {
    const std::string of23 = "00000000000000000000007";
    const std::string of24 = "000000000000000000000007";
    const Dotted rows[] = {
        {ip, "1." + of23, 2, true, {1, 7}},
        {ip, of23 + ".1", 2, true, {7, 1}},
        {ip, "1." + of24, -1, false, none},
        {ip, of24 + ".1", -1, false, none},
        {ip, "1." + std::string(24, 'x'), -1, false, none},
        {ip, "1." + std::string(23, 'x'), -1, true, {1, 0}},
        {oid, "." + std::string(100000, '1'), -1, false, none},
        {oid, std::string(100000, '.'), -1, false, none},
    };
    for (const Dotted& row : rows)
        expect_dotted(row);
}

TEST(ConvertToOidOrIpFromString, TakesAnyNumberOfComponents) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += ".7";
    expect_dotted({oid, text, 100000, true, Bytes(100000, 7)});
    expect_dotted({ip, "7" + text, 100001, true, Bytes(100001, 7)});
}

TEST(ConvertToOidOrIpFromString, WithoutMemory) {
    const FailingCalloc failing(1);
    expect_dotted({ip, "192.168.1.1", -1, false, none});
}

TEST(ConvertToStringFromUnsignedInteger, PrintsDecimal) {
    struct {
        uint32_t value;
        const char* text;
        uint32_t length;
    } const rows[] = {
        {0, "0", 1},
        {1, "1", 1},
        {9, "9", 1},
        {10, "10", 2},
        {100, "100", 3},
        {2347, "2347", 4},
        {2147483648, "2147483648", 10},
        {4294967295, "4294967295", 10},
    };
    for (const auto& row : rows) {
        uint32_t length = 77;
        char* const text = ConvertToStringFromUnsignedInteger(&row.value, &length);
        EXPECT_STREQ(text, row.text);
        EXPECT_EQ(length, row.length);
        free(text);
    }
}

TEST(ConvertToStringFromUnsignedInteger, WithoutMemory) {
    const uint32_t value = 123;
    uint32_t length = 77;
    {
        const FailingCalloc failing(1);
        EXPECT_EQ(ConvertToStringFromUnsignedInteger(&value, &length), nullptr);
        EXPECT_EQ(length, 77U);
    }
    // StringReverse says nothing when it has no memory: the digits stay as they were written.
    const FailingCalloc failing(2);
    char* const text = ConvertToStringFromUnsignedInteger(&value, &length);
    EXPECT_STREQ(text, "321");
    EXPECT_EQ(length, 3U);
    free(text);
}

// The whole buffer after a call that found 0xEE in every byte.
Bytes hexa_to_binary(const char* text) {
    uint8_t* const buffer = ConvertHexaToBinary("");
    memset(buffer, 0xEE, 32);
    EXPECT_EQ(ConvertHexaToBinary(text), buffer);
    return {buffer, buffer + 32};
}

TEST(ConvertHexaToBinary, WritesAZeroOnePastTheNextByte) {
    struct {
        const char* text;
        Bytes start;
    } const rows[] = {
        {"1A2B", {0x1A, 0x2B, 0xEE, 0x00, 0xEE}},
        {"", {0xEE, 0x00, 0xEE}},
        {" 1A", {0xEE, 0x00, 0xEE}},
        {"F", {0xF0, 0x00, 0xEE}},
        {"F ", {0xF0, 0x00, 0xEE}},
        {"0F", {0x0F, 0xEE, 0x00, 0xEE}},
        {"1A2", {0x1A, 0x20, 0x00, 0xEE}},
        {"1A 2B", {0x1A, 0xEE, 0x00, 0xEE}},
        {"1A2 B", {0x1A, 0x20, 0x00, 0xEE}},
        {"09AF", {0x09, 0xAF, 0xEE, 0x00, 0xEE}},
        {"a0", {0xA0, 0xEE, 0x00, 0xEE}},   // 97 - 55 = 42; 42 * 16 = 0x2A0
        {"0a", {0x2A, 0xEE, 0x00, 0xEE}},   // 42 as it is
        {"1g", {0x30 | 0x10, 0xEE, 0x00}},  // 103 - 55 = 0x30
        {"::", {0x33, 0xEE, 0x00, 0xEE}},   // ":" is 58 and not below ":": 3
        {"//", {0xFF, 0xEE, 0x00, 0xEE}},   // 47 - 48 = -1
        {"\x80\x80", {0x50, 0xEE, 0x00}},   // -128 - 48 = -176, 0x50; times 16, 0x00
    };
    for (const auto& row : rows) {
        const Bytes buffer = hexa_to_binary(row.text);
        EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + static_cast<long>(row.start.size())), row.start) << row.text;
    }
}

TEST(ConvertHexaToBinary, StaysInItsBuffer) {
    struct {
        size_t digits;
        size_t filled;  // bytes 0x11
        uint8_t at_30, at_31;
    } const rows[] = {
        {58, 29, 0x00, 0xEE}, {59, 29, 0x00, 0xEE},     {60, 30, 0xEE, 0x00}, {61, 30, 0x10, 0x00},
        {62, 31, 0x11, 0xEE}, {63, 31, 0x11, 0x10},     {64, 32, 0x11, 0x11}, {65, 32, 0x11, 0x11},
        {66, 32, 0x11, 0x11}, {100000, 32, 0x11, 0x11},
    };
    for (const auto& row : rows) {
        const Bytes buffer = hexa_to_binary(std::string(row.digits, '1').c_str());
        EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + static_cast<long>(row.filled)), Bytes(row.filled, 0x11));
        EXPECT_EQ(buffer[30], row.at_30) << row.digits;
        EXPECT_EQ(buffer[31], row.at_31) << row.digits;
    }
}

TEST(StringUpper, LeavesTheFirstCharacter) {
    struct {
        std::string text;
        std::string upper;
    } const rows[] = {
        {"abc", "aBC"}, {"", ""}, {"a", "a"}, {"A", "A"}, {"aBc1-z", "aBC1-Z"}, {"\xe9\xe9", "\xe9\xe9"},
    };
    for (const auto& row : rows) {
        auto buffer = block(row.text + '\0');
        StringUpper(buffer.data());
        EXPECT_EQ(text_of(buffer), row.upper + '\0');
    }
}

TEST(GetHexValue, EveryCharacter) {
    for (int code = 0; code < 256; ++code) {
        int expected = code;
        if (code >= 48 && code <= 57) expected = code - 48;
        if (code >= 65 && code <= 70) expected = code - 55;
        if (code >= 97 && code <= 102) expected = code - 87;
        EXPECT_EQ(GetHexValue(static_cast<uint8_t>(code)), expected) << code;
    }
    EXPECT_EQ(GetHexValue('0'), 0);
    EXPECT_EQ(GetHexValue('9'), 9);
    EXPECT_EQ(GetHexValue('A'), 10);
    EXPECT_EQ(GetHexValue('f'), 15);
    EXPECT_EQ(GetHexValue('G'), 71);
    EXPECT_EQ(GetHexValue('g'), 103);
    EXPECT_EQ(GetHexValue(240), 240);
}

TEST(ConvertToHexValue, PacksPairsInPlace) {
    struct {
        std::string text;
        int32_t length;
        std::string packed;
    } const rows[] = {
        {"00A0c9ff1234",
         12,
         {"\x00\xA0\xC9\xFF\x12\x34"
          "ff1234",
          12}},
        {"1A", 2,
         "\x1A"
         "A"},
        {"1A2B", 2,
         "\x1A"
         "A2B"},
        {"1A2", 3,
         "\x1A"
         "A2"},
        {"1A2B", 3,
         "\x1A"
         "A2B"},
        {"1", 1, "1"},
        {"", 0, ""},
        {"1A", 0, "1A"},
        {"1A", -1, "1A"},
        {"1A", -2, "1A"},
        {"1A", INT32_MIN, "1A"},
        {"g0", 2,
         "\x70"
         "0"},  // 103 * 16 = 0x670
        {"0g", 2,
         "g"
         "g"},  // 0x67
        {"1:", 2,
         "\x3A"
         ":"},  // 0x10 | 0x3A
        {{"\0\0", 2}, 2, {"\0\0", 2}},
        {"\xff\xff", 2, "\xff\xff"},
    };
    for (const auto& row : rows) {
        auto buffer = block(row.text);
        EXPECT_EQ(ConvertToHexValue(buffer.data(), row.length), buffer.data());
        EXPECT_EQ(text_of(buffer), row.packed) << row.text << " " << row.length;
    }
}

TEST(ConvertToHexValue, TakesAnyLength) {
    auto buffer = block(std::string(1000001, '5'));
    ConvertToHexValue(buffer.data(), 1000001);
    EXPECT_EQ(text_of(buffer), std::string(500000, 'U') + std::string(500001, '5'));
}

TEST(SkipDelimiterInString, CopiesTheRest) {
    struct {
        const char* source;
        char delimiter;
        std::string copy;  // as much of it as is written
    } const rows[] = {
        {"00:A0:c9:ff:12:34", ':', "00A0c9ff1234"},
        {"", ':', ""},
        {":", ':', ""},
        {":::", ':', ""},
        {"abc", ':', "abc"},
        {":a::b:", ':', "ab"},
        {"a.b:c", '.', "ab:c"},
        {"a\xff"
         "b",
         '\xff', "ab"},
        {"ab", '\0', "ab"},
    };
    for (const auto& row : rows) {
        char destination[20];
        memset(destination, '#', sizeof destination);
        SkipDelimiterInString(row.source, row.delimiter, destination);
        EXPECT_EQ(std::string(destination, sizeof destination), row.copy + std::string(20 - row.copy.size(), '#'));
    }
}

TEST(ConvertToStringFromHex, SplitsIntoHalves) {
    struct {
        Bytes source;
        int32_t count;
        Bytes halves;
    } const rows[] = {
        {{0x00, 0xA0, 0xC9, 0xFF}, 4, {0, 0, 10, 0, 12, 9, 15, 15}},
        {{0x1F}, 1, {1, 15}},
        {{0x1F, 0x2E}, 1, {1, 15}},
        {{0x1F}, 0, {}},
        {{0x1F}, -1, {}},
    };
    for (const auto& row : rows) {
        std::vector<char> destination(row.halves.size());
        ConvertToStringFromHex(destination.data(), row.source.data(), row.count);
        EXPECT_EQ(Bytes(destination.begin(), destination.end()), row.halves);
    }
}

TEST(ConvertToMacAddrFromString, KeepsEvenPositionsAfterColons) {
    struct {
        std::string text;
        int32_t length;
        const char* rewritten;
    } const rows[] = {
        {"001122334455", 12, ":0:1:2:3:4:5"},
        {"00A0c9ff1234", 12, ":0:A:c:f:1:3"},
        {"ab", 2, ":a"},
        {"abc", 3, ":a:c"},
        {"a", 1, ":a"},
        {"abcdef", 2, ":a"},
        {"", 0, ""},
        {"abc", 0, ""},
        {"abc", -1, ""},
        {"abc", INT32_MIN, ""},
        {"0123456789abcdefghijk", 21, ":0:2:4:6:8:a:c:e:g:i:k"},
        {"0123456789abcdefghijkl", 22, ":0:2:4:6:8:a:c:e:g:i:k"},
        {"0123456789abcdefghijklm", 23, "0123456789abcdefghijklm"},
        {"0123456789abcdefghijklm", INT32_MAX, "0123456789abcdefghijklm"},
    };
    for (const auto& row : rows) {
        // As many bytes as the contract asks for, and not one more.
        auto buffer = block(row.text);
        buffer.resize(
            std::max(row.text.size() + 1, row.length < 0 || row.length > 22 ? 1 : static_cast<size_t>(row.length) + 2));
        EXPECT_EQ(ConvertToMacAddrFromString(buffer.data(), row.length), buffer.data());
        EXPECT_STREQ(buffer.data(), row.rewritten) << row.text << " " << row.length;
    }
}

// Halves of bytes may be 0: what is behind the first one at an even position stays.
TEST(ConvertToMacAddrFromString, TheCopyEndsAtItsFirstZero) {
    struct {
        std::string text;
        std::string rewritten;
    } const rows[] = {
        {{1, 2, 0, 4, 5, 6, '#', '#'}, {':', 1, ':', 0, 5, 6, '#', '#'}},
        {{0, 2, 3, 4, 5, 6, '#', '#'}, {':', 0, 3, 4, 5, 6, '#', '#'}},
        {{1, 0, 3, 0, 5, 0, '#', '#'}, {':', 1, ':', 3, ':', 5, 0, '#'}},
    };
    for (const auto& row : rows) {
        auto buffer = block(row.text);
        ConvertToMacAddrFromString(buffer.data(), 6);
        EXPECT_EQ(text_of(buffer), row.rewritten);
    }
}

}  // namespace
