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

// Identifies an object: the `nth` inserted of its name, counted from 1.
struct ObjectRef {
    std::string table;
    std::string name;
    size_t nth;

    bool operator==(const ObjectRef&) const = default;
    bool operator<(const ObjectRef& other) const {
        return std::tie(table, name, nth) < std::tie(other.table, other.name, other.nth);
    }
};

// A reference to every object, in the order of `contents`.
std::vector<ObjectRef> refs(const Contents& contents);

}  // namespace cfql::tool
