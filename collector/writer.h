// The collector's part of the store; no other part of the collector touches the store. A write is one transaction with
// the differences between what the store holds and what it is to hold; without a difference nothing is written.
#pragma once

#include <stdint.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "contents.h"
#include "database.h"
#include "watch.h"

namespace collector {

class Writer {
  public:
    static constexpr int wait_ms = 100;  // for a lock; after that, the next pass tries again

    explicit Writer(std::string path) : path_(std::move(path)) {}

    struct Result {
        cfql::Status status = cfql::Status::ok;
        std::string detail;  // the database engine's message after a failure
        size_t changes = 0;
    };

    // Reads the collector's objects from the store. An absent store holds none.
    Result load();

    // Makes the store hold `wanted`; creates the store if there is none. Objects of others stay as they are, even if
    // `wanted` has one of the same name: see others().
    Result write(const Contents& wanted);

    // What write() would change, a line each; values are escaped. Call it after load().
    std::vector<std::string> preview(const Contents& wanted) const;

    // The collector's objects, as the store held them after the last load() or write().
    const Contents& held() const { return held_; }

    // Objects that the last write() left alone because they belong to others.
    const std::set<ObjectName>& others() const { return others_; }

    // Of the last load() or write().
    cfql::Status last_status() const { return last_status_; }

    const std::string& path() const { return path_; }

  private:
    struct Found;

    cfql::Status open();
    cfql::Status read();
    void sort(const Found& found);
    Contents allowed(const Contents& wanted) const;
    cfql::Status apply(const Contents& wanted, size_t& changes);
    cfql::Status apply_object(const ObjectName& name, const Values& from, const Values& to, size_t& changes);
    cfql::Status remove(const ObjectName& name, size_t& changes);
    Result finish(cfql::Status status, size_t changes);

    std::string path_;
    cfql::Status last_status_ = cfql::Status::ok;
    cfql::Database store_;
    Contents held_;
    std::map<ObjectName, std::vector<int64_t>> ids_;  // of the collector's objects; names may repeat
    std::set<ObjectName> foreign_;
    bool system_has_more_ = false;  // than the country
    std::set<ObjectName> others_;
    Contents told_;      // `wanted` of the last write() that succeeded
    cfql::Watch watch_;  // notices what others do to the store
};

}  // namespace collector
