#include "store_limits.h"

namespace cfql {
namespace {

const char* text_error(Text text, const char* empty, const char* too_long, const char* with_nul) {
    if (text.empty()) return empty;
    if (text.size() > text_limit) return too_long;
    if (text.find('\0') != Text::npos) return with_nul;
    return nullptr;
}

}  // namespace

const char* table_error(Text table) {
    return text_error(table, "the table is empty", "the table is longer than 255 octets", "the table contains a NUL");
}

const char* object_error(Text table, Text object) {
    if (table == singleton_table) return object.empty() ? nullptr : "the object of the table \"system\" has no name";
    return text_error(object, "the object's name is empty", "the object's name is longer than 255 octets",
                      "the object's name contains a NUL");
}

const char* key_error(Text key) {
    if (key == name_key) return "\"name\" is the object's name, not a key";
    return text_error(key, "the key is empty", "the key is longer than 255 octets", "the key contains a NUL");
}

const char* value_error(Text value) {
    if (value.size() > value_limit) return "the value is longer than 4096 octets";
    if (value.find('\0') != Text::npos) return "the value contains a NUL";
    return nullptr;
}

}  // namespace cfql
