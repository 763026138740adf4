// Standard output: results. Everything else goes to standard error by way of complain().
#pragma once

#include <string>
#include <string_view>

#include "contents.h"

namespace cfql::tool {

void print(std::string_view text);
void print_line(std::string_view text);

// Throws Failure (Exit::output) when anything printed so far could not be written.
void flush_output();

// A line for people on standard output; what is in it of other hands steers no terminal.
void report(std::string_view line);

// "cfql: MESSAGE" on standard error, by the same rule.
void complain(std::string_view message);

bool on_terminal();

// VALUE as one printable line, or the mask when KEY is a secret that is not to be shown. Secrets are hidden on a
// terminal only, where they stay in sight and in the scroll-back; a pipe or a file gets what it asked for.
std::string shown(std::string_view key, std::string_view value, bool reveal);

// One attribute as a line of list and watch: table, object, key and value, separated by tabs, and the number of the
// object when it is the second or later of its name. Empty KEY: an object without attributes.
std::string row(const Place& place, std::string_view key, std::string_view value, bool reveal);

}  // namespace cfql::tool
