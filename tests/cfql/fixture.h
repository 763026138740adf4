// Stores that are made and changed by the database layer itself.
#ifndef TESTS_CFQL_LIBRARY_FIXTURE_H
#define TESTS_CFQL_LIBRARY_FIXTURE_H

#include <sqlite3.h>

#include "calls.h"
#include "database.h"

namespace store_test {

inline void require(cfql::Status status) {
    if (status != cfql::Status::ok) throw std::runtime_error(cfql::describe(status));
}

// Writes `values` in one transaction.
inline void put(const std::string& path, const std::vector<Value>& values) {
    cfql::Database store;
    require(store.open(path.c_str(), cfql::Access::write));
    require(store.begin_write());
    for (const Value& v : values)
        require(store.set(v.table, v.object, v.key, v.value));
    require(store.commit());
}

inline void make(const std::string& path, const std::vector<Value>& values = {}) {
    cfql::Database store;
    require(store.create(path.c_str()));
    put(path, values);
}

// Runs any statement in SQLite itself: what an attacker could do to a store.
inline void sql(const std::string& path, const char* statement) {
    sqlite3* connection = nullptr;
    char* message = nullptr;
    sqlite3_open(path.c_str(), &connection);
    const int code = sqlite3_exec(connection, statement, nullptr, nullptr, &message);
    const std::string text = message == nullptr ? "" : message;
    sqlite3_free(message);
    sqlite3_close(connection);
    if (code != SQLITE_OK) throw std::runtime_error(text);
}

}  // namespace store_test

#endif
