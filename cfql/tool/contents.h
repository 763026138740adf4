// Contents of a store in memory, as import, export, watch and lint handle them.
#ifndef CFQL_TOOL_CONTENTS_H
#define CFQL_TOOL_CONTENTS_H

#include <map>
#include <string>
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

}  // namespace cfql::tool

#endif
