// The store's file as the tool uses it: every failure is a Failure with place and remedy.
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
    std::vector<std::string> damage;  // one line for each object or value that is left out because it is damaged
};

class Collector;

class Store {
  public:
    Store(std::string path, Access access);

    // Throws for every status but ok.
    void require(Status status) const;

    // Everything, or one table, in one consistent state.
    Reading read(std::string_view table = {});

    // Everything that a damaged store still gives, when it is open for Access::salvage.
    Reading salvage();

    // The id of the NTH object of that name, counted from 1 in order of insertion.
    std::optional<int64_t> find(const std::string& table, const std::string& object, size_t nth);

    // What kept the store itself from being opened, so that a copy is salvaged; empty when it could be.
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

// One line on standard error for each object or value that READING leaves out.
void complain_of_damage(const Store& store, const Reading& reading);

// The failure of an operation on the store at PATH. DETAIL: the engine's own words, or empty.
[[noreturn]] void fail(const std::string& path, Status status, std::string_view detail);

// `interface "wlan0"`, or the table alone for an object without name; the second and later ones of a name are numbered.
std::string described(const Place& place);

}  // namespace cfql::tool
