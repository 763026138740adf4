// Stores that were made to hang a reader or to use up its memory.
#ifndef TESTS_CFQL_LIBRARY_CRAFTED_H
#define TESTS_CFQL_LIBRARY_CRAFTED_H

#include <sqlite3.h>

#include <ostream>

#include "pages.h"
#include "surroundings.h"

namespace store_test::crafted {

using pages::Octets;

struct Roots {
    unsigned attribute, object, object_name;
};

struct Crafted {
    const char* what;
    std::size_t size;  // of the file, in octets
    void (*apply)(Octets& file, const Roots& roots);
    // No reader's path leads into the graph: a reader that does not examine the whole file just misses a value.
    bool looks_sound = false;
};

inline void PrintTo(const Crafted& crafted, std::ostream* out) {
    *out << crafted.what;
}

constexpr char attribute_sql[] =
    "CREATE TABLE attribute(object INTEGER NOT NULL, key BLOB NOT NULL, value BLOB NOT NULL, crc INTEGER NOT NULL, "
    "PRIMARY KEY(object, key)) WITHOUT ROWID";
constexpr char object_sql[] =
    "CREATE TABLE object(id INTEGER PRIMARY KEY, tab BLOB NOT NULL, name BLOB NOT NULL, crc INTEGER NOT NULL)";
constexpr char object_name_sql[] = "CREATE INDEX object_name ON object(tab, name)";

inline Octets schema_entry(const char* type, const char* name, const char* table, unsigned root,
                           const Octets& statement) {
    return pages::record(
        {pages::text(type), pages::text(name), pages::text(table), pages::number(root), pages::text(statement)});
}

// What the first page of every store holds, on a page of its own.
inline Octets sound_schema(const Roots& roots) {
    return pages::page(
        pages::table_leaf,
        {pages::cell(1, schema_entry("table", "attribute", "attribute", roots.attribute, attribute_sql)),
         pages::cell(2, schema_entry("table", "object", "object", roots.object, object_sql)),
         pages::cell(3, schema_entry("index", "object_name", "object", roots.object_name, object_name_sql))});
}

template <unsigned levels>
void share_schema(Octets& file, const Roots& roots) {
    pages::make_graph(file, 1, levels, pages::table_interior, sound_schema(roots));
}

// Entries that a parser lets pass however often they come, and that take memory where they are collected: 216,000 times
// 2,000 octets.
inline void share_long_schema(Octets& file, const Roots& roots) {
    const Octets padding = "CREATE TABLE IF NOT EXISTS attribute(object)--" + Octets(2000, 'x');
    const Octets entry = schema_entry("table", "attribute", "attribute", roots.attribute, padding);
    const Octets cell = pages::long_cell(file, 4, entry);
    const unsigned sound = pages::count(file) + 1;
    pages::put(file, sound, sound_schema(roots));
    pages::make_graph(file, 1, 3, pages::table_interior, pages::page(pages::table_leaf, {cell}));
    // The first way of all leads to the entries as they should be.
    const std::size_t first_cell = static_cast<unsigned char>(file[112]) * 256U + static_cast<unsigned char>(file[113]);
    file.replace(first_cell, 4, pages::big_endian(sound, 4));
}

inline Octets object_row(unsigned id) {
    return pages::cell(id, pages::record({{0, ""}, pages::blob("interface"), pages::blob("wlan0"), pages::number(0)}));
}

// Of the object that has attributes, or of one that has none.
template <unsigned id>
void share_objects(Octets& file, const Roots& roots) {
    pages::make_graph(file, roots.object, 12, pages::table_interior, pages::page(pages::table_leaf, {object_row(id)}));
}

inline Octets attribute_row(unsigned object) {
    const Octets record = pages::record({pages::number(object), pages::blob("k"), pages::blob("v"), pages::number(0)});
    return pages::varint(record.size()) + record;
}

template <unsigned object>
void share_attributes(Octets& file, const Roots& roots) {
    const Octets row = attribute_row(object);
    pages::make_graph(file, roots.attribute, 12, pages::index_interior, pages::page(pages::index_leaf, {row}), row);
}

inline void share_index(Octets& file, const Roots& roots) {
    const Octets record = pages::record({pages::blob("i"), pages::blob("w"), pages::number(1)});
    const Octets row = pages::varint(record.size()) + record;
    pages::make_graph(file, roots.object_name, 12, pages::index_interior, pages::page(pages::index_leaf, {row}), row);
}

// A tree whose pages are their own children.
inline void make_objects_a_ring(Octets& file, const Roots& roots) {
    pages::put(file, roots.object, pages::fan_page(pages::table_interior, roots.object));
    pages::seal(file);
}

inline const Crafted files[] = {
    {"SchemaOfThreeLevels", 7 * 1024, share_schema<3>},
    {"SchemaOfTwelveLevels", 16 * 1024, share_schema<12>},
    {"SchemaOfLongTexts", 10 * 1024, share_long_schema},
    {"Objects", 16 * 1024, share_objects<1>},
    {"ObjectsWithoutAttributes", 16 * 1024, share_objects<7>},
    {"Attributes", 16 * 1024, share_attributes<1>},
    {"AttributesOfNoObject", 16 * 1024, share_attributes<7>, true},
    {"IndexOfNames", 16 * 1024, share_index},
    {"ObjectsThatAreARing", 4 * 1024, make_objects_a_ring},
};

inline unsigned root_of(const std::string& path, const std::string& name) {
    sqlite3* connection = nullptr;
    sqlite3_stmt* statement = nullptr;
    const std::string query = "SELECT rootpage FROM sqlite_schema WHERE name='" + name + "'";
    sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_prepare_v2(connection, query.c_str(), -1, &statement, nullptr);
    const bool found = sqlite3_step(statement) == SQLITE_ROW;
    const int root = found ? sqlite3_column_int(statement, 0) : 0;
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    if (!found) throw std::runtime_error(query);
    return static_cast<unsigned>(root);
}

// The store at `path`, with `crafted` done to it.
inline Octets from(const std::string& path, const Crafted& crafted) {
    Octets file = read_file(path);
    crafted.apply(file, {root_of(path, "attribute"), root_of(path, "object"), root_of(path, "object_name")});
    return file;
}

}  // namespace store_test::crafted

#endif
