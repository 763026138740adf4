#include "writer.h"

#include <algorithm>

#include "keys.h"
#include "text.h"

namespace collector {

using cfql::Status;

namespace {

bool is_system(const ObjectName& name) {
    return name.table == system_table;
}

bool is_marked(const Values& values) {
    const auto mark = values.find(origin_key);
    return mark != values.end() && mark->second == origin;
}

std::string line(const char* verb, const ObjectName& name, std::string_view key, std::string_view value) {
    using cfql::tool::printable;
    std::string made =
        std::string(verb) + '\t' + printable(name.table) + '\t' + printable(name.name) + '\t' + printable(key);
    const std::string_view shown = cfql::tool::is_secret(key) ? cfql::tool::mask : value;
    return value.empty() ? made : made + '\t' + printable(shown);
}

}  // namespace

// All sound objects, in order of insertion.
struct Writer::Found {
    struct Object {
        int64_t id;
        ObjectName name;
        Values values;
    };
    std::vector<Object> objects;

    void add(const cfql::Row& row) {
        if (!row.object_sound) return;
        if (objects.empty() || objects.back().id != row.id) {
            objects.push_back({row.id, {std::string(row.table), std::string(row.object)}, {}});
        }
        if (row.has_attribute && row.attribute_sound) objects.back().values.emplace(row.key, row.value);
    }
};

// In the table "system" the mark applies to the country alone; everything else there is the operator's.
void Writer::sort(const Found& found) {
    held_.clear();
    ids_.clear();
    foreign_.clear();
    system_has_more_ = false;
    for (const Found::Object& object : found.objects) {
        const bool ours = is_marked(object.values);
        if (is_system(object.name)) {
            const auto country = object.values.find(country_key);
            const bool has_country = country != object.values.end();
            if (has_country && !ours) foreign_.insert(object.name);
            if (ours) held_[object.name] = {{std::string(origin_key), std::string(origin)}};
            if (ours && has_country) held_[object.name].emplace(*country);
            system_has_more_ = object.values.size() > size_t{ours} + size_t{has_country};
        } else if (!ours) {
            foreign_.insert(object.name);
            continue;
        } else {
            held_.emplace(object.name, object.values);
        }
        ids_[object.name].push_back(object.id);
    }
}

Status Writer::read() {
    Found found;
    cfql::Cursor cursor;
    cfql::Row row;
    Status status = store_.list(cursor);
    while (status == Status::ok && (status = cursor.next(row)) == Status::ok)
        found.add(row);
    if (status != Status::end) return status;
    sort(found);
    return Status::ok;
}

// `wanted` without what belongs to others.
Contents Writer::allowed(const Contents& wanted) const {
    Contents made = wanted;
    std::erase_if(made, [&](const auto& object) { return foreign_.contains(object.first); });
    return made;
}

Status Writer::remove(const ObjectName& name, size_t& changes) {
    ++changes;
    Status status = Status::ok;
    if (is_system(name) && system_has_more_) {
        for (const std::string_view key : {country_key, origin_key}) {
            if (status == Status::ok || status == Status::not_found) status = store_.unset(name.table, name.name, key);
        }
        return status == Status::not_found ? Status::ok : status;
    }
    for (const int64_t id : ids_[name]) {
        if (status == Status::ok) status = store_.delete_object(id);
    }
    return status;
}

Status Writer::apply_object(const ObjectName& name, const Values& from, const Values& to, size_t& changes) {
    Status status = Status::ok;
    for (const auto& [key, value] : to) {
        const auto old = from.find(key);
        if (status != Status::ok || (old != from.end() && old->second == value)) continue;
        status = store_.set(name.table, name.name, key, value);
        ++changes;
    }
    for (const auto& [key, value] : from) {
        if (status != Status::ok || to.contains(key)) continue;
        status = store_.unset(name.table, name.name, key);
        ++changes;
    }
    return status;
}

Status Writer::apply(const Contents& wanted, size_t& changes) {
    static const Values nothing;
    Status status = Status::ok;
    for (const auto& [name, values] : held_) {
        const bool is_double = !is_system(name) && ids_[name].size() > 1;
        if (status != Status::ok || (wanted.contains(name) && !is_double)) continue;
        status = remove(name, changes);
    }
    for (const auto& [name, values] : wanted) {
        if (status != Status::ok) break;
        const auto old = held_.find(name);
        const bool is_there = old != held_.end() && (is_system(name) || ids_[name].size() == 1);
        status = apply_object(name, is_there ? old->second : nothing, values, changes);
    }
    return status;
}

Writer::Result Writer::finish(Status status, size_t changes) {
    Result result = {status, status == Status::ok ? "" : store_.detail(), status == Status::ok ? changes : 0};
    store_.close();
    last_status_ = status;
    return result;
}

Writer::Result Writer::load() {
    sort({});
    Status status = store_.open(path_.c_str(), cfql::Access::read);
    if (status == Status::absent) return finish(Status::ok, 0);
    if (status == Status::ok) status = read();
    return finish(status, 0);
}

Status Writer::open() {
    const Status status = store_.open(path_.c_str(), cfql::Access::write, wait_ms);
    if (status != Status::absent) return status;
    const Status made = store_.create(path_.c_str());
    if (made != Status::ok) return made;
    return store_.open(path_.c_str(), cfql::Access::write, wait_ms);
}

// Our own write changes the file's time stamps, too. To tell it from others' writes, the next call reads the store once
// more, and only then takes it as known.
Writer::Result Writer::write(const Contents& wanted) {
    if (watch_.check(path_.c_str()) == cfql::Watch::Finding::same && wanted == told_) return {};
    size_t changes = 0;
    Status status = open();
    if (status == Status::ok) status = store_.begin_write();
    if (status == Status::ok) status = read();
    const Contents ours = allowed(wanted);
    if (status == Status::ok) status = apply(ours, changes);
    if (status == Status::ok && changes > 0) status = store_.commit();
    if (status == Status::ok && changes == 0) watch_.loaded(store_.change_counter());
    Result result = finish(status, changes);
    if (result.status != Status::ok) return result;
    others_.clear();
    for (const auto& [name, values] : wanted) {
        if (foreign_.contains(name)) others_.insert(name);
    }
    held_ = ours;
    told_ = wanted;
    return result;
}

std::vector<std::string> Writer::preview(const Contents& wanted) const {
    static const Values nothing;
    std::vector<std::string> lines;
    const Contents ours = allowed(wanted);
    for (const auto& [name, values] : ours) {
        const auto old = held_.find(name);
        const Values& from = old == held_.end() ? nothing : old->second;
        for (const auto& [key, value] : values) {
            const auto before = from.find(key);
            if (before == from.end() || before->second != value) lines.push_back(line("set", name, key, value));
        }
        for (const auto& [key, value] : from) {
            if (!values.contains(key)) lines.push_back(line("unset", name, key, {}));
        }
    }
    for (const auto& [name, values] : held_) {
        if (!ours.contains(name)) lines.push_back(line("unset", name, {}, {}));
    }
    return lines;
}

}  // namespace collector
