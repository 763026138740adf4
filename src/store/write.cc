#include "store/write.h"

#include <string.h>

#include "cfqlquery.h"
#include "util/convert.h"

namespace dot11 {

int32_t setTableData(const char* table, const char* object, const char* key, const char* value) {
    const size_t key_size = strlen(key) + 1;
    const size_t value_size = strlen(value) + 1;
    auto* name = static_cast<char*>(calloc(key_size, 1));
    auto* text = static_cast<char*>(calloc(value_size, 1));
    int32_t result = 0;
    if (name && text) {
        memcpy(name, key, key_size);
        memcpy(text, value, value_size);
        const cfqlquery_node pair = {name, text, nullptr, 0};
        result = cfqlquery_set_pv(table, object, &pair, 0) == 1 ? 0 : 1;
    }
    free(name);
    if (text) explicit_bzero(text, value_size);  // it may be a secret
    free(text);
    return result;
}

InterfaceName::InterfaceName(uint32_t index) : text_(static_cast<char*>(calloc(20, 1))) {
    static_assert(IF_NAMESIZE <= 20);
    if (text_) if_indextoname(index, text_);
}

int32_t write_number(const StoreKey& key, const char* object, uint32_t value, int32_t out_of_memory) {
    uint32_t length = 0;
    char* text = ConvertToStringFromUnsignedInteger(&value, &length);
    if (!text) return out_of_memory;
    const int32_t result = setTableData(key.table, object, key.name, text);
    free(text);
    return result;
}

int32_t write_interface_number(uint32_t index, const StoreKey& key, uint32_t value, int32_t out_of_memory) {
    const InterfaceName name(index);
    if (!name.text()) return out_of_memory;
    return write_number(key, name.text(), value, out_of_memory);
}

}  // namespace dot11
