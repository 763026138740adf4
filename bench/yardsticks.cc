#include "yardsticks.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace yardsticks {
namespace {

constexpr const char* all_rows =
    "SELECT id, tab, name, key, value FROM object LEFT JOIN attribute ON attribute.object = id ORDER BY id, key";

void expect(int code, int expected = SQLITE_OK) {
    if (code == expected) return;
    fprintf(stderr, "yardsticks: SQLite: %s\n", sqlite3_errstr(code));
    exit(2);
}

sqlite3* open(const std::string& path, int flags) {
    sqlite3* connection = nullptr;
    expect(sqlite3_open_v2(path.c_str(), &connection, flags, nullptr));
    return connection;
}

sqlite3_stmt* prepare(sqlite3* connection, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    expect(sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr));
    return statement;
}

void run(sqlite3* connection, const char* sql) {
    expect(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr));
}

void bind(sqlite3_stmt* statement, std::initializer_list<const char*> texts) {
    int index = 0;
    for (const char* text : texts)
        sqlite3_bind_blob(statement, ++index, text, static_cast<int>(strlen(text)), SQLITE_STATIC);
}

std::string text_of(sqlite3_stmt* statement, int index) {
    const auto* octets = static_cast<const char*>(sqlite3_column_blob(statement, index));
    return octets ? std::string(octets, static_cast<size_t>(sqlite3_column_bytes(statement, index))) : std::string();
}

unsigned hash_of(std::initializer_list<const char*> texts) {
    unsigned hash = 2166136261U;
    for (const char* text : texts) {
        do {
            hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619U;
        } while (*text++ != '\0');
    }
    return hash;
}

// Copies the pair's texts to `place`.
cfqlquery_node node_of(const char* name, const char* value, char*& place) {
    char* const start = place;
    place = stpcpy(place, name) + 1;
    char* const second = place;
    place = stpcpy(place, value) + 1;
    return {start, second, nullptr, 0};
}

cfqlquery_node* single(const char* name, const char* value) {
    auto* const node = static_cast<cfqlquery_node*>(malloc(sizeof(cfqlquery_node) + strlen(name) + strlen(value) + 2));
    if (!node) abort();
    char* place = reinterpret_cast<char*>(node + 1);
    *node = node_of(name, value, place);
    return node;
}

// Rows of a name and the filter's pairs, whose texts the rows share.
cfqlquery_node* grid(const std::vector<const char*>& names, const cfqlquery_node* filter) {
    if (names.empty()) return nullptr;
    size_t pairs = 0, texts = sizeof "name";
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next, ++pairs)
        texts += strlen(pair->name) + strlen(pair->value) + 2;
    for (const char* name : names)
        texts += strlen(name) + 1;
    const size_t count = names.size() * (pairs + 1);
    auto* const nodes = static_cast<cfqlquery_node*>(malloc(count * sizeof(cfqlquery_node) + texts));
    if (!nodes) abort();
    char* place = reinterpret_cast<char*>(nodes + count);
    cfqlquery_node* node = nodes;
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next)
        *++node = node_of(pair->name, pair->value, place);
    const char* const tag = place;
    place = stpcpy(place, "name") + 1;
    node = nodes;
    for (const char* name : names) {
        *node = {tag, place, node + 1, 0};
        place = stpcpy(place, name) + 1;
        ++node;
        for (size_t i = 1; i <= pairs; ++i, ++node)
            *node = {nodes[i].name, nodes[i].value, node + 1, 0};
    }
    node[-1].next = nullptr;
    return nodes;
}

}  // namespace

std::vector<Object> contents(const std::string& path) {
    std::vector<Object> objects;
    sqlite3* const store = open(path, SQLITE_OPEN_READONLY);
    sqlite3_stmt* const rows = prepare(store, all_rows);
    while (sqlite3_step(rows) == SQLITE_ROW) {
        const sqlite3_int64 id = sqlite3_column_int64(rows, 0);
        if (objects.empty() || objects.back().id != id) objects.push_back({id, text_of(rows, 1), text_of(rows, 2), {}});
        if (sqlite3_column_type(rows, 3) != SQLITE_NULL)
            objects.back().attributes.emplace_back(text_of(rows, 3), text_of(rows, 4));
    }
    sqlite3_finalize(rows);
    expect(sqlite3_close(store));
    return objects;
}

Hash::Hash(const std::vector<Object>& objects) {
    size_t items = 1;
    for (const Object& object : objects)
        items += object.attributes.size();
    size_t slots = 1;
    while (slots < 2 * items)
        slots *= 2;
    slots_.resize(slots);
    for (const Object& object : objects) {
        names_[object.table].push_back(object.name.c_str());
        for (const auto& [key, value] : object.attributes) {
            size_t slot = hash_of({object.table.c_str(), object.name.c_str(), key.c_str()}) & (slots - 1);
            while (slots_[slot].key)
                slot = (slot + 1) & (slots - 1);
            slots_[slot] = {object.table.c_str(), object.name.c_str(), key.c_str(), value.c_str()};
        }
    }
}

const char* Hash::find(const char* table, const char* object, const char* key) const {
    const size_t mask = slots_.size() - 1;
    for (size_t slot = hash_of({table, object, key}) & mask; slots_[slot].key; slot = (slot + 1) & mask) {
        const Item& item = slots_[slot];
        if (strcmp(item.key, key) == 0 && strcmp(item.object, object) == 0 && strcmp(item.table, table) == 0)
            return item.value;
    }
    return nullptr;
}

cfqlquery_node* Hash::get_pv(const char* table, const char* object, const char* key) const {
    const char* const value = find(table, object ? object : "", key);
    return value ? single(key, value) : nullptr;
}

cfqlquery_node* Hash::get_grid(const char* table, const cfqlquery_node* filter) const {
    std::vector<const char*> matching;
    const auto named = names_.find(table);
    if (named == names_.end()) return nullptr;
    for (const char* name : named->second) {
        const cfqlquery_node* pair = filter;
        for (const char* value = nullptr; pair; pair = pair->next) {
            value = find(table, name, pair->name);
            if (!value || strcmp(value, pair->value) != 0) break;
        }
        if (!pair) matching.push_back(name);
    }
    return grid(matching, filter);
}

Sqlite::Sqlite(const std::string& path)
    : connection_(open(path, SQLITE_OPEN_READONLY)),
      all_(prepare(connection_, "SELECT name FROM object WHERE tab = ?1 ORDER BY id")),
      matching_(prepare(connection_,
                        "SELECT name FROM object JOIN attribute ON attribute.object = id AND key = ?2 AND value = ?3 "
                        "WHERE tab = ?1 ORDER BY id")),
      value_(prepare(connection_,
                     "SELECT value FROM attribute WHERE key = ?3 AND object = "
                     "(SELECT id FROM object WHERE tab = ?1 AND name = ?2 ORDER BY id LIMIT 1)")) {}

Sqlite::~Sqlite() {
    for (sqlite3_stmt* statement : {all_, matching_, value_})
        sqlite3_finalize(statement);
    sqlite3_close(connection_);
}

cfqlquery_node* Sqlite::get_grid(const char* table, const cfqlquery_node* filter) const {
    sqlite3_stmt* const rows = filter ? matching_ : all_;
    if (filter)
        bind(rows, {table, filter->name, filter->value});
    else
        bind(rows, {table});
    std::vector<std::string> found;
    while (sqlite3_step(rows) == SQLITE_ROW)
        found.push_back(text_of(rows, 0));
    sqlite3_reset(rows);
    std::vector<const char*> names;
    for (const std::string& name : found)
        names.push_back(name.c_str());
    return grid(names, filter);
}

cfqlquery_node* Sqlite::get_pv(const char* table, const char* object, const char* key) const {
    bind(value_, {table, object ? object : "", key});
    cfqlquery_node* list = nullptr;
    if (sqlite3_step(value_) == SQLITE_ROW) list = single(key, text_of(value_, 0).c_str());
    sqlite3_reset(value_);
    return list;
}

void read_all(const std::string& path) {
    sqlite3* const store = open(path, SQLITE_OPEN_READONLY);
    sqlite3_stmt* const rows = prepare(store, all_rows);
    while (sqlite3_step(rows) == SQLITE_ROW) {
        for (int column = 1; column < 5; ++column)
            sqlite3_column_blob(rows, column);
    }
    sqlite3_finalize(rows);
    expect(sqlite3_close(store));
}

void write_one(const std::string& path, const char* table, const char* object, const char* key, const char* value) {
    sqlite3* const store = open(path, SQLITE_OPEN_READWRITE);
    run(store, "PRAGMA synchronous=FULL");
    sqlite3_stmt* const row = prepare(store,
                                      "UPDATE attribute SET value = ?4 WHERE key = ?3 AND object = "
                                      "(SELECT id FROM object WHERE tab = ?1 AND name = ?2 ORDER BY id LIMIT 1)");
    bind(row, {table, object, key, value});
    expect(sqlite3_step(row), SQLITE_DONE);
    sqlite3_finalize(row);
    expect(sqlite3_close(store));
}

void write_all(const std::string& path, const std::vector<Object>& objects) {
    sqlite3* const store = open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    run(store,
        "PRAGMA synchronous=FULL; PRAGMA page_size=1024; BEGIN;"
        "CREATE TABLE object(id INTEGER PRIMARY KEY, tab BLOB NOT NULL, name BLOB NOT NULL, crc INTEGER NOT NULL);"
        "CREATE INDEX object_name ON object(tab, name);"
        "CREATE TABLE attribute(object INTEGER NOT NULL, key BLOB NOT NULL, value BLOB NOT NULL, crc INTEGER NOT NULL, "
        "PRIMARY KEY(object, key)) WITHOUT ROWID");
    sqlite3_stmt* const insert_object = prepare(store, "INSERT INTO object VALUES(?3, ?1, ?2, 0)");
    sqlite3_stmt* const insert_attribute = prepare(store, "INSERT INTO attribute VALUES(?3, ?1, ?2, 0)");
    for (const Object& object : objects) {
        bind(insert_object, {object.table.c_str(), object.name.c_str()});
        sqlite3_bind_int64(insert_object, 3, object.id);
        expect(sqlite3_step(insert_object), SQLITE_DONE);
        sqlite3_reset(insert_object);
        for (const auto& [key, value] : object.attributes) {
            bind(insert_attribute, {key.c_str(), value.c_str()});
            sqlite3_bind_int64(insert_attribute, 3, object.id);
            expect(sqlite3_step(insert_attribute), SQLITE_DONE);
            sqlite3_reset(insert_attribute);
        }
    }
    sqlite3_finalize(insert_object);
    sqlite3_finalize(insert_attribute);
    run(store, "COMMIT");
    expect(sqlite3_close(store));
}

}  // namespace yardsticks
