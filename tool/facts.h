// The keys that the agent reads, for messages: the table of each, and the form of its text. What the agent makes of the
// text is found out by running it (agent_run.h).
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace cfql::tool {

enum class Form {
    text,
    number,  // decimal
    mac,     // 12 hexadecimal digits, with or without colons
    words,   // one of a few words
    link,    // the name of an object in the table of the key's own name
};

struct Fact {
    std::string_view table;
    std::string_view key;
    Form form;
    std::string_view detail;  // of a number, its unit, if any; of words, the words, separated by blanks
};

std::span<const Fact> facts();

// Null for a key that the agent does not read in `table`.
const Fact* find_fact(std::string_view table, std::string_view key);

bool is_known_table(std::string_view table);

// Why the agent would never read `key` in `table`, with a suggestion if a known name is near; empty if it may read it.
std::string typing_error(std::string_view table, std::string_view key);

// The collector's own keys, which the agent does not read: they mark an object as the collector's, keep the ifIndex
// that its counters belong to, and mark values as coming from hostapd.
inline constexpr std::string_view origin_key = "origin";
inline constexpr std::string_view origin_index_key = "origin-index";
inline constexpr std::string_view origin_hostapd_key = "origin-hostapd";

// The collector's own table, which the agent does not read either: counters of interfaces that are not served now.
inline constexpr std::string_view collector_table = "collector";

}  // namespace cfql::tool
