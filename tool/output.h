// Results go to standard output, everything else through complain() to standard error.
#pragma once

#include <string>
#include <string_view>

#include "contents.h"

namespace cfql::tool {

void print(std::string_view text);
void print_line(std::string_view text);

// Throws Failure (Exit::output) if anything printed so far could not be written.
void flush_output();

// Prints a line for people on standard output. Control characters are escaped, so that data cannot steer the terminal.
void report(std::string_view line);

// Prints "cfql: MESSAGE" on standard error, escaped likewise.
void complain(std::string_view message);

bool on_terminal();

// `value` as one printable line, or the mask if `key` is a secret that is not to be shown. Secrets are hidden on a
// terminal only, where they would stay in sight and in the scroll-back; a pipe or a file gets what was asked for.
std::string shown(std::string_view key, std::string_view value, bool reveal);

// One attribute as a line of list and watch: table, object, key and value, separated by tabs, and the object's number
// if it is not the first of its name. Empty `key`: an object without attributes.
std::string row(const ObjectRef& ref, std::string_view key, std::string_view value, bool reveal);

}  // namespace cfql::tool
