#include "store.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "failure.h"
#include "output.h"
#include "text.h"

namespace cfql::tool {

namespace {

const char* remedy(Status status) {
    const bool is_root = geteuid() == 0;
    switch (status) {
        case Status::absent:
            return "make one with \"cfql init\", or name another with --store";
        case Status::exists:
            return "it is left as it is; \"cfql import --replace FILE\" replaces its contents";
        case Status::not_a_store:
            return "name another file with --store";
        case Status::wrong_version:
            return "use the cfql that belongs to it";
        case Status::damaged:
            return "\"cfql check\" tells where; save what is left with \"cfql export --salvage --output FILE\", move "
                   "the store away, \"cfql init\", and import that or your last export";
        case Status::denied:
            return is_root
                       ? "see the modes of the file and of its directory"
                       : "ask root to put you into the group \"cfql\", whose members read the store; only root writes "
                         "to it";
        case Status::read_only:
            return is_root ? "see that the file system is mounted for writing"
                           : "only root writes to it: ask root to run this command";
        case Status::old_mode:
            return "it is refused as it is";
        case Status::obstructed:
            return "it does not belong to the store";
        case Status::interrupted:
            return "until then it cannot be read";
        case Status::too_large:
            return "no store is";
        case Status::busy:
            return "try again; \"fuser\" tells which process holds it";
        case Status::full:
            return "make room on the file system; nothing has changed";
        case Status::io_error:
            return "see the kernel's log (dmesg)";
        case Status::no_memory:
            return "try again when memory is free";
        default:
            return "see \"cfql --help\"";
    }
}

// The engine's message, without the heading that some have.
std::string last_line(std::string_view text) {
    return std::string(text.substr(text.rfind('\n') + 1));
}

ObjectRef ref_of(const Row& row) {
    return {std::string(row.table), std::string(row.object), 1};
}

std::string damage_of(const Row& row) {
    if (!row.object_sound)
        return "table " + quoted(row.table) + ", object " + quoted(row.object) + ": checksum is wrong; left out";
    return described(ref_of(row)) + ": key " + quoted(row.key) + ": checksum is wrong; left out";
}

}  // namespace

class Collector {
  public:
    Collector() = default;
    explicit Collector(const std::string& fault) {
        if (!fault.empty()) reading_.damage.push_back(fault);
    }

    void add(const Row& row) {
        if (losing_) tell_loss(row.object_sound ? described(ref_of(row)) : "the next object");
        if (!row.object_sound) {
            if (row.id != unsound_) reading_.damage.push_back(damage_of(row));
            unsound_ = row.id;
            return;
        }
        if (row.id != current_) {
            reading_.contents.push_back({std::string(row.table), std::string(row.object), {}});
            reading_.ids.push_back(row.id);
            current_ = row.id;
        }
        if (!row.has_attribute) return;
        if (!row.attribute_sound) {
            reading_.damage.push_back(damage_of(row));
            return;
        }
        reading_.contents.back().attributes.emplace(row.key, row.value);
    }

    // Notes that what comes next could not be read.
    void lose() { losing_ = true; }

    // Ends the collection.
    Reading finish() {
        if (losing_) tell_loss("the end");
        return std::move(reading_);
    }

  private:
    void tell_loss(const std::string& next) {
        const Contents& contents = reading_.contents;
        const std::string last =
            contents.empty() ? "the beginning" : described({contents.back().table, contents.back().name, 1});
        reading_.damage.push_back("between " + last + " and " + next + ": some or all values cannot be read; left out");
        losing_ = false;
    }

    bool losing_ = false;
    Reading reading_;
    int64_t current_ = -1;
    int64_t unsound_ = -1;
};

void fail(const std::string& path, Status status, std::string_view detail) {
    std::string message = path + ": " + describe(status);
    if (!detail.empty()) message += " (" + std::string(detail) + ')';
    throw Failure(Exit::store, message + "; " + remedy(status));
}

void complain_of_damage(const Store& store, const Reading& reading) {
    for (const std::string& line : reading.damage)
        complain(store.path() + ": " + line);
}

std::string described(const ObjectRef& ref) {
    std::string text = printable(ref.table);
    if (!ref.name.empty()) text += ' ' + quoted(ref.name);
    if (ref.nth > 1) text += " number " + std::to_string(ref.nth);
    return text;
}

Store::Store(std::string path, Access access) : path_(std::move(path)) {
    const Status status = database_.open(path_.c_str(), access);
    if (status != Status::damaged || access != Access::salvage) {
        require(status);
        return;
    }
    opening_fault_ = last_line(database_.detail());
    copy_ = std::make_unique<PaddedCopy>(path_);
    if (copy_->path().empty() || database_.open(copy_->path().c_str(), access) != Status::ok)
        fail(path_, Status::damaged, opening_fault_);
}

void Store::require(Status status) const {
    if (status == Status::ok) return;
    const bool has_place = status == Status::io_error || status == Status::damaged;
    fail(path_, status, has_place ? last_line(database_.detail()) : "");
}

Reading Store::read(std::string_view table) {
    Collector collector;
    Cursor cursor;
    Row row;
    require(database_.list(cursor, table));
    Status status = Status::ok;
    while ((status = cursor.next(row)) == Status::ok)
        collector.add(row);
    if (status != Status::end) require(status);
    return collector.finish();
}

// Skips what cannot be read by starting anew one id further. After many failures the steps grow, so that neither a wide
// gap between two ids nor a file full of damage takes long.
Reading Store::salvage() {
    constexpr int patience = 64;
    Collector collector(opening_fault_);
    int64_t last = 0;
    for (int failures = 0; failures < 40 * patience; ++failures) {
        const int64_t before = last;
        const Status status = collect(collector, last);
        if (status == Status::end) break;
        if (status != Status::damaged) require(status);
        collector.lose();
        if (last != before) {
            failures = 0;
        } else {
            last += int64_t{1} << (failures / patience);
        }
    }
    return collector.finish();
}

// Collects everything after the object `last`, and sets that to the last one that was read.
Status Store::collect(Collector& collector, int64_t& last) {
    Cursor cursor;
    Row row;
    Status status = database_.list(cursor, {}, last);
    while (status == Status::ok && (status = cursor.next(row)) == Status::ok) {
        collector.add(row);
        last = row.id;
    }
    return status;
}

std::optional<int64_t> Store::find(const std::string& table, const std::string& object, size_t nth) {
    if (nth == 1) {
        int64_t id = 0;
        const Status status = database_.find_object(table, object, id);
        if (status == Status::not_found) return std::nullopt;
        require(status);
        return id;
    }
    const Reading reading = read(table);
    const std::vector<ObjectRef> found = refs(reading.contents);
    const auto ref = std::ranges::find(found, ObjectRef{table, object, nth});
    if (ref == found.end()) return std::nullopt;
    return reading.ids[static_cast<size_t>(ref - found.begin())];
}

}  // namespace cfql::tool
