// An immutable copy of the whole store in memory, in one consistent state and with every checksum verified. Finding a
// value takes logarithmic time, whatever the names are.
#pragma once

#include <stdint.h>

#include "array.h"
#include "cfqlquery.h"
#include "database.h"

namespace cfql {

// The most octets that a snapshot of a sound file needs. While a snapshot is replaced there are two.
inline constexpr size_t snapshot_limit = 16U << 20;

class Snapshot {
  public:
    // Loads the state that the open transaction of `store` sees. Objects and values whose checksum is wrong are left
    // out. After a failure the snapshot is empty.
    Status load(Database& store);

    // Forgets everything, overwriting it.
    void clear();
    void swap(Snapshot& other);

    // The value of `key` of the first object of that name. `value` is valid until the snapshot changes, and is followed
    // by a NUL.
    bool get(Text table, Text object, Text key, Text& value) const;

    // The name of the next object of `table`, in order of insertion, that has every pair of `filter`. `position` is 0
    // at first. `name` is valid until the snapshot changes, and is followed by a NUL.
    bool next(Text table, const cfqlquery_node* filter, size_t& position, Text& name) const;

  private:
    // Texts are offsets into texts_, each followed by a NUL; a value follows its key.
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
    bool add_row(const Row& row);
    bool add_object(const Row& row);
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
    Array<Attribute> attributes_;  // those of an object together, in octet order of their keys
    Array<uint32_t> sorted_;       // the objects in order of table, name, insertion
    int64_t last_id_ = 0;
    // The objects that get() found last, each the first of its name, as object 0 always is.
    mutable uint32_t recent_[8] = {};
    mutable size_t place_ = 0;  // position of the attribute that find() found last, among those of its object
};

}  // namespace cfql
