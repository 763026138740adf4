// An immutable copy of a whole store in memory: one state of it, every checksum verified. A value is found in a number
// of steps that grows with the logarithm of the store's size, whatever the names are.
#pragma once

#include <stdint.h>

#include "array.h"
#include "cfqlquery.h"
#include "database.h"

namespace cfql {

// Octets that no snapshot of a sound file passes. While a snapshot is replaced there are two.
inline constexpr size_t snapshot_limit = 16U << 20;

class Snapshot {
  public:
    // Takes the state that the transaction open on STORE sees. Objects and values whose checksum is wrong are left out.
    // After a failure the snapshot is empty.
    Status load(Database& store);

    // Forgets everything, overwriting it.
    void clear();
    void swap(Snapshot& other);

    // The value of KEY of the first object of that name. VALUE is valid until the snapshot changes, and a NUL follows.
    bool get(Text table, Text object, Text key, Text& value) const;

    // The name of the next object of TABLE, in order of insertion, that carries every pair of FILTER. POSITION is 0 at
    // first. NAME is valid until the snapshot changes, and a NUL follows.
    bool next(Text table, const cfqlquery_node* filter, size_t& position, Text& name) const;

  private:
    // Texts are offsets into texts_, each with a NUL behind it; a value follows its key.
    struct Object {
        uint32_t table;
        uint32_t name;
        uint32_t attributes;  // the first of them in attributes_; the next object's come after the last
        uint8_t table_size;
        uint8_t name_size;
    };
    struct Attribute {
        uint32_t key;
        uint16_t value_size;
        uint8_t key_size;
    };

    Status collect(Database& store);
    bool take(const Row& row);
    bool take_object(const Row& row);
    bool add_text(Text text);
    bool sort();
    static int compare(const void* left, const void* right, void* snapshot);
    size_t bytes() const { return texts_.bytes() + objects_.bytes() + attributes_.bytes() + sorted_.bytes(); }
    Text text(uint32_t offset, size_t size) const { return {texts_.begin() + offset, size}; }
    Text table(const Object& object) const { return text(object.table, object.table_size); }
    Text name(const Object& object) const { return text(object.name, object.name_size); }
    Text key(const Attribute& attribute) const { return text(attribute.key, attribute.key_size); }
    Text value_of(const Attribute& attribute) const {
        return text(attribute.key + attribute.key_size + 1, attribute.value_size);
    }
    bool is(uint32_t index, Text table, Text name) const;
    uint32_t first_of(Text table, Text name) const;
    bool find(size_t object, Text key, Text& value) const;
    bool carries(size_t object, const cfqlquery_node* filter) const;

    Array<char> texts_;
    Array<Object> objects_;        // in order of insertion
    Array<Attribute> attributes_;  // of one object together, in octet order of their keys
    Array<uint32_t> sorted_;       // the objects in order of table, name, insertion
    int64_t last_id_ = 0;
    // What get() found last: each the first object of its name. 0 always is.
    mutable uint32_t recent_[8] = {};
    mutable size_t place_ = 0;  // of the attribute that find() found last, among those of its object
};

}  // namespace cfql
