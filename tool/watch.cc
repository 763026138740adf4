// The command watch: prints the difference between the store's states as they come.
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

using ByPlace = std::map<Place, const Object*>;

ByPlace by_place(const Contents& contents) {
    ByPlace found;
    const std::vector<Place> all = places(contents);
    for (size_t i = 0; i < all.size(); ++i)
        found.emplace(all[i], &contents[i]);
    return found;
}

class Differences {
  public:
    explicit Differences(bool reveal) : reveal_(reveal) {}

    void print(const Contents& before, const Contents& after) const {
        const ByPlace old_objects = by_place(before);
        const ByPlace new_objects = by_place(after);
        for (const auto& [place, object] : old_objects) {
            if (!new_objects.contains(place)) print_line("unset\t" + row(place, "", "", true));
        }
        for (const auto& [place, object] : new_objects) {
            const auto old_object = old_objects.find(place);
            if (old_object == old_objects.end()) {
                print_new(place, object->attributes);
            } else {
                print_change(place, old_object->second->attributes, object->attributes);
            }
        }
        if (old_objects.size() == new_objects.size() && places(before) != places(after)) print_line("order");
    }

  private:
    void print_set(const Place& place, const Attributes::value_type& attribute) const {
        print_line("set\t" + row(place, attribute.first, attribute.second, reveal_));
    }

    void print_new(const Place& place, const Attributes& attributes) const {
        if (attributes.empty()) print_line("set\t" + row(place, "", "", true));
        for (const auto& attribute : attributes)
            print_set(place, attribute);
    }

    void print_change(const Place& place, const Attributes& before, const Attributes& after) const {
        for (const auto& [key, value] : before) {
            if (!after.contains(key)) print_line("unset\t" + row(place, key, "", true));
        }
        for (const auto& attribute : after) {
            const auto old_value = before.find(attribute.first);
            if (old_value == before.end() || old_value->second != attribute.second) print_set(place, attribute);
        }
    }

    bool reveal_;
};

// The store as watch sees it; follows the file when another takes its place.
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

// The states of the store, one after the other. One that is away, locked or damaged for the moment is waited for.
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
    std::string trouble_;  // as it was told last
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
