#include "facts.h"

#include <algorithm>
#include <vector>

#include "nearest.h"
#include "text.h"

namespace cfql::tool {

namespace {

using enum Form;

// clang-format off
constexpr Fact table[] = {
    {"interface", "type",                                   text,   {}},
    {"interface", "bss",                                    link,   {}},
    {"bss",       "radio",                                  link,   {}},

    {"interface", "mac",                                    mac,    {}},
    {"interface", "dot11-cf-pollable",                      words,  "1 0 2"},
    {"interface", "dot11-authentication-response-time-out", number, "time units of 1024 us"},
    {"interface", "dot11-privacy-option-implemented",       words,  "1 0 2"},
    {"interface", "security",                               text,   {}},
    {"interface", "ssid",                                   text,   {}},
    {"supported-rate", "rate",                              number, "100 kbit/s"},
    {"radio",     "beacon-interval",                        number, "time units of 1024 us"},
    {"bss",       "dtim-period",                            number, "beacons"},
    {"radio",     "dot11d",                                 words,  "up down"},
    {"interface", "dot11-association-response-time-out",    number, "time units of 1024 us"},
    {"interface", "dot11-disassociate-reason",              number, {}},
    {"interface", "dot11-disassociate-station",             mac,    {}},
    {"interface", "dot11-deauthenticate-reason",            number, {}},
    {"interface", "dot11-deauthenticate-station",           mac,    {}},
    {"interface", "dot11-authenticate-fail-status",         number, {}},
    {"interface", "dot11-authenticate-fail-station",        mac,    {}},
    {"system",    "country",                                text,   {}},

    {"bss",       "open-system-authentication",             words,  "on off"},
    {"bss",       "shared-key-authentication",              words,  "on off"},

    {"interface", "dot11-privacy-invoked",                  number, {}},
    {"interface", "wep-default-key",                        number, {}},
    {"interface", "wep-key-mapping-length",                 number, {}},
    {"interface", "wep-key-1",                              text,   {}},
    {"interface", "wep-key-2",                              text,   {}},
    {"interface", "wep-key-3",                              text,   {}},
    {"interface", "wep-key-4",                              text,   {}},

    {"radio",     "rts-threshold",                          number, "octets"},
    {"radio",     "fragmentation-threshold",                number, "octets"},
    {"interface", "dot11-short-retry-limit",                number, {}},
    {"interface", "dot11-long-retry-limit",                 number, {}},
    {"interface", "dot11-max-transmit-msdu-lifetime",       number, "time units of 1024 us"},
    {"interface", "dot11-max-receive-lifetime",             number, "time units of 1024 us"},
    {"radio",     "manufacturer-id",                        text,   {}},

    {"interface", "transmitted-fragment-count",             number, {}},
    {"interface", "multicast-transmitted-frame-count",      number, {}},
    {"interface", "failed-count",                           number, {}},
    {"interface", "retry-count",                            number, {}},
    {"interface", "multiple-retry-count",                   number, {}},
    {"interface", "frame-duplicate-count",                  number, {}},
    {"interface", "rts-success-count",                      number, {}},
    {"interface", "rts-failure-count",                      number, {}},
    {"interface", "ack-failure-count",                      number, {}},
    {"interface", "received-fragment-count",                number, {}},
    {"interface", "multicast-received-frame-count",         number, {}},
    {"interface", "fcs-error-count",                        number, {}},
    {"interface", "transmitted-frame-count",                number, {}},
    {"interface", "wep-undecryptable-count",                number, {}},

    {"radio",     "manufacturer-oui",                       text,   {}},
    {"radio",     "manufacturer-name",                      text,   {}},
    {"radio",     "manufacturer-product-name",              text,   {}},
    {"radio",     "manufacturer-product-version",           text,   {}},

    {"interface", "dot11-phy-type",                         number, "0 to 3"},
    {"interface", "dot11-current-reg-domain",               number, {}},
    {"interface", "dot11-temp-type",                        number, {}},
    {"interface", "num_supported_pow_level",                number, {}},
    {"interface", "tx-power",                               number, "mW"},
    {"interface", "curr_tx_power_level",                    number, {}},
    {"radio",     "channel",                                number, {}},
};
// clang-format on

// The tables in which the agent reads `key`, for a message.
std::string tables_of(std::string_view key) {
    std::string names;
    for (const Fact& fact : table) {
        if (fact.key == key) names += (names.empty() ? "" : " and ") + quoted(fact.table);
    }
    return names;
}

std::vector<std::string> known_tables() {
    std::vector<std::string> names;
    for (const Fact& fact : table)
        names.emplace_back(fact.table);
    return names;
}

std::vector<std::string> known_keys(std::string_view of) {
    std::vector<std::string> names;
    for (const Fact& fact : table) {
        if (fact.table == of) names.emplace_back(fact.key);
    }
    return names;
}

std::vector<std::string> all_keys() {
    std::vector<std::string> names;
    for (const Fact& fact : table)
        names.emplace_back(fact.key);
    return names;
}

}  // namespace

std::span<const Fact> facts() {
    return table;
}

const Fact* find_fact(std::string_view of, std::string_view key) {
    const auto* fact =
        std::ranges::find_if(table, [&](const Fact& each) { return each.table == of && each.key == key; });
    return fact == std::end(table) ? nullptr : fact;
}

bool is_known_table(std::string_view of) {
    return std::ranges::any_of(table, [&](const Fact& fact) { return fact.table == of; });
}

std::string typing_error(std::string_view of, std::string_view key) {
    static constexpr std::string_view marks[] = {origin_key, origin_index_key, origin_hostapd_key};
    if (find_fact(of, key) || of == collector_table || std::ranges::find(marks, key) != std::end(marks)) return {};
    if (!is_known_table(of)) return "the agent reads no table " + quoted(of) + suggestion(of, known_tables());
    const std::string elsewhere = tables_of(key);
    if (!elsewhere.empty())
        return "the agent reads the key " + quoted(key) + " in " + elsewhere + ", not in " + quoted(of);
    std::string hint = suggestion(key, known_keys(of));
    const std::string meant = hint.empty() ? nearest(key, all_keys()) : "";
    if (!meant.empty()) hint = "; did you mean " + quoted(meant) + " in " + tables_of(meant) + '?';
    return "the agent reads no key " + quoted(key) + " in " + quoted(of) + hint;
}

}  // namespace cfql::tool
