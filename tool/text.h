// Octets of the store as text for people and for TOML.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cfql::tool {

// The first character of OCTETS, which must not be empty: well-formed UTF-8 (RFC 3629: no overlong forms, no
// surrogates, nothing above U+10FFFF), no NUL. What does not begin with one begins with one stray octet.
struct Character {
    std::string_view octets;
    bool well_formed;

    char32_t number() const;  // the code point of a well-formed one

    std::string number_in_hex() const;  // four digits; of a control

    // For a terminal to obey instead of showing it: a control character (C0, DEL, C1), a mark of the direction of
    // writing, a separator of lines.
    bool is_control() const;
};
Character first_character(std::string_view octets);

bool is_utf8(std::string_view octets);

std::string to_hex(std::string_view octets);
std::optional<std::string> from_hex(std::string_view digits);

// One line that no value can break into two and that steers no terminal: control characters and stray octets become
// backslash escapes. Backslashes stay, so that what is printable already passes unchanged.
std::string printable_line(std::string_view octets);

// The same for a name or a value, which can be had back: backslashes are doubled.
std::string printable(std::string_view octets);

// printable() in double quotes, for messages.
std::string quoted(std::string_view octets);

// "1 value", "2 values"
std::string counted(size_t count, std::string_view noun);

// Key material. "wep-key-mapping-length" bears the prefix, too, but is a plain number.
bool is_secret(std::string_view key);

// What stands for a secret on a terminal; says nothing about its length.
inline constexpr std::string_view mask = "********";

// Why VALUE cannot be that of KEY when it is the mask, as in an export that was copied from a terminal; else empty.
std::string refusal_of_mask(std::string_view key, std::string_view value);

}  // namespace cfql::tool
