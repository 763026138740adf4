// Feeds the importer any text. What it accepts is within the store's limits; an export of it is read back as the same
// contents and exported as the same text. What it refuses, it refuses as wrong input.

#include <cstdio>
#include <cstdlib>

#include "database.h"
#include "demand.h"
#include "failure.h"
#include "toml_text.h"

namespace {

void demand_limits(const cfql::tool::Object& object) {
    DEMAND(cfql::table_error(object.table) == nullptr);
    DEMAND(cfql::object_error(object.table, object.name) == nullptr);
    for (const auto& [key, value] : object.attributes) {
        DEMAND(cfql::key_error(key) == nullptr);
        DEMAND(cfql::value_error(value) == nullptr);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    cfql::tool::Contents contents;
    try {
        contents = cfql::tool::from_toml({reinterpret_cast<const char*>(data), size}, "text");
    } catch (const cfql::tool::Failure& failure) {
        DEMAND(failure.exit() == cfql::tool::Exit::input);
        return 0;
    }
    for (const cfql::tool::Object& object : contents)
        demand_limits(object);
    const std::string exported = cfql::tool::to_toml(contents);
    DEMAND(cfql::tool::from_toml(exported, "export") == contents);
    DEMAND(cfql::tool::to_toml(contents) == exported);
    return 0;
}
