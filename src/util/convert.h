// Conversions between the texts of the store and the numbers and octets of the MIB.
//
// Pointers must not be null. Lengths and counts are in bytes; 0 and negative ones mean none; a text with a length needs
// no terminator. Numbers wrap at 32 bits. Buffers belong to the caller unless stated otherwise. Only
// ConvertHexaToBinary keeps state between calls.
#pragma once

#include <stdint.h>

namespace dot11 {

#pragma GCC visibility push(default)
extern "C" {

// The number of "." among the first `length` characters of `text`; a terminator among them does not end the count.
int32_t GetIpAddrLen(const char* text, int32_t length);

// 1 if the first `length` characters of `text` are a decimal integer (digits, after an optional "-" or "+"), else 0.
//
// Quirk: no digits at all count as an integer, with or without a sign.
int32_t ParseNumber(const char* text, int32_t length);

// `base` to the power of `exponent`, modulo 2^32; 1 when `exponent` is 0 or negative.
uint32_t PowerOf(uint32_t base, int32_t exponent);

// The value of the terminated decimal `text`, modulo 2^32, as a signed number; 0 if it has no digits. -1 if ParseNumber
// refuses the text, or if it has more than 2147483646 characters; "-1" gives -1 too.
int32_t AlphabeticToNumeric(const char* text);

// Reverses the first `length` bytes of `buffer` in place. When out of memory for a copy, leaves `buffer` as it is.
void StringReverse(char* buffer, int32_t length);

// `count` bytes, most significant first, as a number: the last four count.
uint32_t ConvertToUnsignedInteger(const uint8_t* bytes, int32_t count);

// Turns the dotted decimal `text` into one byte for each component, in `*bytes`. If `is_ip` is not 0, the text is an
// address, such as 192.168.1.1; otherwise it is an object identifier, such as .1.3.6, whose first character is skipped
// whatever it is.
//
// Returns the number of components; 0 if the number of dots promises a different one (object identifier 13.6: the
// skipped character was part of a component); -1 on any fault: no dot, out of memory, a component that is empty, not a
// number, -1, longer than 23 characters, or a multiple of 256 other than 0. Of other components the lowest 8 bits are
// kept. Texts of more than 2147483646 characters are refused.
//
// Quirk: only a component's last character decides whether it counts as 0: 256 is refused, 1280 becomes 0.
//
// Whatever the result, `*bytes` is overwritten with null or with a heap array that the caller frees. The array has one
// byte more than the components that the dots promise.
int32_t ConvertToOidOrIpFromString(uint8_t** bytes, const char* text, int32_t is_ip);

// The decimal digits of `*value` as a terminated heap text that the caller frees, and their number, 1 to 10, in
// `*length`. Null when out of memory, and then `*length` stays as it is.
//
// Quirk: if memory runs out only in StringReverse, the digits are in reverse order.
char* ConvertToStringFromUnsignedInteger(const uint32_t* value, uint32_t* length);

// Packs the hex digits of `text`, up to its terminator or a blank, into bytes, two digits each, first digit high. An
// odd last digit is the high half of its byte. Returns a static buffer of 32 bytes, which the next call overwrites;
// digits that do not fit are dropped.
//
// Quirk: a zero is written not to the byte after the last one but to the one after that ("1A2B" writes bytes 0, 1 and
// 3), or, after an odd digit, to the byte after that digit's. Where nothing is written, the buffer keeps what it held.
// Characters other than "0" to "9" and "A" to "F" count by their code (as a signed byte), less 48 below ":" and less 55
// from there on.
uint8_t* ConvertHexaToBinary(const char* text);

// Turns the terminated `text` to upper case in place.
//
// Quirk: its first character stays. "abc" becomes "aBC".
void StringUpper(char* text);

// Packs the first `length` characters of `text`, hex digits, into half as many bytes at its start and returns `text`.
// Adds no terminator. The last character of an odd length is ignored. For characters that are not digits see
// GetHexValue; their codes spill into the byte's high half.
char* ConvertToHexValue(char* text, int32_t length);

// The value, 0 to 15, of a hex digit in either case; any other character's own code, 0 to 255.
uint8_t GetHexValue(uint8_t character);

// Copies the terminated `source` to `destination`, leaving out every `delimiter`. Adds no terminator: pass a
// destination filled with zeroes, as long as `source`, or one byte longer for a terminated text.
void SkipDelimiterInString(const char* source, char delimiter, char* destination);

// Splits each of the `count` bytes of `source` into its high and low half, as numbers from 0 to 15, not as digits.
// Writes twice as many bytes, and no terminator.
void ConvertToStringFromHex(char* destination, const uint8_t* source, int32_t count);

// Rewrites the first `length` characters of `text` in place and returns `text`. Writes up to `length` + 2 bytes; a NUL
// among the characters ends the result. A `length` above 22 is refused: `text` stays as it is.
//
// Quirk: of each pair of characters the first is kept, with ":" before it ("001122334455" becomes ":0:1:2:3:4:5").
char* ConvertToMacAddrFromString(char* text, int32_t length);

}  // extern "C"
#pragma GCC visibility pop

}  // namespace dot11
