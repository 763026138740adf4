// What the store's four calls are measured beside: the same answers from a bare hash table and from bare SQLite.
// Neither has a lock, a clock, checksums or wiping, the hash table no file either, and neither looks for changes.
// Memory that is short ends the program.
#pragma once

#include <cfqlquery.h>
#include <sqlite3.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace yardsticks {

struct Object {
    sqlite3_int64 id;
    std::string table, name;
    std::vector<std::pair<std::string, std::string>> attributes;
};

// What the store at the path holds, read by SQL.
std::vector<Object> contents(const std::string& path);

// Open addressing, half full; a list of one block with its texts.
class Hash {
  public:
    explicit Hash(const std::vector<Object>& objects);
    cfqlquery_node* get_grid(const char* table, const cfqlquery_node* filter) const;
    cfqlquery_node* get_pv(const char* table, const char* object, const char* key) const;

  private:
    struct Item {
        const char *table, *object, *key, *value;
    };
    const char* find(const char* table, const char* object, const char* key) const;

    std::vector<Item> slots_;
    std::map<std::string, std::vector<const char*>> names_;  // of a table's objects
};

// Statements prepared once, on one connection, without a snapshot.
class Sqlite {
  public:
    explicit Sqlite(const std::string& path);
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;
    ~Sqlite();
    cfqlquery_node* get_grid(const char* table, const cfqlquery_node* filter) const;  // a filter of one pair at most
    cfqlquery_node* get_pv(const char* table, const char* object, const char* key) const;

  private:
    sqlite3* connection_ = nullptr;
    sqlite3_stmt *all_ = nullptr, *matching_ = nullptr, *value_ = nullptr;
};

// Opens the store, reads every row as octets, and closes.
void read_all(const std::string& path);

// Opens the store, sets the value of an attribute that is there, durably, and closes.
void write_one(const std::string& path, const char* table, const char* object, const char* key, const char* value);

// A new store with the same rows, in one durable transaction.
void write_all(const std::string& path, const std::vector<Object>& objects);

}  // namespace yardsticks
