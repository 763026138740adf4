// What the agent makes of the "supported-rate" objects.
#ifndef CFQL_TOOL_RATES_H
#define CFQL_TOOL_RATES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cfql::tool {

struct RateGroup {
    std::string interface;
    std::size_t size;         // objects of this name that follow each other
    std::vector<int> served;  // the values of the group's rows, in units of 500 kbit/s
};

// NAMES: of the objects that the agent accepts, in order of insertion. RATES: of each name's first object, for the same
// positions.
std::vector<RateGroup> rate_groups(const std::vector<std::string>& names, const std::vector<std::string>& rates);

// One row's value, in units of 500 kbit/s, for the text of a rate.
int served_rate(std::string_view text);

// The one octet of the operational rate set, for the text of a rate.
unsigned operational_rate(std::string_view text);

// Decimal text as the agent reads it: an optional sign and digits, modulo 2^32; none when it holds anything else.
struct Number {
    int value;
    bool wrapped;     // it did not fit 32 bits
    bool has_digits;  // a sign alone, too, is read as 0
};
std::optional<Number> number(std::string_view text);

}  // namespace cfql::tool

#endif
