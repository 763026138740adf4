// Feeds the reader of the configuration with any text.
#include "configuration.h"
#include "database.h"
#include "demand.h"
#include "failure.h"
#include "keys.h"

using namespace collector;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    Configuration configuration;
    try {
        configuration = read_configuration({reinterpret_cast<const char*>(data), size}, "text");
    } catch (const Failure& failure) {
        DEMAND(failure.exit() == Exit::configuration);
        DEMAND(std::string(failure.what()).starts_with("text:"));
        return 0;
    }
    for (const auto& [interface, values] : configuration.tables) {
        for (const auto& [key, value] : values) {
            DEMAND(table_of(key).has_value());
            DEMAND(cfql::value_error(value) == nullptr);
        }
    }
    for (const auto& [interface, name] : configuration.aliases)
        DEMAND(is_served_name(name));
    return 0;
}
