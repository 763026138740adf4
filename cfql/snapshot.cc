#include "snapshot.h"

#include <string.h>

namespace cfql {
namespace {

// Steps from the slot that the hash names. A store whose names were chosen to fall on few hash values is not indexed.
constexpr std::size_t longest_probe = 1000;

// FNV-1a over the three texts, a NUL between them. An object counts as a key without octets.
std::uint32_t hash_of(Text table, Text object, Text key) {
    std::uint32_t hash = 2166136261U;
    const auto octet = [&hash](unsigned char value) { hash = (hash ^ value) * 16777619U; };
    for (const char c : table)
        octet(static_cast<unsigned char>(c));
    octet(0);
    for (const char c : object)
        octet(static_cast<unsigned char>(c));
    octet(0);
    for (const char c : key)
        octet(static_cast<unsigned char>(c));
    return hash;
}

std::size_t slots_for(std::size_t items) {
    std::size_t slots = 16;
    while (slots < 2 * items)
        slots *= 2;
    return slots;
}

}  // namespace

Status Snapshot::load(Database& store, bool& fits) {
    clear();
    fits = true;
    const Status status = collect(store, fits);
    if (status != Status::ok || !fits) clear();
    return status;
}

Status Snapshot::collect(Database& store, bool& fits) {
    Cursor cursor;
    Row row;
    Status status = store.list(cursor);
    while (status == Status::ok && (status = cursor.next(row)) == Status::ok) {
        if (!take(row, fits)) return Status::no_memory;
        if (!fits) return Status::ok;
    }
    if (status != Status::end) return status;
    return index(fits) ? Status::ok : Status::no_memory;
}

bool Snapshot::take(const Row& row, bool& fits) {
    if (!row.object_sound) return true;
    if (items_.size() == 0 || row.id != last_id_) {
        if (!take_object(row)) return false;
        last_id_ = row.id;
    }
    if (row.attribute_sound) {
        const std::uint32_t owner = items_[items_.size() - 1].owner;
        if (!add(row.key, row.value, owner, hash_of(row.table, row.object, row.key))) return false;
    }
    fits = bytes() <= snapshot_limit;
    return true;
}

// Neighbours are mostly of one table, whose text is then shared.
bool Snapshot::take_object(const Row& row) {
    const auto index = static_cast<std::uint32_t>(items_.size());
    const std::uint32_t hash = hash_of(row.table, row.object, {});
    const Item* const previous = index == 0 ? nullptr : &items_[items_[index - 1].owner];
    if (previous == nullptr || key(*previous) != row.table) return add(row.table, row.object, index, hash);
    Item item = *previous;
    item.hash = hash;
    item.owner = index;
    item.value_size = static_cast<std::uint16_t>(row.object.size());
    return add_text(row.object, item.value) && items_.append(&item, 1);
}

bool Snapshot::add(Text key, Text value, std::uint32_t owner, std::uint32_t hash) {
    Item item = {hash, owner, 0, 0, static_cast<std::uint16_t>(key.size()), static_cast<std::uint16_t>(value.size())};
    return add_text(key, item.key) && add_text(value, item.value) && items_.append(&item, 1);
}

bool Snapshot::add_text(Text text, std::uint32_t& offset) {
    offset = static_cast<std::uint32_t>(texts_.size());
    return texts_.append(text.data(), text.size()) && texts_.append("", 1);
}

std::size_t Snapshot::bytes() const {
    return texts_.size() + items_.size() * sizeof(Item) + slots_for(items_.size()) * sizeof(std::uint32_t);
}

// Of several objects with one name only the first is found by name, so the attributes of the others are not entered.
bool Snapshot::index(bool& fits) {
    if (!slots_.assign_zero(slots_for(items_.size()))) return false;
    const std::size_t mask = slots_.size() - 1;
    bool repeated = false;
    for (std::uint32_t i = 0; i < items_.size() && fits; ++i) {
        const Item& item = items_[i];
        const bool is_object = item.owner == i;
        if (!is_object && repeated) continue;
        const Item& object = items_[item.owner];
        const std::size_t slot = probe(item.hash, key(object), value(object), is_object ? Text() : key(item));
        if (is_object) repeated = slots_[slot] != 0;
        if (slots_[slot] == 0) slots_[slot] = i + 1;
        fits = ((slot - item.hash) & mask) <= longest_probe;
    }
    return true;
}

void Snapshot::clear() {
    texts_.clear();
    items_.clear();
    slots_.clear();
}

void Snapshot::swap(Snapshot& other) {
    texts_.swap(other.texts_);
    items_.swap(other.items_);
    slots_.swap(other.slots_);
}

bool Snapshot::is(std::uint32_t item, Text table, Text object, Text wanted) const {
    const std::uint32_t owner = items_[item].owner;
    const Text own = owner == item ? Text() : key(items_[item]);
    return own == wanted && value(items_[owner]) == object && key(items_[owner]) == table;
}

// The slot of that object or attribute, or the free one where it would be. At least half of the slots are free.
std::size_t Snapshot::probe(std::uint32_t hash, Text table, Text object, Text key) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash & mask;
    while (slots_[slot] != 0) {
        const std::uint32_t item = slots_[slot] - 1;
        if (items_[item].hash == hash && is(item, table, object, key)) break;
        slot = (slot + 1) & mask;
    }
    return slot;
}

bool Snapshot::get(Text table, Text object, Text key, Text& found) const {
    if (slots_.size() == 0) return false;
    const std::uint32_t item = slots_[probe(hash_of(table, object, key), table, object, key)];
    if (item != 0) found = value(items_[item - 1]);
    return item != 0;
}

bool Snapshot::carries(std::size_t object, const cfqlquery_node& pair) const {
    if (pair.name == nullptr || pair.value == nullptr) return false;
    for (std::size_t i = object + 1; i < items_.size() && items_[i].owner == object; ++i) {
        if (key(items_[i]) == pair.name) return value(items_[i]) == pair.value;
    }
    return false;
}

bool Snapshot::objects(Text table, const cfqlquery_node* filter, Array<char>& names, std::size_t& count) const {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].owner != i || key(items_[i]) != table) continue;
        const cfqlquery_node* pair = filter;
        while (pair != nullptr && carries(i, *pair))
            pair = pair->next;
        if (pair != nullptr) continue;
        if (!names.append(texts_.data() + items_[i].value, items_[i].value_size + 1U)) return false;
        ++count;
    }
    return true;
}

}  // namespace cfql
