// The command watch: prints what changes from one state of the store to the next.
#include <chrono>
#include <map>
#include <thread>

#include "commands.h"
#include "output.h"
#include "store.h"
#include "watch.h"

namespace cfql::tool {

namespace {

constexpr std::chrono::milliseconds interval{100};

using ByRef = std::map<ObjectRef, const Object*>;

ByRef by_ref(const Contents& contents) {
    ByRef found;
    const std::vector<ObjectRef> all = refs(contents);
    for (size_t i = 0; i < all.size(); ++i)
        found.emplace(all[i], &contents[i]);
    return found;
}

class Differences {
  public:
    explicit Differences(bool reveal) : reveal_(reveal) {}

    void print(const Contents& before, const Contents& after) const {
        const ByRef old_objects = by_ref(before);
        const ByRef new_objects = by_ref(after);
        for (const auto& [ref, object] : old_objects) {
            if (!new_objects.contains(ref)) print_line("unset\t" + row(ref, "", "", true));
        }
        for (const auto& [ref, object] : new_objects) {
            const auto old_object = old_objects.find(ref);
            if (old_object == old_objects.end()) {
                print_new(ref, object->attributes);
            } else {
                print_change(ref, old_object->second->attributes, object->attributes);
            }
        }
        if (old_objects.size() == new_objects.size() && refs(before) != refs(after)) print_line("order");
    }

  private:
    void print_set(const ObjectRef& ref, const Attributes::value_type& attribute) const {
        print_line("set\t" + row(ref, attribute.first, attribute.second, reveal_));
    }

    void print_new(const ObjectRef& ref, const Attributes& attributes) const {
        if (attributes.empty()) print_line("set\t" + row(ref, "", "", true));
        for (const auto& attribute : attributes)
            print_set(ref, attribute);
    }

    void print_change(const ObjectRef& ref, const Attributes& before, const Attributes& after) const {
        for (const auto& [key, value] : before) {
            if (!after.contains(key)) print_line("unset\t" + row(ref, key, "", true));
        }
        for (const auto& attribute : after) {
            const auto old_value = before.find(attribute.first);
            if (old_value == before.end() || old_value->second != attribute.second) print_set(ref, attribute);
        }
    }

    bool reveal_;
};

// The store that is watched. Follows the path when another file takes its place.
class Watched {
  public:
    explicit Watched(std::string path) : path_(std::move(path)) {}

    // Whether there may be something new to read.
    bool changed() {
        const Watch::Finding found = watch_.check(path_.c_str());
        if (found == Watch::Finding::absent) fail(path_, Status::absent, "");
        return found == Watch::Finding::changed;
    }

    Reading read() {
        Store store(path_, Access::recover);
        Reading reading = store.read();
        watch_.loaded(store.database().change_counter());
        return reading;
    }

  private:
    std::string path_;
    Watch watch_;
};

// Prints each new state of the store. While it is absent, locked or damaged, waits.
class Vigil {
  public:
    explicit Vigil(const Request& request) : store_(request.store), differences_(request.reveal) {
        store_.changed();
        last_ = store_.read();
    }

    void check() {
        try {
            if (store_.changed()) print(store_.read());
            if (!trouble_.empty()) complain("watching on");
            trouble_.clear();
        } catch (const Failure& failure) {
            if (failure.exit() != Exit::store) throw;
            if (trouble_ != failure.what()) complain(failure.what());
            trouble_ = failure.what();
        }
    }

  private:
    void print(Reading now) {
        differences_.print(last_.contents, now.contents);
        flush_output();
        last_ = std::move(now);
    }

    Watched store_;
    Differences differences_;
    Reading last_;
    std::string trouble_;  // last reported; empty if there is none
};

}  // namespace

Exit watch(const Request& request) {
    Vigil vigil(request);
    complain("watching " + request.store + "; end with Ctrl-C");
    for (;;) {
        vigil.check();
        std::this_thread::sleep_for(interval);
    }
}

}  // namespace cfql::tool
