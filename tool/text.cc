#include "text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace cfql::tool {

namespace {

constexpr std::string_view hex_digits = "0123456789abcdef";

std::uint8_t octet_at(std::string_view text, std::size_t position) {
    return static_cast<std::uint8_t>(text[position]);
}

struct Sequence {
    std::uint8_t lead_first, lead_last;
    std::uint8_t second_first, second_last;
    std::size_t length;
};

// RFC 3629, section 4: the second octet's range is what rules out overlong forms and surrogates.
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

bool within(std::uint8_t octet, std::uint8_t first, std::uint8_t last) {
    return octet >= first && octet <= last;
}

// Length of the UTF-8 sequence that TEXT begins with; 0 when it begins with none.
std::size_t sequence_length(std::string_view text) {
    for (const Sequence& form : sequences) {
        if (!within(octet_at(text, 0), form.lead_first, form.lead_last)) continue;
        if (text.size() < form.length) return 0;
        if (form.length > 1 && !within(octet_at(text, 1), form.second_first, form.second_last)) return 0;
        for (std::size_t i = 2; i < form.length; ++i) {
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

bool is_control(std::string_view sequence) {
    const std::uint8_t first = octet_at(sequence, 0);
    return first < 0x20 || first == 0x7f || is_c1_control(sequence);
}

std::optional<unsigned> digit_value(char digit) {
    if (digit >= 'A' && digit <= 'F') digit = static_cast<char>(digit - 'A' + 'a');
    const std::size_t value = hex_digits.find(digit);
    if (value == std::string_view::npos) return std::nullopt;
    return static_cast<unsigned>(value);
}

}  // namespace

bool is_c1_control(std::string_view text) {
    return text.size() >= 2 && octet_at(text, 0) == 0xc2 && within(octet_at(text, 1), 0x80, 0x9f);
}

bool is_utf8(std::string_view octets) {
    while (!octets.empty()) {
        const std::size_t length = sequence_length(octets);
        if (length == 0) return false;
        octets.remove_prefix(length);
    }
    return true;
}

std::string to_hex(std::string_view octets) {
    std::string digits;
    for (std::size_t i = 0; i < octets.size(); ++i) {
        digits += hex_digits[octet_at(octets, i) >> 4];
        digits += hex_digits[octet_at(octets, i) & 15];
    }
    return digits;
}

std::optional<std::string> from_hex(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::string octets;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const std::optional<unsigned> high = digit_value(digits[i]);
        const std::optional<unsigned> low = digit_value(digits[i + 1]);
        if (!high || !low) return std::nullopt;
        octets += static_cast<char>(*high << 4 | *low);
    }
    return octets;
}

std::string printable(std::string_view octets) {
    std::string line;
    while (!octets.empty()) {
        const std::size_t length = std::max<std::size_t>(sequence_length(octets), 1);
        const std::string_view sequence = octets.substr(0, length);
        if (sequence == "\\") {
            line += "\\\\";
        } else if (sequence_length(sequence) == 0 || is_control(sequence)) {
            for (const char octet : sequence)
                line += escaped_octet(octet);
        } else {
            line += sequence;
        }
        octets.remove_prefix(length);
    }
    return line;
}

std::string quoted(std::string_view octets) {
    return '"' + printable(octets) + '"';
}

std::string counted(std::size_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

bool is_secret(std::string_view key) {
    return key.starts_with("wep-key-") && key != "wep-key-mapping-length";
}

}  // namespace cfql::tool
