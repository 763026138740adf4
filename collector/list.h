// What --list prints: radios, access points, stations counted, under which name each is served, what not and why.
#pragma once

#include <string>

#include "observed.h"

namespace collector {

// Lines of printable text, whatever is on the air.
std::string list(const Observed& observed);

}  // namespace collector
