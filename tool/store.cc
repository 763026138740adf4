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
            return "move the file away, make a new one with \"cfql init\", and import your last export";
        case Status::denied:
            return is_root ? "see the modes of the file and of its directory"
                           : "ask root to put you into the group \"cfql\", whose members read the store";
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

std::string damage_of(const Row& row) {
    if (!row.object_sound)
        return "table " + quoted(row.table) + ", object " + quoted(row.object) + ": checksum is wrong";
    return described({std::string(row.table), std::string(row.object), 1}) + ": key " + quoted(row.key) +
           ": checksum is wrong";
}

class Collector {
  public:
    void add(const Row& row) {
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

    Reading take() { return std::move(reading_); }

  private:
    Reading reading_;
    std::int64_t current_ = -1;
    std::int64_t unsound_ = -1;
};

}  // namespace

void fail(const std::string& path, Status status, std::string_view detail) {
    std::string message = path + ": " + describe(status);
    if (!detail.empty()) message += " (" + std::string(detail) + ')';
    throw Failure(Exit::store, message + "; " + remedy(status));
}

void complain_of_damage(const Store& store, const Reading& reading) {
    for (const std::string& line : reading.damage)
        complain(store.path() + ": " + line + "; left out");
}

std::string described(const Place& place) {
    std::string text = printable(place.table);
    if (!place.name.empty()) text += ' ' + quoted(place.name);
    if (place.nth > 1) text += " number " + std::to_string(place.nth);
    return text;
}

Store::Store(std::string path, Access access) : path_(std::move(path)) {
    require(database_.open(path_.c_str(), access));
}

void Store::require(Status status) const {
    if (status == Status::ok) return;
    const bool engine_failed = status == Status::io_error || status == Status::damaged;
    fail(path_, status, engine_failed ? database_.detail() : "");
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
    return collector.take();
}

std::optional<std::int64_t> Store::find(const std::string& table, const std::string& object, std::size_t nth) {
    if (nth == 1) {
        std::int64_t id = 0;
        const Status status = database_.find_object(table, object, id);
        if (status == Status::not_found) return std::nullopt;
        require(status);
        return id;
    }
    const Reading reading = read(table);
    const std::vector<Place> found = places(reading.contents);
    const auto place = std::ranges::find(found, Place{table, object, nth});
    if (place == found.end()) return std::nullopt;
    return reading.ids[static_cast<std::size_t>(place - found.begin())];
}

}  // namespace cfql::tool
