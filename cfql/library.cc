// The four calls of the library: arguments, answers, the lock. The cache knows the store's contents.

#pragma GCC visibility push(default)
#include "cfqlquery.h"
#pragma GCC visibility pop

#include <pthread.h>
#include <stdlib.h>
#include <string.h>

#include "cache.h"

namespace cfql {
namespace {

// An answer in memory: one block, at whose end are the nodes' texts.
struct Answer {
    size_t size;
    cfqlquery_node head;
};

// The state of the process. Never destroyed, because other code may call the library at any time during exit. It holds
// nothing open, so a fork needs no care.
union Process {
    struct State {
        pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
        Cache cache;
        Sound left;  // by the last write
    } state;
    constexpr Process() : state() {}
    ~Process() {}
};
constinit Process process;

class Lock {
  public:
    Lock() { pthread_mutex_lock(&process.state.lock); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { pthread_mutex_unlock(&process.state.lock); }
};

__attribute__((destructor)) void at_exit() {
    const Lock lock;
    process.state.cache.forget();
}

Text text_of(const char* text) {
    return text ? Text(text) : Text("");
}

// An answer of `count` chained nodes, with room for `texts` octets. Null if memory is short.
Answer* new_answer(size_t count, size_t texts, char*& text) {
    size_t size = 0;
    if (__builtin_mul_overflow(count, sizeof(cfqlquery_node), &size)) return nullptr;
    if (__builtin_add_overflow(size, offsetof(Answer, head), &size)) return nullptr;
    if (__builtin_add_overflow(size, texts, &size)) return nullptr;
    auto* const answer = static_cast<Answer*>(malloc(size));
    if (!answer) return nullptr;
    answer->size = size;
    cfqlquery_node* const nodes = &answer->head;
    for (size_t i = 0; i < count; ++i)
        nodes[i] = {nullptr, nullptr, i + 1 < count ? &nodes[i + 1] : nullptr, 0};
    text = reinterpret_cast<char*>(nodes + count);
    return answer;
}

// Copies `text` and a NUL to `place`, and moves `place` past them.
const char* put(char*& place, Text text) {
    char* const start = place;
    if (!text.empty()) memcpy(start, text.data(), text.size());
    start[text.size()] = '\0';
    place = start + text.size() + 1;
    return start;
}

cfqlquery_node* single(Text key, Text value) {
    char* place = nullptr;
    Answer* const answer = new_answer(1, key.size() + value.size() + 2, place);
    if (!answer) return nullptr;
    answer->head.name = put(place, key);
    answer->head.value = put(place, value);
    return &answer->head;
}

// The size of a grid's answer.
struct Extent {
    size_t rows, pairs, octets;  // the octets of its texts, each with its NUL
};

Extent measure(const Snapshot& contents, Text table, const cfqlquery_node* filter) {
    Extent extent = {0, 0, name_key.size() + 1};
    size_t position = 0;
    for (Text name; contents.next(table, filter, position, name); ++extent.rows)
        extent.octets += name.size() + 1;
    if (extent.rows == 0) return extent;
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next, ++extent.pairs)
        extent.octets += strlen(pair->name) + strlen(pair->value) + 2;
    return extent;
}

// The rows share one copy of the filter's texts.
cfqlquery_node* grid(const Snapshot& contents, Text table, const cfqlquery_node* filter) {
    const Extent extent = measure(contents, table, filter);
    size_t nodes = 0;
    char* place = nullptr;
    if (extent.rows == 0 || __builtin_mul_overflow(extent.rows, extent.pairs + 1, &nodes)) return nullptr;
    Answer* const answer = new_answer(nodes, extent.octets, place);
    if (!answer) return nullptr;
    cfqlquery_node* const first = &answer->head;
    const char* const tag = put(place, name_key);
    cfqlquery_node* node = first + 1;
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next, ++node) {
        node->name = put(place, pair->name);
        node->value = put(place, pair->value);
    }
    size_t position = 0;
    node = first;
    for (Text name; contents.next(table, filter, position, name);) {
        node->name = tag;
        node->value = put(place, name);
        ++node;
        for (size_t i = 1; i <= extent.pairs; ++i, ++node) {
            node->name = first[i].name;
            node->value = first[i].value;
        }
    }
    return first;
}

// One attempt at a durable write.
Status write(Database& store, Text table, Text object, Text key, Text value) {
    Status status = store.open(store_path(), Access::write);
    if (status == Status::ok) status = store.begin_write();
    if (status == Status::ok) status = store.set(table, object, key, value);
    if (status == Status::ok) status = store.commit();
    store.close();
    return status;
}

}  // namespace
}  // namespace cfql

using cfql::process;
using cfql::Text;

cfqlquery_node* cfqlquery_get_grid(const char* table, const char*, const char*, const cfqlquery_node* filter, int) {
    if (!table) return nullptr;
    const cfql::Lock lock;
    cfql::Cache& cache = process.state.cache;
    cache.refresh(true);
    return cfql::grid(cache.contents(), table, filter);
}

cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key) {
    if (!table || !key) return nullptr;
    const cfql::Lock lock;
    cfql::Cache& cache = process.state.cache;
    cache.refresh(false);
    Text value;
    return cache.contents().get(table, cfql::text_of(object), key, value) ? cfql::single(key, value) : nullptr;
}

int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int) {
    if (!pair || !pair->name || !pair->value) return 0;
    const cfql::Lock lock;
    cfql::Database store(process.state.left);
    const Text name = cfql::text_of(object);
    cfql::Status status = cfql::write(store, cfql::text_of(table), name, pair->name, pair->value);
    if (status != cfql::Status::ok && store.worth_another_try())
        status = cfql::write(store, cfql::text_of(table), name, pair->name, pair->value);
    if (status != cfql::Status::ok) return 0;
    process.state.cache.expire();
    return 1;
}

void cfqlquery_destroy_pv(cfqlquery_node* list) {
    if (!list) return;
    auto* const answer = reinterpret_cast<cfql::Answer*>(reinterpret_cast<char*>(list) - offsetof(cfql::Answer, head));
    explicit_bzero(answer, answer->size);
    free(answer);
}
