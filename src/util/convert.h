// Conversions between the texts of the configuration store and the numbers and octets of the MIB.
//
// Every routine is exported under its C name. Pointers must not be null unless said otherwise. Lengths and counts are
// in bytes; where one is given, no terminator is needed, and 0 or a negative one stands for nothing. Numbers wrap at 32
// bits. Nothing is logged. All buffers are the caller's, except where ownership is stated. No routine but
// ConvertHexaToBinary keeps state between calls.
#pragma once

#include <cstdint>

namespace dot11 {

#pragma GCC visibility push(default)
extern "C" {

// How many of the first LENGTH characters of TEXT are "."; a terminator among them does not end the count.
int32_t GetIpAddrLen(const char* text, int32_t length);

// 1 when the first LENGTH characters of TEXT are a decimal integer, else 0: digits, after an optional "-" or "+". No
// digits at all are valid, with a sign or without.
int32_t ParseNumber(const char* text, int32_t length);

// BASE to the power of EXPONENT, modulo 2^32; 1 when EXPONENT is 0 or negative.
uint32_t PowerOf(uint32_t base, int32_t exponent);

// The value of the terminated decimal TEXT, modulo 2^32, as a signed number; 0 when it has no digits. -1 when
// ParseNumber refuses the text, or the text has more than 2147483646 characters: callers cannot tell that from the text
// "-1".
int32_t AlphabeticToNumeric(const char* text);

// Reverses the first LENGTH bytes of BUFFER in place. Without memory for a copy of them BUFFER stays as it is.
void StringReverse(char* buffer, int32_t length);

// COUNT bytes, most significant first, as a number: the last four count.
uint32_t ConvertToUnsignedInteger(const uint8_t* bytes, int32_t count);

// Turns dotted decimal TEXT into one byte for each component and leaves the bytes in *BYTES. With IS_IP not 0 the text
// is an address, 192.168.1.1; with 0 it is an object identifier, .1.3.6, whose first character is skipped whatever it
// is.
//
// Returns the number of components; 0 when it is not the number that the dots promise (object identifier 13.6: the
// skipped character was part of a component); -1 on any fault: no dot, no memory, an empty component, one that is not a
// number or is -1, one of more than 23 characters, one other than 0 that is a multiple of 256. Of other components the
// lowest 8 bits are kept. Only the last character decides what counts as 0: 256 is refused, 1280 becomes 0. Texts of
// more than 2147483646 characters are refused.
//
// *BYTES is always written, its former content lost: whatever the result, it is null or a heap array that the caller
// frees. The array has a byte more than the components that the dots promise.
int32_t ConvertToOidOrIpFromString(uint8_t** bytes, const char* text, int32_t is_ip);

// The decimal digits of *VALUE as a terminated heap text that the caller frees, their number, 1 to 10, in *LENGTH.
// Null, and *LENGTH as it was, when memory is short. Memory that is short only for StringReverse leaves the digits in
// reverse order.
char* ConvertToStringFromUnsignedInteger(const uint32_t* value, uint32_t* length);

// Packs the hex digits of TEXT, up to its terminator or a blank, into bytes, two digits each, first digit high. A lone
// last digit is the high half of its byte. A zero follows, but not in the next byte: in the one after it ("1A2B" writes
// 0x1A and 0x2B to bytes 0 and 1, 0 to byte 3), or, after a lone digit, in the one after that digit's byte.
//
// Only "0" to "9" and "A" to "F" are meaningful; of any other character its code (as a signed byte) less 48 below ":",
// or less 55, is taken.
//
// Returns one static buffer of 32 bytes that the next call overwrites; what was in it stays where nothing is written.
// What has no place in it is left out, the zero included.
uint8_t* ConvertHexaToBinary(const char* text);

// Turns the terminated TEXT to upper case in place, except for its first character, which stays: "abc" becomes "aBC".
void StringUpper(char* text);

// Packs the first LENGTH characters of TEXT, two hex digits each, into LENGTH/2 bytes at its start and returns TEXT.
// Adds no terminator. The last character of an odd length is without effect. Characters that are no digits: see
// GetHexValue; their codes run into the byte's high half.
char* ConvertToHexValue(char* text, int32_t length);

// The value, 0 to 15, of a hex digit in either case; any other character's own code, 0 to 255.
uint8_t GetHexValue(uint8_t character);

// Copies the terminated SOURCE to DESTINATION, leaving out every DELIMITER. Adds no terminator: hand in a destination
// filled with zeros, of as many bytes as SOURCE has (and one more where a terminator is wanted).
void SkipDelimiterInString(const char* source, char delimiter, char* destination);

// Splits each of COUNT bytes of SOURCE into its high and low half, as numbers 0 to 15, not as digits. Writes 2 * COUNT
// bytes, no terminator.
void ConvertToStringFromHex(char* destination, const uint8_t* source, int32_t count);

// Rewrites the first LENGTH characters of TEXT in place and returns TEXT: each character at an even position, ":"
// before it, and a terminator; those at odd positions are dropped ("001122334455" becomes ":0:1:2:3:4:5"). Up to LENGTH
// + 2 bytes of TEXT are written, only up to the terminator when one of the characters is a NUL. A LENGTH of more than
// 22 is refused: TEXT stays as it is.
char* ConvertToMacAddrFromString(char* text, int32_t length);

}  // extern "C"
#pragma GCC visibility pop

}  // namespace dot11
