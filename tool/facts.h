// What the agent does with each key of the store, as one table: where it looks the key up for an interface, how it
// converts the text, and what it serves when there is none.
#ifndef CFQL_TOOL_FACTS_H
#define CFQL_TOOL_FACTS_H

#include <cstddef>
#include <span>
#include <string_view>

namespace cfql::tool {

// The object that holds the key, for an interface N.
enum class Holder {
    interface,  // interface N
    bss,        // bss B, where B is interface N's "bss"
    radio,      // radio R, where R is bss B's "radio"
    own_radio,  // radio N: under the interface's own name, without the way over bss
    rate,       // the first supported-rate N
    system,     // the object of the table "system"
};

enum class Conversion {
    text,       // octets, clipped at the width
    number,     // decimal text to a signed 32-bit number; -1 when it is none
    phy_type,   // a number; what is not 0 to 3 becomes 1
    rate_text,  // a number, which the two tables of rates and the operational rate set each convert further
    mac,        // 12 hexadecimal digits, colons removed
    flag,       // on when it is exactly the text `on`; `off` lists the texts that plainly mean the contrary
    country,    // two characters
    link,       // the name of an object in the table of the key's own name
};

struct Fact {
    std::string_view key;
    Holder holder;
    Conversion conversion;
    std::string_view fallback;       // served when the key is absent or empty
    std::size_t width = 0;           // octets that the agent has room for; 0: any number
    std::string_view negative = {};  // number: what a negative one becomes; empty when it is kept
    std::string_view on = {};        // flag
    std::string_view off = {};       // flag: separated by blanks
};

std::span<const Fact> facts();

// The limits of the agent's tables.
inline constexpr std::string_view served_type = "service-set";  // the "type" of an interface that is served
inline constexpr std::size_t longest_interface_name = 5;
inline constexpr std::size_t most_interfaces = 128;    // with more, nothing is served
inline constexpr std::size_t most_rate_objects = 129;  // the others are skipped
inline constexpr std::size_t most_rates = 8;           // of one group
inline constexpr std::size_t most_rate_groups = 10;
inline constexpr std::size_t rate_text_width = 5;  // octets
inline constexpr int lowest_rate = 2;              // served for a smaller one, and for none

}  // namespace cfql::tool

#endif
