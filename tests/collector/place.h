// A store in a directory of the test's own.
#ifndef TESTS_COLLECTOR_PLACE_H
#define TESTS_COLLECTOR_PLACE_H

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "database.h"

class Place {
  public:
    Place() {
        char name[] = "/dev/shm/cfql-test-XXXXXX";
        if (mkdtemp(name) == nullptr) throw std::runtime_error("mkdtemp");
        directory = name;
        store = directory + "/store.db";
    }
    ~Place() { std::filesystem::remove_all(directory); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    // Sets a value as another program does.
    void set(const char* table, const char* object, const char* key, const char* value) const {
        change([&](cfql::Database& database) { return database.set(table, object, key, value); });
    }
    void unset(const char* table, const char* object, const char* key) const {
        change([&](cfql::Database& database) { return database.unset(table, object, key); });
    }
    void insert(const char* table, const char* object) const {
        std::int64_t id = 0;
        change([&](cfql::Database& database) { return database.insert_object(table, object, id); });
    }

    void make() const {
        cfql::Database database;
        require(database.create(store.c_str()));
    }

    // "-": there is none.
    std::string get(const char* table, const char* object, const char* key) const {
        cfql::Database database;
        cfql::Text value;
        require(database.open(store.c_str(), cfql::Access::read));
        const cfql::Status status = database.get(table, object, key, value);
        if (status == cfql::Status::not_found) return "-";
        require(status);
        return std::string(value);
    }

    // Every object, a line each: "TABLE NAME: KEY=VALUE ...".
    std::vector<std::string> lines() const {
        cfql::Database database;
        cfql::Cursor cursor;
        cfql::Row row;
        require(database.open(store.c_str(), cfql::Access::read));
        require(database.list(cursor));
        std::vector<std::string> all;
        for (std::int64_t id = 0; cursor.next(row) == cfql::Status::ok; id = row.id) {
            if (row.id != id) all.push_back(std::string(row.table) + ' ' + std::string(row.object) + ':');
            if (row.has_attribute) all.back() += ' ' + std::string(row.key) + '=' + std::string(row.value);
        }
        return all;
    }

    std::string directory;
    std::string store;

  private:
    static void require(cfql::Status status) {
        if (status != cfql::Status::ok) throw std::runtime_error(cfql::describe(status));
    }

    template <class Change>
    void change(Change what) const {
        cfql::Database database;
        require(database.open(store.c_str(), cfql::Access::write));
        require(database.begin_write());
        require(what(database));
        require(database.commit());
    }
};

#endif
