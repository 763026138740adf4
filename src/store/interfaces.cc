#include "store/interfaces.h"

#include <net/if.h>

#include <stdlib.h>
#include <string.h>

namespace dot11 {

char iface_tags[max_interfaces + 1][iface_tag_size];

namespace {

bool is_served(const cfqlquery_node& node) {
    return node.name && strcmp(node.name, "name") == 0 && node.value &&
           strnlen(node.value, longest_interface_name + 1) <= longest_interface_name;
}

char* copy_of(const char* text) {
    const size_t size = strlen(text) + 1;
    auto* copy = static_cast<char*>(calloc(size, 1));
    if (copy) memcpy(copy, text, size);
    return copy;
}

}  // namespace

const cfqlquery_node* lcl_get_tags_pv(const cfqlquery_node* list, const char*, int32_t* count) {
    for (; list; list = list->next) {
        if (!is_served(*list)) continue;
        // The 129th name is stored, too: a count of 129 makes the entries routine refuse.
        if (*count < 0 || *count > static_cast<int32_t>(max_interfaces)) continue;
        if (if_nametoindex(list->value) == 0) continue;
        char* slot = iface_tags[*count];
        memcpy(slot, list->value, strnlen(list->value, longest_interface_name) + 1);
        ++*count;
    }
    return list;
}

int enumerate_interfaces(int32_t& count) {
    char* type = copy_of("type");
    char* service_set = copy_of("service-set");
    // Quirk: when out of memory, the query is made all the same, without its filter.
    cfqlquery_node filter = {};
    if (type && service_set) filter = {type, service_set, nullptr, 0};
    cfqlquery_node* answer = cfqlquery_get_grid("interface", nullptr, nullptr, &filter, 1);
    count = 0;
    lcl_get_tags_pv(answer, "interface", &count);
    free(type);
    free(service_set);
    cfqlquery_destroy_pv(answer);
    return count != 0 && count <= static_cast<int32_t>(max_interfaces) ? 1 : 0;
}

}  // namespace dot11
