// An answer of the configuration store, and the lookup of a single key in it.
#pragma once

#include <stdint.h>
#include <span>

#include "cfqlquery.h"

namespace dot11 {

// A value copied from an answer: a heap copy and its length in octets, without the terminator. There is a global one
// for each key of a backend; the copy lives from the lookup to the conversion that releases it.
struct ScratchText {
    char* text;
    uint32_t length;
};

// A key of the store: the table whose objects have it, and its name. Arrays, not pointers, so that keys need no
// relocations.
struct StoreKey {
    char table[15];
    char name[39];
};

// Owns the list of a get call, and releases it at the end of the scope.
class Answer {
  public:
    Answer(const StoreKey& key, const char* object) : Answer(key.table, object, key.name) {}
    Answer(const char* table, const char* object, const char* key) : list_(cfqlquery_get_pv(table, object, key)) {}
    ~Answer() { cfqlquery_destroy_pv(list_); }
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    const cfqlquery_node* list() const { return list_; }

  private:
    cfqlquery_node* list_;
};

// Whether the answer's first node is `key`, of whatever table, with a value that is not empty. If so, `scratch` holds a
// copy of it, which the caller releases with `release`. Later nodes never count. A null answer leaves `scratch` as it
// is; any other answer first sets the length to 0. When out of memory, the key counts as not found.
bool find_value(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch);

// Like find_value, for the first of `keys` that the answer has.
bool find_value_of_any(const cfqlquery_node* list, std::span<const StoreKey> keys, ScratchText& scratch);

// Like find_value, but without first setting the length to 0: after a key was found, an answer with another key still
// counts as found, as long as the text has not been released.
bool find_value_or_last(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch);

// Copies the first node's value into `scratch`, whatever its tag. A null value counts as empty. False when out of
// memory.
bool copy_value(const cfqlquery_node& node, ScratchText& scratch);

// Overwrites and frees the copy, which may be a secret, and clears the pointer. The length stays.
void release(ScratchText& scratch);

}  // namespace dot11
