#include "snapshot.h"

#include <algorithm>

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
        if (!take(row)) return Status::no_memory;
        // Values of a crafted file may share pages, and so be many times as long as the file.
        if (bytes() > snapshot_limit) return Status::damaged;
    }
    return status == Status::end ? Status::ok : status;
}

bool Snapshot::take(const Row& row) {
    if (!row.object_sound) return true;
    if ((objects_.size() == 0 || row.id != last_id_) && !take_object(row)) return false;
    last_id_ = row.id;
    if (!row.attribute_sound) return true;
    const Attribute attribute = {static_cast<uint32_t>(texts_.size()), static_cast<uint16_t>(row.value.size()),
                                 static_cast<uint8_t>(row.key.size())};
    return add_text(row.key) && add_text(row.value) && attributes_.append(&attribute, 1);
}

// Neighbours are mostly of one table, whose text is then shared.
bool Snapshot::take_object(const Row& row) {
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

// An object without attributes ends the list: where the attributes of the last one end.
bool Snapshot::sort() {
    std::sort(sorted_.begin(), sorted_.end(), [this](uint32_t left, uint32_t right) {
        const int tables = table(objects_[left]).compare(table(objects_[right]));
        const int names = tables != 0 ? tables : name(objects_[left]).compare(name(objects_[right]));
        return names != 0 ? names < 0 : left < right;
    });
    const Object end = {0, 0, static_cast<uint32_t>(attributes_.size()), 0, 0};
    return objects_.append(&end, 1);
}

void Snapshot::clear() {
    texts_.clear();
    objects_.clear();
    attributes_.clear();
    sorted_.clear();
}

void Snapshot::swap(Snapshot& other) {
    texts_.swap(other.texts_);
    objects_.swap(other.objects_);
    attributes_.swap(other.attributes_);
    sorted_.swap(other.sorted_);
}

bool Snapshot::get(Text wanted_table, Text wanted_name, Text wanted_key, Text& value) const {
    const uint32_t* const found = std::partition_point(sorted_.begin(), sorted_.end(), [&](uint32_t index) {
        const int tables = table(objects_[index]).compare(wanted_table);
        return tables != 0 ? tables < 0 : name(objects_[index]) < wanted_name;
    });
    if (found == sorted_.end()) return false;
    const Object& object = objects_[*found];
    return name(object) == wanted_name && table(object) == wanted_table && find(*found, wanted_key, value);
}

bool Snapshot::find(size_t object, Text wanted, Text& value) const {
    const Attribute* const end = attributes_.begin() + objects_[object + 1].attributes;
    const Attribute* const found =
        std::partition_point(attributes_.begin() + objects_[object].attributes, end,
                             [&](const Attribute& attribute) { return key(attribute) < wanted; });
    if (found == end || key(*found) != wanted) return false;
    value = text(found->key + found->key_size + 1, found->value_size);
    return true;
}

bool Snapshot::carries(size_t object, const cfqlquery_node* filter) const {
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next) {
        Text value;
        if (!pair->name || !pair->value) return false;
        if (!find(object, pair->name, value) || value != pair->value) return false;
    }
    return true;
}

bool Snapshot::next(Text wanted, const cfqlquery_node* filter, size_t& position, Text& found) const {
    for (; position < sorted_.size(); ++position) {
        if (table(objects_[position]) != wanted || !carries(position, filter)) continue;
        found = name(objects_[position]);
        ++position;
        return true;
    }
    return false;
}

}  // namespace cfql
