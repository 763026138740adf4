// dot11WEPDefaultKeysTable: four rows for each wireless interface, one for each default key. Keys are secrets: they are
// copied only between the store and the agent, and the copies on the way are wiped.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey wep_keys[] = {
    {"interface", "wep-key-1"},
    {"interface", "wep-key-2"},
    {"interface", "wep-key-3"},
    {"interface", "wep-key-4"},
};
}  // namespace key

struct WEPDefaultKeysRow {
    uint32_t ifIndex;
    uint32_t dot11WEPDefaultKeyIndex;     // 1 to 4
    uint8_t dot11WEPDefaultKeyValue[64];  // the stored text unchanged: 5, 10, 13, 26 or up to 58 characters
    uint32_t dot11WEPDefaultKeyValueLen;
};

static_assert(sizeof(WEPDefaultKeysRow) == 76);
static_assert(offsetof(WEPDefaultKeysRow, dot11WEPDefaultKeyIndex) == 4);
static_assert(offsetof(WEPDefaultKeysRow, dot11WEPDefaultKeyValue) == 8);
static_assert(offsetof(WEPDefaultKeysRow, dot11WEPDefaultKeyValueLen) == 72);

struct WEPDefaultKeysScratch {
    ScratchText key;
};

// What setDefaultKeys writes: NUL-terminated texts, which stay the caller's.
struct WEPDefaultKeyWrite {
    const char* interface;
    const char* key;  // "wep-key-1" to "wep-key-4"
    const char* value;
};

constexpr uint32_t keys_per_interface = 4;

#pragma GCC visibility push(default)
extern "C" {

extern WEPDefaultKeysRow winfo[keys_per_interface * max_interfaces];
extern WEPDefaultKeysScratch wep_info;

int GetDefaultWEPKeysEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetWEPDefaultKeysTableIndexCount(void);  // interfaces, a quarter of the number of rows
int GetDefaultWEPKeysTableData(void);             // fills the rows; 1, or -1 when out of memory on the way
int GetDefaultWEPKeysEntryByIndex(uint32_t row, void* destination);  // copies one WEPDefaultKeysRow; see copy_row

// Writers into the store, for callers other than SNMP.

// Writes the key that the row's two index values name; a key index other than 1 to 4 writes under the empty key.
// `value` has `length` octets, or fewer if a NUL ends it. Returns setDefaultKeys' result, -1 when out of memory.
int32_t SetWEPDefaultKeysTableData(const WEPDefaultKeysRow* row, const char* value, uint32_t length);

// Returns 0 if setTableData's result is 0, otherwise 1.
int32_t setDefaultKeys(const WEPDefaultKeyWrite* write);
}
#pragma GCC visibility pop

}  // namespace dot11
