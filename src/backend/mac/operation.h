// dot11OperationTable: one row for each wireless interface.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey short_retry_limit = {"interface", "dot11-short-retry-limit"};
inline constexpr StoreKey long_retry_limit = {"interface", "dot11-long-retry-limit"};
inline constexpr StoreKey max_transmit_msdu_lifetime = {"interface", "dot11-max-transmit-msdu-lifetime"};
inline constexpr StoreKey max_receive_lifetime = {"interface", "dot11-max-receive-lifetime"};
inline constexpr StoreKey rts_threshold = {"radio", "rts-threshold"};
inline constexpr StoreKey fragmentation_threshold = {"radio", "fragmentation-threshold"};
inline constexpr StoreKey manufacturer_id = {"radio", "manufacturer-id"};
}  // namespace key

struct OperationRow {
    uint32_t ifIndex;
    uint8_t dot11MACAddress[8];  // 6 used
    uint32_t dot11MACAddressLen;
    int32_t dot11RTSThreshold;  // octets
    int32_t dot11ShortRetryLimit;
    int32_t dot11LongRetryLimit;
    int32_t dot11FragmentationThreshold;   // octets
    int32_t dot11MaxTransmitMSDULifetime;  // as stored
    int32_t dot11MaxReceiveLifetime;       // as stored
    char dot11ManufacturerID[128];         // NUL-terminated; the column answers a fixed text instead
    uint32_t dot11ManufacturerIDLen;
    char dot11ProductID[128];  // NUL-terminated; the column answers a fixed text instead
    uint32_t dot11ProductIDLen;
};

static_assert(sizeof(OperationRow) == 304);
static_assert(offsetof(OperationRow, dot11MACAddress) == 4);
static_assert(offsetof(OperationRow, dot11RTSThreshold) == 16);
static_assert(offsetof(OperationRow, dot11FragmentationThreshold) == 28);
static_assert(offsetof(OperationRow, dot11MaxReceiveLifetime) == 36);
static_assert(offsetof(OperationRow, dot11ManufacturerID) == 40);
static_assert(offsetof(OperationRow, dot11ProductID) == 172);
static_assert(offsetof(OperationRow, dot11ProductIDLen) == 300);

struct OperationScratch {
    ScratchText mac, rts_threshold, short_retry_limit, long_retry_limit, fragmentation_threshold,
        max_transmit_msdu_lifetime, max_receive_lifetime, manufacturer_id, manufacturer_product_name, bss, radio;
};

#pragma GCC visibility push(default)
extern "C" {

extern OperationRow opinfo[max_interfaces];
extern OperationScratch oper_info;

int GetOperationsEntries(void);              // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetOperationTableIndexCount(void);  // rows found by the latest enumeration
int GetOperationsTableData(void);            // fills the rows; 1, or -1 when memory ran out on the way
int GetOperationsEntryByIndex(uint32_t row, void* destination);  // copies one OperationRow; see copy_row

// Writers into the store, for callers other than SNMP. `index` points to a row's interface index. All return
// setTableData's result, 0 when out of memory or when the interface has no BSS or the BSS no radio. Any value is
// written. `length` is ignored.
int32_t SetRTSThreshold(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetShortRetryLimit(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetLongRetryLimit(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetFragmentationThreshold(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetMaxTransmitMSDULifetime(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetMaxReceiveLifetime(const uint32_t* index, const uint32_t* value, uint32_t length);
}
#pragma GCC visibility pop

}  // namespace dot11
