// The collector's part of the store. It alone touches the store: the difference between what the store holds of the
// collector's and what it is to hold, in one transaction; none when there is no difference.
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
    static constexpr int wait_ms = 100;  // for a lock; then the next pass tries again

    explicit Writer(std::string path) : path_(std::move(path)) {}

    struct Result {
        cfql::Status status = cfql::Status::ok;
        std::string detail;  // the engine's words on a failure
        size_t changes = 0;
    };

    // Reads what the collector has in the store. A store that is absent holds nothing.
    Result load();

    // Lets the store hold `wanted`; makes a store when there is none. Objects of others stay as they are, also where
    // `wanted` has one of their name: see others().
    Result write(const Contents& wanted);

    // What write() would change, a line each; values are printable. To be called after load().
    std::vector<std::string> preview(const Contents& wanted) const;

    // Of the collector's, as the store held it after the last load() or write().
    const Contents& held() const { return held_; }

    // Objects that the last write() left out, since they are of others.
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
    std::map<ObjectName, std::vector<int64_t>> ids_;  // of objects that are ours alone; the first one counts
    std::set<ObjectName> foreign_;
    bool system_has_more_ = false;  // than the country
    std::set<ObjectName> others_;
    Contents told_;      // by the last write() that went well
    cfql::Watch watch_;  // for what others do to the store
};

}  // namespace collector
