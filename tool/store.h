// The store's file as the tool uses it: every failure is thrown as a Failure that says where and how to mend it.
#pragma once

#include <stdint.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "contents.h"
#include "database.h"
#include "salvage.h"

namespace cfql::tool {

struct Reading {
    Contents contents;
    std::vector<int64_t> ids;         // of the objects, in the same order
    std::vector<std::string> damage;  // a line for each object or value left out because it is damaged
};

class Collector;

class Store {
  public:
    Store(std::string path, Access access);

    // Throws unless `status` is ok.
    void require(Status status) const;

    // Everything, or one table, in one consistent state.
    Reading read(std::string_view table = {});

    // What can still be read of a damaged store that was opened with Access::salvage.
    Reading salvage();

    // The id of the `nth` object of that name, counted from 1 in order of insertion.
    std::optional<int64_t> find(const std::string& table, const std::string& object, size_t nth);

    // Why the store itself could not be opened, so that a copy is salvaged; empty if it could.
    const std::string& opening_fault() const { return opening_fault_; }

    Database& database() { return database_; }
    const std::string& path() const { return path_; }

  private:
    Status collect(Collector& collector, int64_t& last);

    std::string path_;
    std::string opening_fault_;
    std::unique_ptr<PaddedCopy> copy_;
    Database database_;
};

// Prints a line on standard error for each object or value that `reading` leaves out.
void complain_of_damage(const Store& store, const Reading& reading);

// Throws the failure of an operation on the store at `path`. `detail`: the database engine's message, or empty.
[[noreturn]] void fail(const std::string& path, Status status, std::string_view detail);

// `interface "wlan0"`, or the table alone for an object without a name; objects after the first of a name are numbered.
std::string described(const ObjectRef& ref);

}  // namespace cfql::tool
