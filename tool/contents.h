// Contents of a store in memory, as import, export, watch and lint handle them.
#pragma once

#include <compare>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace cfql::tool {

using Attributes = std::map<std::string, std::string, std::less<>>;

struct Object {
    std::string table;
    std::string name;  // empty: the object of a singleton table
    Attributes attributes;

    bool operator==(const Object&) const = default;
};

using Contents = std::vector<Object>;  // in order of insertion; names may repeat

// What tells an object from all others: among those of its name it is the NTH inserted, counted from 1.
struct Place {
    std::string table;
    std::string name;
    size_t nth;

    bool operator==(const Place&) const = default;
    bool operator<(const Place& other) const {
        return std::tie(table, name, nth) < std::tie(other.table, other.name, other.nth);
    }
};

// The place of every object, in the order of CONTENTS.
std::vector<Place> places(const Contents& contents);

}  // namespace cfql::tool
