// The keys that the collector writes into the store, and their tables.
#pragma once

#include <optional>
#include <string_view>

#include "facts.h"

namespace collector {

inline constexpr std::string_view interface_table = "interface";
inline constexpr std::string_view bss_table = "bss";
inline constexpr std::string_view radio_table = "radio";
inline constexpr std::string_view system_table = "system";

// Marks an object as the collector's; in the table "system", only the country.
using cfql::tool::origin_key;
inline constexpr std::string_view origin = "cfql-collector";

// The ifIndex of the interface whose counters an object holds.
inline constexpr std::string_view index_key = cfql::tool::origin_index_key;

// Marks an interface whose SSID, security and beacon values (also in its BSS and radio) come from hostapd.
inline constexpr std::string_view hostapd_key = cfql::tool::origin_hostapd_key;
inline constexpr std::string_view hostapd_told = "told";

// Objects of this table keep what a restart needs for interfaces that are not served; their names are ifIndexes.
using cfql::tool::collector_table;

// The "type" of an interface that the agent serves.
inline constexpr std::string_view served_type = "service-set";

inline constexpr std::string_view country_key = "country";

// Counters, which are read back at a restart.
inline constexpr std::string_view transmitted_key = "transmitted-frame-count";
inline constexpr std::string_view failed_key = "failed-count";
inline constexpr std::string_view received_key = "received-fragment-count";
inline constexpr std::string_view unacknowledged_key = "ack-failure-count";
inline constexpr std::string_view bad_checksums_key = "fcs-error-count";

// The last frame of each kind, in the order of Told: code and station.
struct SentKeys {
    std::string_view code;
    std::string_view station;
};
inline constexpr SentKeys sent_keys[] = {
    {"dot11-disassociate-reason", "dot11-disassociate-station"},
    {"dot11-deauthenticate-reason", "dot11-deauthenticate-station"},
    {"dot11-authenticate-fail-status", "dot11-authenticate-fail-station"},
};

// The table of the object that holds `key`, for keys that an operator may give: those that the agent reads, without the
// collector's links and marks.
std::optional<std::string_view> table_of(std::string_view key);

}  // namespace collector
