#include "text.h"

#include <stdint.h>
#include <algorithm>
#include <array>

namespace cfql::tool {

namespace {

constexpr std::string_view hex_digits = "0123456789abcdef";

uint8_t octet_at(std::string_view text, size_t position) {
    return static_cast<uint8_t>(text[position]);
}

struct Sequence {
    uint8_t lead_first, lead_last;
    uint8_t second_first, second_last;
    size_t length;
};

// RFC 3629, section 4: the range of the second octet rules out overlong forms and surrogates.
constexpr std::array<Sequence, 9> sequences = {{
    {0x01, 0x7f, 0x00, 0x00, 1},
    {0xc2, 0xdf, 0x80, 0xbf, 2},
    {0xe0, 0xe0, 0xa0, 0xbf, 3},
    {0xe1, 0xec, 0x80, 0xbf, 3},
    {0xed, 0xed, 0x80, 0x9f, 3},
    {0xee, 0xef, 0x80, 0xbf, 3},
    {0xf0, 0xf0, 0x90, 0xbf, 4},
    {0xf1, 0xf3, 0x80, 0xbf, 4},
    {0xf4, 0xf4, 0x80, 0x8f, 4},
}};

bool within(uint8_t octet, uint8_t first, uint8_t last) {
    return octet >= first && octet <= last;
}

// Length of the UTF-8 sequence that `text` begins with; 0 if it begins with none.
size_t sequence_length(std::string_view text) {
    for (const Sequence& form : sequences) {
        if (!within(octet_at(text, 0), form.lead_first, form.lead_last)) continue;
        if (text.size() < form.length) return 0;
        if (form.length > 1 && !within(octet_at(text, 1), form.second_first, form.second_last)) return 0;
        for (size_t i = 2; i < form.length; ++i) {
            if (!within(octet_at(text, i), 0x80, 0xbf)) return 0;
        }
        return form.length;
    }
    return 0;
}

std::string escaped_octet(char octet) {
    switch (octet) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        case '\r':
            return "\\r";
        default:
            return "\\x" + to_hex({&octet, 1});
    }
}

// Code points that steer a terminal, by ranges: C0, DEL and C1, and what changes lines or the direction of writing.
constexpr std::pair<char32_t, char32_t> controls[] = {
    {0x00, 0x1f}, {0x7f, 0x9f}, {0x61c, 0x61c}, {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069},
};

std::optional<unsigned> digit_value(char digit) {
    if (digit >= 'A' && digit <= 'F') digit = static_cast<char>(digit - 'A' + 'a');
    const size_t value = hex_digits.find(digit);
    if (value == std::string_view::npos) return std::nullopt;
    return static_cast<unsigned>(value);
}

}  // namespace

char32_t Character::number() const {
    if (octets.size() == 1) return octet_at(octets, 0);
    char32_t number = octet_at(octets, 0) & (0x7fU >> octets.size());
    for (size_t i = 1; i < octets.size(); ++i)
        number = number << 6 | (octet_at(octets, i) & 0x3fU);
    return number;
}

std::string Character::number_in_hex() const {
    const char pair[] = {static_cast<char>(number() >> 8), static_cast<char>(number())};
    return to_hex({pair, sizeof pair});
}

bool Character::is_control() const {
    const char32_t code = number();
    return well_formed && std::ranges::any_of(controls, [code](const auto& range) {
               return code >= range.first && code <= range.second;
           });
}

Character first_character(std::string_view octets) {
    const size_t length = sequence_length(octets);
    return {octets.substr(0, std::max<size_t>(length, 1)), length != 0};
}

bool is_utf8(std::string_view octets) {
    while (!octets.empty()) {
        const Character character = first_character(octets);
        if (!character.well_formed) return false;
        octets.remove_prefix(character.octets.size());
    }
    return true;
}

std::string to_hex(std::string_view octets) {
    std::string digits;
    for (size_t i = 0; i < octets.size(); ++i) {
        digits += hex_digits[octet_at(octets, i) >> 4];
        digits += hex_digits[octet_at(octets, i) & 15];
    }
    return digits;
}

std::optional<std::string> from_hex(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::string octets;
    for (size_t i = 0; i < digits.size(); i += 2) {
        const std::optional<unsigned> high = digit_value(digits[i]);
        const std::optional<unsigned> low = digit_value(digits[i + 1]);
        if (!high || !low) return std::nullopt;
        octets += static_cast<char>(*high << 4 | *low);
    }
    return octets;
}

std::string printable_line(std::string_view octets) {
    std::string line;
    while (!octets.empty()) {
        const Character character = first_character(octets);
        if (character.well_formed && !character.is_control()) {
            line += character.octets;
        } else {
            for (const char octet : character.octets)
                line += escaped_octet(octet);
        }
        octets.remove_prefix(character.octets.size());
    }
    return line;
}

std::string printable(std::string_view octets) {
    std::string doubled;
    for (const char octet : octets)
        doubled.append(octet == '\\' ? 2 : 1, octet);
    return printable_line(doubled);
}

std::string quoted(std::string_view octets) {
    return '"' + printable(octets) + '"';
}

std::string counted(size_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

bool is_secret(std::string_view key) {
    return key.starts_with("wep-key-") && key != "wep-key-mapping-length";
}

std::string mask_error(std::string_view key, std::string_view value) {
    if (!is_secret(key) || value != mask) return {};
    return "the value of " + quoted(key) + " is the mask that stands for a hidden one: give the value itself";
}

}  // namespace cfql::tool
