// An immutable copy of a whole store in memory: one state of it, every checksum verified, for reads at the price of a
// hash lookup.
#ifndef CFQL_SNAPSHOT_H
#define CFQL_SNAPSHOT_H

#include <cstdint>

#include "array.h"
#include "cfqlquery.h"
#include "database.h"

namespace cfql {

// What a snapshot may take. A larger store is read from the database at each call. While a snapshot is replaced there
// are two, and the arrays of the new one may be half empty.
inline constexpr std::size_t snapshot_limit = 16U << 20;

class Snapshot {
  public:
    // Takes the state that the transaction open on STORE sees. FITS becomes false, with ok, when the store is too large
    // for a snapshot; the snapshot is then empty, as it is after a failure. Objects and values whose checksum is wrong
    // are left out.
    Status load(Database& store, bool& fits);

    // Forgets everything, overwriting it.
    void clear();
    void swap(Snapshot& other);

    // The value of KEY (not empty) of the first object of that name. VALUE is valid until the snapshot changes, and a
    // NUL follows.
    bool get(Text table, Text object, Text key, Text& value) const;

    // Appends the name of each object of TABLE that carries every pair of FILTER, in order of insertion, each with its
    // NUL, and adds to COUNT. False when memory is short.
    bool objects(Text table, const cfqlquery_node* filter, Array<char>& names, std::size_t& count) const;

  private:
    // An object, followed by its attributes. Texts are offsets into texts_. Of an object, the key is the table and the
    // value the name, and the owner is its own index.
    struct Item {
        std::uint32_t hash;
        std::uint32_t owner;
        std::uint32_t key;
        std::uint32_t value;
        std::uint16_t key_size;
        std::uint16_t value_size;
    };

    Status collect(Database& store, bool& fits);
    bool take(const Row& row, bool& fits);
    bool take_object(const Row& row);
    bool add(Text key, Text value, std::uint32_t owner, std::uint32_t hash);
    bool add_text(Text text, std::uint32_t& offset);
    bool index(bool& fits);
    std::size_t bytes() const;
    Text key(const Item& item) const { return {texts_.data() + item.key, item.key_size}; }
    Text value(const Item& item) const { return {texts_.data() + item.value, item.value_size}; }
    std::size_t probe(std::uint32_t hash, Text table, Text object, Text key) const;
    bool is(std::uint32_t item, Text table, Text object, Text key) const;
    bool carries(std::size_t object, const cfqlquery_node& pair) const;

    Array<char> texts_;
    Array<Item> items_;
    Array<std::uint32_t> slots_;  // hash table with open addressing: an item's index + 1, or 0
    std::int64_t last_id_ = 0;
};

}  // namespace cfql

#endif
