// dot11PrivacyTable: one row for each wireless interface.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey privacy_invoked = {"interface", "dot11-privacy-invoked"};
inline constexpr StoreKey wep_default_key = {"interface", "wep-default-key"};
inline constexpr StoreKey wep_key_mapping_length = {"interface", "wep-key-mapping-length"};
}  // namespace key

struct PrivacyRow {
    uint32_t ifIndex;
    int32_t dot11PrivacyInvoked;   // TruthValue (RFC 2579), or any other number that the store holds
    int32_t dot11WEPDefaultKeyID;  // 0 to 3
    int32_t dot11WEPKeyMappingLength;
    int32_t dot11ExcludeUnencrypted;  // TruthValue
    int32_t dot11WEPICVErrorCount;
    int32_t dot11WEPExcludedCount;
};

static_assert(sizeof(PrivacyRow) == 28);
static_assert(offsetof(PrivacyRow, dot11PrivacyInvoked) == 4);
static_assert(offsetof(PrivacyRow, dot11WEPDefaultKeyID) == 8);
static_assert(offsetof(PrivacyRow, dot11WEPKeyMappingLength) == 12);
static_assert(offsetof(PrivacyRow, dot11ExcludeUnencrypted) == 16);
static_assert(offsetof(PrivacyRow, dot11WEPICVErrorCount) == 20);
static_assert(offsetof(PrivacyRow, dot11WEPExcludedCount) == 24);

struct PrivacyScratch {
    ScratchText invoked, default_key, key_mapping_length;
};

#pragma GCC visibility push(default)
extern "C" {

extern PrivacyRow pinfo[max_interfaces];
extern PrivacyScratch priv_info;

int GetPrivacyEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetPrivacyTableIndexCount(void);  // rows found by the latest enumeration
int GetPrivacyTableData(void);             // fills the rows; 1
int GetPrivacyEntryByIndex(uint32_t row, void* destination);  // copies one PrivacyRow; see copy_row

// Writers into the store, for callers other than SNMP. `index` points to a row's interface index. All return
// setTableData's result, 0 when out of memory. `length` is ignored.
int32_t SetPrivacyInvoked(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetWEPDefaultKeyID(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetWEPKeyMappingLength(const uint32_t* index, const uint32_t* value, uint32_t length);
}
#pragma GCC visibility pop

}  // namespace dot11
