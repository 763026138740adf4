// dot11AuthenticationAlgorithmsTable: two rows for each wireless interface, open system and shared key (IEEE 802.11).
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
// In the order of the algorithms.
inline constexpr StoreKey authentication_algorithms[] = {
    {"bss", "open-system-authentication"},
    {"bss", "shared-key-authentication"},
};
}  // namespace key

struct AuthenticationAlgorithmsRow {
    uint32_t ifIndex;
    uint32_t dot11AuthenticationAlgorithmsIndex;  // 1 or 2
    int32_t dot11AuthenticationAlgorithm;         // 1 open system, 2 shared key
    int32_t dot11AuthenticationAlgorithmsEnable;  // TruthValue (RFC 2579)
};

static_assert(sizeof(AuthenticationAlgorithmsRow) == 16);
static_assert(offsetof(AuthenticationAlgorithmsRow, dot11AuthenticationAlgorithmsIndex) == 4);
static_assert(offsetof(AuthenticationAlgorithmsRow, dot11AuthenticationAlgorithm) == 8);
static_assert(offsetof(AuthenticationAlgorithmsRow, dot11AuthenticationAlgorithmsEnable) == 12);

struct AuthenticationAlgorithmsScratch {
    ScratchText algorithm, bss;
};

constexpr uint32_t algorithms_per_interface = 2;

#pragma GCC visibility push(default)
extern "C" {

extern AuthenticationAlgorithmsRow ainfo[algorithms_per_interface * max_interfaces];
extern AuthenticationAlgorithmsScratch auth_info;

int GetAuthAlgorithmEntries(void);  // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetAuthenticationAlgorithmTableIndexCount(void);           // interfaces, half the number of rows
int GetAuthAlgorithmTableData(void);                                // fills the rows; 1
int GetAuthAlgorithmEntryByIndex(uint32_t row, void* destination);  // one AuthenticationAlgorithmsRow; see copy_row

// Writes a TruthValue into the store for the algorithm that the row's two index values name, for callers other than
// SNMP. Returns setTableData's result, -1 when out of memory, 0 if the interface has no BSS. `length` is ignored.
int32_t SetAuthAlgorithmEnable(const AuthenticationAlgorithmsRow* row, const uint32_t* value, uint32_t length);
}
#pragma GCC visibility pop

}  // namespace dot11
