// Contents of a store as TOML text (https://toml.io/en/v1.0.0), and back.
//
//     [[interface]]                  a block for each object, in order of insertion
//     name = "wlan0"                 absent for the object of a singleton table
//     ssid = "Guests"                every value is a string
//     raw = { hex = "c328" }         a value that is not UTF-8, in hexadecimal
//     "hex:6bff" = "x"               a table or key that is not UTF-8, or that begins with "hex:"
#pragma once

#include <string>
#include <string_view>

#include "contents.h"

namespace cfql::tool {

// Keys are in octet order, so that equal contents give equal texts, and changing one value changes one line.
std::string to_toml(const Contents& contents);

// `source` names the text in messages. Throws Failure (Exit::input), with line and column, at the first thing that is
// not TOML or that a store cannot hold.
Contents from_toml(std::string_view text, std::string_view source);

}  // namespace cfql::tool
