// The store's file as the tool uses it: every failure is a Failure with place and remedy.
#ifndef CFQL_TOOL_STORE_H
#define CFQL_TOOL_STORE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cfql/database.h"
#include "contents.h"

namespace cfql::tool {

struct Reading {
    Contents contents;
    std::vector<std::string> damage;  // one line for each object or value that is left out because its checksum is wrong
};

class Store {
  public:
    Store(std::string path, Access access);

    // Throws for every status but ok.
    void require(Status status) const;

    // Everything, or one table, in one consistent state.
    Reading read(std::string_view table = {});

    // Ids of the objects of that name in order of insertion; none when there are none.
    std::vector<std::int64_t> find(const std::string& table, const std::string& object);

    Database& database() { return database_; }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
    Database database_;
};

// The failure of an operation on the store at PATH. DETAIL: the engine's own words, or empty.
[[noreturn]] void fail(const std::string& path, Status status, std::string_view detail);

// "interface "wlan0"", and "system" alone for an object without name. NTH counts from 1; the first is not numbered.
std::string described(std::string_view table, std::string_view object, std::size_t nth = 1);

}  // namespace cfql::tool

#endif
