// Contents of a store as TOML text (https://toml.io/en/v1.0.0), and back.
//
//     [[interface]]                  one block an object, in order of insertion
//     name = "wlan0"                 absent for the object of a singleton table
//     ssid = "Guests"                every value is a text
//     raw = { hex = "c328" }         a text that is not UTF-8, by its octets
//     "hex:6bff" = "x"               a table or key that is not UTF-8, or that begins with "hex:"
#pragma once

#include <string>
#include <string_view>

#include "contents.h"

namespace cfql::tool {

// Keys come in octet order, so that equal contents give equal texts and a change of one value is a change of one line.
std::string to_toml(const Contents& contents);

// SOURCE names the text in messages. Throws Failure (Exit::input) with line and column at the first thing that is not
// TOML or that a store cannot hold.
Contents from_toml(std::string_view text, std::string_view source);

}  // namespace cfql::tool
