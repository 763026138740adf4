// The operator's configuration: values that no live source has, and names.
//
//     ["*"]                      for every interface
//     wep-default-key = "1"      a key of the store
//     [wlan0]                    for one interface, by its name in the kernel; overrides "*"
//     name = "guest"             the name to serve it under, at most five octets; not in "*"
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace collector {

inline constexpr std::string_view all_interfaces = "*";

using Values = std::map<std::string, std::string, std::less<>>;

struct Configuration {
    std::map<std::string, Values, std::less<>> tables;        // interface or "*": key, value
    std::map<std::string, std::string, std::less<>> aliases;  // interface: name

    // The value of `key` for `interface`, or null.
    const std::string* find(std::string_view interface, std::string_view key) const;

    bool operator==(const Configuration&) const = default;
};

// Whether `name` can be the name of a network interface that is served.
bool is_served_name(std::string_view name);

// `source` names the text in messages. Throws Failure (Exit::configuration) with line and column.
Configuration read_configuration(std::string_view text, std::string_view source);

// The file at `path`; an absent file counts as empty. Throws Failure (Exit::configuration).
Configuration load_configuration(const std::string& path);

}  // namespace collector
