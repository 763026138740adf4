// The keys that the agent reads, for people: in which table each stands and what its text says. What the agent makes of
// the text is found out by running it (agent_run.h).
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace cfql::tool {

enum class Form {
    text,
    number,  // decimal
    mac,     // 12 hexadecimal digits, with or without colons
    words,   // one of a few
    link,    // the name of an object in the table of the key's own name
};

struct Fact {
    std::string_view table;
    std::string_view key;
    Form form;
    std::string_view detail;  // of a number, its unit, if any; of words, the words, separated by blanks
};

std::span<const Fact> facts();

// Null for a key that the agent does not read in TABLE.
const Fact* find_fact(std::string_view table, std::string_view key);

bool is_known_table(std::string_view table);

// Why the agent would never read KEY in TABLE, with the name that may have been meant; empty when it may.
std::string typing_error(std::string_view table, std::string_view key);

// Keys of the collector's, which the agent does not read: that an object is the collector's, the index of the interface
// that its counters belong to, and that hostapd told of it.
inline constexpr std::string_view origin_key = "origin";
inline constexpr std::string_view origin_index_key = "origin-index";
inline constexpr std::string_view origin_hostapd_key = "origin-hostapd";

// A table of the collector's, which the agent does not read either: counters of interfaces that are not served now.
inline constexpr std::string_view collector_table = "collector";

}  // namespace cfql::tool
