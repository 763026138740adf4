// The four calls of the library: arguments, answers, the lock. What the store holds is the Reader's affair.

#pragma GCC visibility push(default)
#include "cfqlquery.h"
#pragma GCC visibility pop

#include <pthread.h>
#include <string.h>

#include <initializer_list>

#include "reader.h"

namespace cfql {
namespace {

// What an answer is in memory: one block, which ends with the texts of the nodes.
struct Answer {
    std::size_t size;
    cfqlquery_node head;
};

// The state of the process. Never destroyed: other code may call the library as late as it likes.
union Process {
    struct State {
        pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
        bool follows_forks = false;
        Reader reader;
        Database writer;
    } state;
    constexpr Process() : state() {}
    ~Process() {}
};
constinit Process process;

void close_connections() {
    process.state.reader.close();
    process.state.writer.close();
}

void before_fork() {
    pthread_mutex_lock(&process.state.lock);
    close_connections();
}

void after_fork() {
    pthread_mutex_unlock(&process.state.lock);
}

// Holds the lock. A connection that crossed a fork would be of no use in the child and would take the parent's locks
// with it, so from the first call on every fork closes them.
class Turn {
  public:
    Turn() {
        pthread_mutex_lock(&process.state.lock);
        if (!process.state.follows_forks) {
            process.state.follows_forks = pthread_atfork(before_fork, after_fork, after_fork) == 0;
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() { pthread_mutex_unlock(&process.state.lock); }
};

__attribute__((destructor)) void at_exit() {
    Turn turn;
    close_connections();
    process.state.reader.forget();
}

Text text_of(const char* text) {
    return text == nullptr ? Text("") : Text(text);
}

// An answer of COUNT nodes with room for TEXTS octets, the nodes chained. Null when memory is short.
Answer* new_answer(std::size_t count, std::size_t texts, char*& text) {
    std::size_t size = 0;
    if (__builtin_mul_overflow(count, sizeof(cfqlquery_node), &size)) return nullptr;
    if (__builtin_add_overflow(size, offsetof(Answer, head), &size)) return nullptr;
    if (__builtin_add_overflow(size, texts, &size)) return nullptr;
    auto* const answer = static_cast<Answer*>(malloc(size));
    if (answer == nullptr) return nullptr;
    answer->size = size;
    cfqlquery_node* const nodes = &answer->head;
    for (std::size_t i = 0; i < count; ++i)
        nodes[i] = {nullptr, nullptr, i + 1 < count ? &nodes[i + 1] : nullptr, 0};
    text = reinterpret_cast<char*>(nodes + count);
    return answer;
}

// Copies TEXT with a NUL to PLACE and moves PLACE behind it.
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
    if (answer == nullptr) return nullptr;
    answer->head.name = put(place, key);
    answer->head.value = put(place, value);
    return &answer->head;
}

// NAMES holds COUNT texts, each with its NUL. The rows share one copy of the filter's texts.
cfqlquery_node* grid(const Array<char>& names, std::size_t count, const cfqlquery_node* filter) {
    std::size_t pairs = 0;
    std::size_t texts = names.size() + sizeof "name";
    for (const cfqlquery_node* pair = filter; pair != nullptr; pair = pair->next) {
        ++pairs;
        texts += strlen(pair->name) + strlen(pair->value) + 2;
    }
    std::size_t nodes = 0;
    char* place = nullptr;
    if (__builtin_mul_overflow(count, pairs + 1, &nodes)) return nullptr;
    Answer* const answer = new_answer(nodes, texts, place);
    if (answer == nullptr) return nullptr;
    cfqlquery_node* const first = &answer->head;
    const char* const tag = put(place, name_key);
    cfqlquery_node* node = first + 1;
    for (const cfqlquery_node* pair = filter; pair != nullptr; pair = pair->next, ++node) {
        node->name = put(place, pair->name);
        node->value = put(place, pair->value);
    }
    const char* name = static_cast<const char*>(memcpy(place, names.data(), names.size()));
    for (node = first; name != place + names.size(); name += strlen(name) + 1) {
        node->name = tag;
        node->value = name;
        ++node;
        for (std::size_t i = 1; i <= pairs; ++i, ++node) {
            node->name = first[i].name;
            node->value = first[i].value;
        }
    }
    return first;
}

// One attempt at a durable write. The connection is kept for the next; a file that was replaced is opened anew.
Status write(Database& writer, Text table, Text object, Text key, Text value) {
    if (writer.is_open() && writer.moved()) writer.close();
    Status status = writer.is_open() ? Status::ok : writer.open(store_path(), Access::write);
    if (status == Status::ok) status = writer.begin_write();
    if (status == Status::ok) status = writer.set(table, object, key, value);
    if (status == Status::ok) status = writer.commit();
    if (status != Status::ok) writer.rollback();
    return status;
}

}  // namespace
}  // namespace cfql

using cfql::process;
using cfql::Text;

cfqlquery_node* cfqlquery_get_grid(const char* table, const char*, const char*, const cfqlquery_node* filter, int) {
    if (table == nullptr) return nullptr;
    const cfql::Turn turn;
    cfql::Reader& reader = process.state.reader;
    reader.refresh(true);
    cfql::Array<char> names;
    std::size_t count = 0;
    if (!reader.objects(table, filter, names, count) || count == 0) return nullptr;
    return cfql::grid(names, count, filter);
}

cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key) {
    if (table == nullptr || key == nullptr || *key == '\0') return nullptr;
    const cfql::Turn turn;
    cfql::Reader& reader = process.state.reader;
    reader.refresh(false);
    Text value;
    return reader.get(table, cfql::text_of(object), key, value) ? cfql::single(key, value) : nullptr;
}

int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int) {
    if (pair == nullptr || pair->name == nullptr || pair->value == nullptr) return 0;
    const cfql::Turn turn;
    cfql::Database& writer = process.state.writer;
    const Text name = cfql::text_of(object);
    cfql::Status status = cfql::write(writer, cfql::text_of(table), name, pair->name, pair->value);
    if (status != cfql::Status::ok && writer.worth_another_try()) {
        writer.close();
        status = cfql::write(writer, cfql::text_of(table), name, pair->name, pair->value);
    }
    if (status != cfql::Status::ok) writer.close();
    process.state.reader.expire();
    cfql::Database::release_code();
    return status == cfql::Status::ok ? 1 : 0;
}

void cfqlquery_destroy_pv(cfqlquery_node* list) {
    if (list == nullptr) return;
    auto* const answer = reinterpret_cast<cfql::Answer*>(reinterpret_cast<char*>(list) - offsetof(cfql::Answer, head));
    explicit_bzero(answer, answer->size);
    free(answer);
}
