#include "contents.h"

namespace cfql::tool {

std::vector<ObjectRef> refs(const Contents& contents) {
    std::map<std::pair<std::string, std::string>, size_t> seen;
    std::vector<ObjectRef> found;
    for (const Object& object : contents) {
        found.push_back({object.table, object.name, ++seen[{object.table, object.name}]});
    }
    return found;
}

}  // namespace cfql::tool
