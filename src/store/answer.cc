#include "store/answer.h"

#include <stdlib.h>
#include <string.h>

namespace dot11 {

bool copy_value(const cfqlquery_node& node, ScratchText& scratch) {
    const char* value = node.value ? node.value : "";
    const size_t length = strnlen(value, UINT32_MAX - 1);
    release(scratch);
    scratch.length = 0;
    scratch.text = static_cast<char*>(calloc(length + 1, 1));
    if (!scratch.text) return false;
    memcpy(scratch.text, value, length);
    scratch.length = static_cast<uint32_t>(length);
    return true;
}

bool find_value_or_last(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch) {
    if (!list) return false;
    if (list->name && strcmp(list->name, key.name) == 0) copy_value(*list, scratch);
    if (scratch.length == 0) release(scratch);
    return scratch.text != nullptr;
}

bool find_value(const cfqlquery_node* list, const StoreKey& key, ScratchText& scratch) {
    if (!list) return false;
    release(scratch);
    scratch.length = 0;
    return find_value_or_last(list, key, scratch);
}

bool find_value_of_any(const cfqlquery_node* list, std::span<const StoreKey> keys, ScratchText& scratch) {
    for (const StoreKey& key : keys)
        if (find_value(list, key, scratch)) return true;
    return false;
}

void release(ScratchText& scratch) {
    if (scratch.text) explicit_bzero(scratch.text, scratch.length);
    free(scratch.text);
    scratch.text = nullptr;
}

}  // namespace dot11
