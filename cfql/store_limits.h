// Limits of the store's texts.
#pragma once

#include <stddef.h>
#include <string_view>

namespace cfql {

using Text = std::string_view;

inline constexpr size_t text_limit = 255;          // octets of a table, an object's name, a key; at least 1
inline constexpr size_t value_limit = 4096;        // octets of a value; at least 0
inline constexpr Text singleton_table = "system";  // the table whose object has the empty name
inline constexpr Text name_key = "name";           // stands for an object's name in lists, so no attribute may have it

// Why a text is refused, as one line that names the rule, or null if it is allowed. Whether an object's name is allowed
// depends on the table. All of them refuse a NUL among the octets.
const char* table_error(Text table);
const char* object_error(Text table, Text object);
const char* key_error(Text key);
const char* value_error(Text value);

}  // namespace cfql
