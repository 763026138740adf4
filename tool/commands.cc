#include "commands.h"

#include <limits.h>
#include <stdlib.h>

#include <algorithm>

#include "facts.h"
#include "input.h"
#include "output.h"
#include "store.h"
#include "text.h"

namespace cfql::tool {

namespace {

void allow(const std::string& refusal) {
    if (!refusal.empty()) throw Failure(Exit::input, refusal + "; nothing has changed");
}

void allow(const char* refusal) {
    if (refusal) allow(std::string(refusal));
}

ObjectRef ref_of(const Request& request) {
    return {request.table, request.object, request.nth};
}

size_t count_of_name(Store& store, const ObjectRef& ref) {
    const Reading reading = store.read(ref.table);
    return static_cast<size_t>(
        std::ranges::count(reading.contents, ref.name, [](const Object& object) { return object.name; }));
}

Failure missing(Store& store, const ObjectRef& ref) {
    const size_t count = ref.nth > 1 ? count_of_name(store, ref) : 0;
    const std::string there =
        count == 0   ? "there is no " + described(ref)
        : count == 1 ? "there is only one " + described({ref.table, ref.name, 1})
                     : "there are only " + std::to_string(count) + " of " + described({ref.table, ref.name, 1});
    return {Exit::no, store.path() + ": " + there + "; see \"cfql list\""};
}

// The object that the request names. Throws if there is none.
int64_t object_id(Store& store, const Request& request) {
    const auto id = store.find(request.table, request.object, request.nth);
    if (!id) throw missing(store, ref_of(request));
    return *id;
}

// The same for set, which adds the object if it is the next of its name.
int64_t object_id_to_set(Store& store, const Request& request) {
    const auto there = store.find(request.table, request.object, request.nth);
    if (there) return *there;
    const ObjectRef before = {request.table, request.object, request.nth - 1};
    if (before.nth > 0 && !store.find(before.table, before.name, before.nth)) throw missing(store, ref_of(request));
    int64_t id = 0;
    store.require(store.database().insert_object(request.table, request.object, id));
    return id;
}

// Throws unless `status` says that get or unset found its attribute.
void require_attribute(const Store& store, const Request& request, Status status) {
    const std::string what = store.path() + ": " + described(ref_of(request)) + ": key " + quoted(request.key);
    if (status == Status::not_found) throw Failure(Exit::no, what + " is not set; see \"cfql list\"");
    if (status == Status::damaged) throw Failure(Exit::store, what + ": checksum is wrong; set it again");
    store.require(status);
}

// /run is empty after each boot. The store's default path may be a link into it.
void warn_of_short_life(const std::string& store) {
    char resolved[PATH_MAX];
    if (!realpath(store.c_str(), resolved)) return;
    const std::string file = resolved;
    if (!file.starts_with("/run/")) return;
    complain("note: " + file +
             " is lost at the next boot, and this value with it; a permanent value belongs in "
             "/etc/cfql/collector.toml, see \"man cfql-collector\"");
}

// Prints the faults that a check finds. The database engine reports several in one text, below a heading.
class Faults {
  public:
    void add(std::string_view text) {
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            if (line.empty() || line.starts_with("***")) continue;
            report(line);
            ++count_;
        }
    }
    size_t count() const { return count_; }

  private:
    size_t count_ = 0;
};

}  // namespace

Exit get(const Request& request) {
    Store store(request.store, Access::recover);
    store.require(store.database().begin_read());
    Text value;
    const int64_t id = object_id(store, request);
    require_attribute(store, request,
                      store.database().get_attribute(id, request.table, request.object, request.key, value));
    print_line(on_terminal() ? shown(request.key, value, request.reveal) : std::string(value));
    return Exit::done;
}

Exit set(const Request& request) {
    const std::string value = request.value == "-" ? value_from_input() : request.value;
    allow(table_error(request.table));
    allow(object_error(request.table, request.object));
    allow(key_error(request.key));
    allow(value_error(value));
    allow(mask_error(request.key, value));
    Store store(request.store, Access::write);
    Database& database = store.database();
    store.require(database.begin_write());
    const int64_t id = object_id_to_set(store, request);
    store.require(database.set_attribute(id, request.table, request.object, request.key, value));
    store.require(database.commit());
    // Keys are free: one that the agent does not read is stored all the same.
    const std::string error = typing_error(request.table, request.key);
    if (!error.empty()) complain("note: " + error);
    warn_of_short_life(request.store);
    return Exit::done;
}

Exit unset(const Request& request) {
    Store store(request.store, Access::write);
    Database& database = store.database();
    store.require(database.begin_write());
    const int64_t id = object_id(store, request);
    if (request.key.empty()) {
        store.require(database.delete_object(id));
    } else {
        require_attribute(store, request, database.unset_attribute(id, request.key));
    }
    store.require(database.commit());
    return Exit::done;
}

Exit list(const Request& request) {
    Store store(request.store, Access::recover);
    const Reading reading = store.read(request.table);
    const std::vector<ObjectRef> found = refs(reading.contents);
    bool any = request.table.empty();
    for (size_t i = 0; i < found.size(); ++i) {
        if (!request.object.empty() && found[i].name != request.object) continue;
        any = true;
        const Attributes& attributes = reading.contents[i].attributes;
        if (attributes.empty()) print_line(row(found[i], "", "", true));
        for (const auto& [key, value] : attributes)
            print_line(row(found[i], key, value, request.reveal));
    }
    complain_of_damage(store, reading);
    if (!any) throw missing(store, {request.table, request.object, 1});
    return reading.damage.empty() ? Exit::done : Exit::store;
}

Exit check(const Request& request) {
    Store store(request.store, Access::salvage);
    Faults faults;
    const Status status =
        store.database().check([](void* to, const char* text) { static_cast<Faults*>(to)->add(text); }, &faults);
    if (status == Status::damaged) {
        for (const std::string& line : store.salvage().damage)
            faults.add(line);
    } else {
        store.require(status);
    }
    report(store.path() + ": " + (faults.count() == 0 ? "no faults" : counted(faults.count(), "fault")));
    if (faults.count() == 0) return Exit::done;
    complain("save what is left with \"cfql export --salvage --output FILE\"");
    return Exit::no;
}

}  // namespace cfql::tool
