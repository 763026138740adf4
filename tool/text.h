// Octets of the store as text for people and for TOML.
#ifndef CFQL_TOOL_TEXT_H
#define CFQL_TOOL_TEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace cfql::tool {

// Well-formed UTF-8 without NUL (RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF).
bool is_utf8(std::string_view octets);

// TEXT begins with one of U+0080 to U+009F, which some terminals obey.
bool is_c1_control(std::string_view text);

std::string to_hex(std::string_view octets);
std::optional<std::string> from_hex(std::string_view digits);

// One printable line: control characters, backslashes and octets that are not UTF-8 become backslash escapes, so that
// no value can break a line into two or steer a terminal.
std::string printable(std::string_view octets);

// The same in double quotes, for messages.
std::string quoted(std::string_view octets);

// "1 value", "2 values"
std::string counted(std::size_t count, std::string_view noun);

// Key material. "wep-key-mapping-length" bears the prefix, too, but is a plain number.
bool is_secret(std::string_view key);

// What stands for a secret on a terminal; says nothing about its length.
inline constexpr std::string_view mask = "********";

}  // namespace cfql::tool

#endif
