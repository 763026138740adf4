// Octets of the store as text for people and for TOML.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cfql::tool {

// The first character of `octets`, which must not be empty: well-formed UTF-8 (RFC 3629: no overlong forms, no
// surrogates, nothing above U+10FFFF) and not NUL; otherwise a single stray octet.
struct Character {
    std::string_view octets;
    bool well_formed;

    char32_t number() const;  // the code point of a well-formed one

    std::string number_in_hex() const;  // four digits; only for a control

    // Whether a terminal would obey it instead of showing it: a control character (C0, DEL, C1), a mark of the
    // direction of writing, a line separator.
    bool is_control() const;
};
Character first_character(std::string_view octets);

bool is_utf8(std::string_view octets);

std::string to_hex(std::string_view octets);
std::optional<std::string> from_hex(std::string_view digits);

// One line that no value can break in two, and that is safe on a terminal: control characters and stray octets become
// backslash escapes. Backslashes stay, so that printable text is unchanged.
std::string printable_line(std::string_view octets);

// The same for a name or a value, reversible: backslashes are doubled.
std::string printable(std::string_view octets);

// printable() in double quotes, for messages.
std::string quoted(std::string_view octets);

// "1 value", "2 values"
std::string counted(size_t count, std::string_view noun);

// Whether `key` holds key material. "wep-key-mapping-length" has the prefix, too, but is a plain number.
bool is_secret(std::string_view key);

// Shown instead of a secret; does not give away its length.
inline constexpr std::string_view mask = "********";

// An error if `value` is the mask and `key` a secret, as in an export that was copied from a terminal; otherwise empty.
std::string mask_error(std::string_view key, std::string_view value);

}  // namespace cfql::tool
