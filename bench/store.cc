// store-bench PATH snapshot|plain COUNT: reads COUNT values, through the library from the store at PATH, which is made
// first if there is none, or from a plain hash table with the same contents. To be counted by callgrind: see the
// command `store`.
#include <cfqlquery.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <array>
#include <string>
#include <vector>

#include "database.h"

namespace {

struct Entry {
    std::string table, object, key, value;
};

// What an access point with 16 interfaces holds.
std::vector<Entry> contents() {
    std::vector<Entry> entries;
    for (int i = 0; i < 16; ++i) {
        for (int k = 0; k < 30; ++k) {
            entries.push_back(
                {"interface", "wlan" + std::to_string(i), "some-key-" + std::to_string(k), std::to_string(k * 997)});
        }
    }
    return entries;
}

bool make(const char* path, const std::vector<Entry>& entries) {
    using cfql::Status;
    cfql::Database store;
    Status status = store.create(path);
    if (status == Status::exists) return true;
    if (status == Status::ok) status = store.open(path, cfql::Access::write);
    if (status == Status::ok) status = store.begin_write();
    for (const Entry& e : entries) {
        if (status == Status::ok) status = store.set(e.table, e.object, e.key, e.value);
    }
    return status == Status::ok && store.commit() == Status::ok;
}

// The yardstick: a hash table with open addressing, half full, without lock, clock, freshness or wiping, and a list of
// one block.
class Plain {
  public:
    explicit Plain(const std::vector<Entry>& entries) {
        for (const Entry& entry : entries) {
            std::size_t slot = hash(entry.table.c_str(), entry.object.c_str(), entry.key.c_str()) % slots_.size();
            while (slots_[slot] != nullptr)
                slot = (slot + 1) % slots_.size();
            slots_[slot] = &entry;
        }
    }

    cfqlquery_node* get(const char* table, const char* object, const char* key) const {
        std::size_t slot = hash(table, object, key) % slots_.size();
        for (; slots_[slot] != nullptr; slot = (slot + 1) % slots_.size()) {
            const Entry& entry = *slots_[slot];
            if (entry.key == key && entry.object == object && entry.table == table) return list(entry);
        }
        return nullptr;
    }

  private:
    static unsigned hash(const char* table, const char* object, const char* key) {
        unsigned hash = 2166136261U;
        for (const char* text : {table, object, key}) {
            do {
                hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619U;
            } while (*text++ != '\0');
        }
        return hash;
    }

    static cfqlquery_node* list(const Entry& entry) {
        const std::size_t key = entry.key.size() + 1;
        const std::size_t value = entry.value.size() + 1;
        auto* const node = static_cast<cfqlquery_node*>(malloc(sizeof(cfqlquery_node) + key + value));
        if (node == nullptr) return nullptr;
        char* const texts = reinterpret_cast<char*>(node + 1);
        memcpy(texts, entry.key.c_str(), key);
        memcpy(texts + key, entry.value.c_str(), value);
        *node = {texts, texts + key, nullptr, 0};
        return node;
    }

    std::array<const Entry*, 1024> slots_ = {};
};

}  // namespace

int main(int arguments, char** argument) {
    const std::vector<Entry> entries = contents();
    if (arguments != 4 || !make(argument[1], entries)) {
        fprintf(stderr, "usage: store-bench PATH snapshot|plain COUNT\n");
        return 2;
    }
    setenv("CFQL_STORE", argument[1], 1);
    const bool plain = strcmp(argument[2], "plain") == 0;
    const Plain table(entries);
    const int count = atoi(argument[3]);
    for (int i = 0; i < count; ++i) {
        const Entry& e = entries[static_cast<std::size_t>(i) * 7 % entries.size()];
        cfqlquery_node* const list = plain ? table.get(e.table.c_str(), e.object.c_str(), e.key.c_str())
                                           : cfqlquery_get_pv(e.table.c_str(), e.object.c_str(), e.key.c_str());
        if (list == nullptr || e.value != list->value) return 1;
        plain ? free(list) : cfqlquery_destroy_pv(list);
    }
    return 0;
}
