#include "snapshot.h"

#include <stdlib.h>

#include <algorithm>
#include <iterator>

namespace cfql {

Status Snapshot::load(Database& store) {
    clear();
    Status status = collect(store);
    if (status == Status::ok && !sort()) status = Status::no_memory;
    if (status != Status::ok) clear();
    return status;
}

Status Snapshot::collect(Database& store) {
    Cursor cursor;
    Row row;
    Status status = store.list(cursor);
    while (status == Status::ok && (status = cursor.next(row)) == Status::ok) {
        if (!add_row(row)) return Status::no_memory;
        // Values of a crafted file may share pages, so that they are many times as long as the file.
        if (bytes() > snapshot_limit) return Status::damaged;
    }
    return status == Status::end ? Status::ok : status;
}

bool Snapshot::add_row(const Row& row) {
    if (!row.object_sound) return true;
    if ((objects_.size() == 0 || row.id != last_id_) && !add_object(row)) return false;
    last_id_ = row.id;
    if (!row.attribute_sound) return true;
    const Attribute attribute = {static_cast<uint32_t>(texts_.size()), static_cast<uint16_t>(row.value.size()),
                                 static_cast<uint8_t>(row.key.size())};
    return add_text(row.key) && add_text(row.value) && attributes_.append(&attribute, 1);
}

// Neighbours are mostly of the same table, whose text they then share.
bool Snapshot::add_object(const Row& row) {
    const size_t count = objects_.size();
    const bool shared = count != 0 && table(objects_[count - 1]) == row.table;
    Object object = {};
    object.table = shared ? objects_[count - 1].table : static_cast<uint32_t>(texts_.size());
    if (!shared && !add_text(row.table)) return false;
    object.name = static_cast<uint32_t>(texts_.size());
    object.attributes = static_cast<uint32_t>(attributes_.size());
    object.table_size = static_cast<uint8_t>(row.table.size());
    object.name_size = static_cast<uint8_t>(row.object.size());
    const auto index = static_cast<uint32_t>(count);
    return add_text(row.object) && objects_.append(&object, 1) && sorted_.append(&index, 1);
}

bool Snapshot::add_text(Text text) {
    return texts_.append(text.data(), text.size()) && texts_.append("", 1);
}

// Adds a last object without attributes, which marks where the attributes of the one before it end.
bool Snapshot::sort() {
    if (sorted_.size() != 0) qsort_r(sorted_.begin(), sorted_.size(), sizeof(uint32_t), compare, this);
    const Object end = {0, 0, static_cast<uint32_t>(attributes_.size()), 0, 0};
    return objects_.append(&end, 1);
}

int Snapshot::compare(const void* left, const void* right, void* snapshot) {
    const auto& self = *static_cast<const Snapshot*>(snapshot);
    const uint32_t indexes[] = {*static_cast<const uint32_t*>(left), *static_cast<const uint32_t*>(right)};
    const Object *const first = &self.objects_[indexes[0]], *const second = &self.objects_[indexes[1]];
    const int tables = self.table(*first).compare(self.table(*second));
    const int names = tables != 0 ? tables : self.name(*first).compare(self.name(*second));
    return names != 0 ? names : indexes[0] < indexes[1] ? -1 : 1;
}

void Snapshot::clear() {
    texts_.clear();
    objects_.clear();
    attributes_.clear();
    sorted_.clear();
    std::fill(std::begin(recent_), std::end(recent_), 0);
}

void Snapshot::swap(Snapshot& other) {
    texts_.swap(other.texts_);
    objects_.swap(other.objects_);
    attributes_.swap(other.attributes_);
    sorted_.swap(other.sorted_);
    std::swap(recent_, other.recent_);
}

// Callers read an object key by key, and the objects that it leads to, so recent objects are tried first.
bool Snapshot::get(Text wanted_table, Text wanted_name, Text wanted_key, Text& value) const {
    const size_t last_octet = wanted_name.empty() ? 0 : static_cast<unsigned char>(wanted_name.back());
    uint32_t& recent = recent_[(wanted_table.size() + last_octet) % std::size(recent_)];
    if (!is(recent, wanted_table, wanted_name)) recent = first_of(wanted_table, wanted_name);
    return is(recent, wanted_table, wanted_name) && find(recent, wanted_key, value);
}

bool Snapshot::is(uint32_t index, Text wanted_table, Text wanted_name) const {
    if (index >= sorted_.size()) return false;
    const Object& object = objects_[index];
    return name(object) == wanted_name && table(object) == wanted_table;
}

// The first object of that name, or any other object if there is none.
uint32_t Snapshot::first_of(Text wanted_table, Text wanted_name) const {
    const uint32_t* const found = std::partition_point(sorted_.begin(), sorted_.end(), [&](uint32_t index) {
        const int tables = table(objects_[index]).compare(wanted_table);
        return tables != 0 ? tables < 0 : name(objects_[index]) < wanted_name;
    });
    return found == sorted_.end() ? 0 : *found;
}

bool Snapshot::find(size_t object, Text wanted, Text& value) const {
    const Attribute* const begin = attributes_.begin() + objects_[object].attributes;
    const Attribute* const end = attributes_.begin() + objects_[object + 1].attributes;
    const Attribute* const found =
        std::partition_point(begin, end, [&](const Attribute& attribute) { return key(attribute) < wanted; });
    if (found == end || key(*found) != wanted) return false;
    place_ = static_cast<size_t>(found - begin);
    value = value_of(*found);
    return true;
}

// Objects of a table mostly have the same keys, so a key is mostly at the same position in the next object.
bool Snapshot::carries(size_t object, const cfqlquery_node* filter) const {
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next) {
        if (!pair->name || !pair->value) return false;
        const Text wanted = pair->name;
        const size_t likely = objects_[object].attributes + place_;
        Text value;
        if (likely < objects_[object + 1].attributes && key(attributes_[likely]) == wanted)
            value = value_of(attributes_[likely]);
        else if (!find(object, wanted, value))
            return false;
        if (value != pair->value) return false;
    }
    return true;
}

// Neighbours of one table share its text.
bool Snapshot::next(Text wanted, const cfqlquery_node* filter, size_t& position, Text& found) const {
    uint32_t last = UINT32_MAX;
    bool belongs = false;
    for (; position < sorted_.size(); ++position) {
        const Object& object = objects_[position];
        if (object.table != last) belongs = table(object) == wanted;
        last = object.table;
        if (!belongs || !carries(position, filter)) continue;
        found = name(object);
        ++position;
        return true;
    }
    return false;
}

}  // namespace cfql
