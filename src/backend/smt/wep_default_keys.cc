#include "backend/smt/wep_default_keys.h"

#include <net/if.h>

#include <stdlib.h>
#include <string.h>
#include <iterator>

#include "backend/lookup.h"
#include "backend/rows.h"
#include "store/write.h"

namespace dot11 {

WEPDefaultKeysRow winfo[keys_per_interface * max_interfaces];
WEPDefaultKeysScratch wep_info;

namespace {

using Row = WEPDefaultKeysRow;

static_assert(std::size(key::wep_keys) == keys_per_interface);

int32_t interface_count;

// The key of a default key's number, in a heap buffer that is released at the end of the scope. Empty for any number
// but 1 to 4. `text()` is null when out of memory.
class KeyName {
  public:
    explicit KeyName(uint32_t number) : text_(static_cast<char*>(calloc(sizeof "wep-key-1", 1))) {
        if (text_ && number >= 1 && number <= keys_per_interface)
            memcpy(text_, key::wep_keys[number - 1].name, sizeof "wep-key-1");
    }
    ~KeyName() { free(text_); }
    KeyName(const KeyName&) = delete;
    KeyName& operator=(const KeyName&) = delete;

    const char* text() const { return text_; }

  private:
    char* text_;
};

// Quirk: a missing key is served as five octets, of which only the first is set, to 0; the others stay what the row
// held.
void read_value(Row& row, const cfqlquery_node* answer) {
    uint8_t* value = row.dot11WEPDefaultKeyValue;
    value[0] = 0;
    row.dot11WEPDefaultKeyValueLen = 5;
    if (find_value_of_any(answer, key::wep_keys, wep_info.key))
        row.dot11WEPDefaultKeyValueLen = move_octets(wep_info.key, value, sizeof row.dot11WEPDefaultKeyValue);
}

// False when out of memory; what was read until then stays.
bool fill_row(Row& row, const char* interface, uint32_t number) {
    row.ifIndex = if_nametoindex(interface);
    row.dot11WEPDefaultKeyIndex = number;
    const KeyName key(number);
    if (!key.text()) return false;
    const Answer answer("interface", interface, key.text());
    read_value(row, answer.list());
    return true;
}

}  // namespace

int GetDefaultWEPKeysEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetWEPDefaultKeysTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetDefaultWEPKeysTableData(void) {
    Row* row = winfo;
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        for (uint32_t number = 1; number <= keys_per_interface; ++number)
            if (!fill_row(*row++, iface_tags[i], number)) return -1;
    return 1;
}

int GetDefaultWEPKeysEntryByIndex(uint32_t row, void* destination) {
    return copy_row(winfo, row, destination);
}

int32_t SetWEPDefaultKeysTableData(const WEPDefaultKeysRow* row, const char* value, uint32_t length) {
    const InterfaceName name(row->ifIndex);
    const KeyName key(row->dot11WEPDefaultKeyIndex);
    const size_t size = strnlen(value, length);
    auto* text = static_cast<char*>(calloc(size + 1, 1));
    int32_t result = -1;
    if (name.text() && key.text() && text) {
        memcpy(text, value, size);
        const WEPDefaultKeyWrite write = {name.text(), key.text(), text};
        result = setDefaultKeys(&write);
        explicit_bzero(text, size);
    }
    free(text);
    return result;
}

int32_t setDefaultKeys(const WEPDefaultKeyWrite* write) {
    return setTableData("interface", write->interface, write->key, write->value) != 0 ? 1 : 0;
}

}  // namespace dot11
