// dot11SupportedDataRatesRxTable and dot11SupportedDataRatesTxTable: up to eight rates for each group of
// "supported-rate" objects.
//
// The two tables read the same objects, each through a cache of its own. A group is a run of objects with the same
// name, an interface's. Names are not sorted, so a name that comes again after another makes a new group. There is no
// array of rows: the iterator asks for one row after the other, and these calls reload, empty or keep the cache.
#pragma once

#include <stddef.h>

#include "cfqlquery.h"
#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey rate = {"supported-rate", "rate"};
}  // namespace key

struct SupportedDataRatesRxRow {
    uint32_t ifIndex;
    int32_t dot11SupportedDataRatesRxIndex;  // 1 to 8
    int32_t dot11SupportedDataRatesRxValue;  // 500 kbit/s, 2 and up
};

struct SupportedDataRatesTxRow {
    uint32_t ifIndex;
    int32_t dot11SupportedDataRatesTxIndex;  // 1 to 8
    int32_t dot11SupportedDataRatesTxValue;  // 500 kbit/s, 2 and up
};

static_assert(sizeof(SupportedDataRatesRxRow) == 12 && sizeof(SupportedDataRatesTxRow) == 12);
static_assert(offsetof(SupportedDataRatesRxRow, dot11SupportedDataRatesRxIndex) == 4);
static_assert(offsetof(SupportedDataRatesTxRow, dot11SupportedDataRatesTxIndex) == 4);
static_assert(offsetof(SupportedDataRatesRxRow, dot11SupportedDataRatesRxValue) == 8);
static_assert(offsetof(SupportedDataRatesTxRow, dot11SupportedDataRatesTxValue) == 8);

using RateGroupName = char[iface_tag_size];
using RateText = char[6];  // units of 100 kbit/s, decimal, terminated

#pragma GCC visibility push(default)
extern "C" {

extern uint32_t SUPPDATARATESRXLastLoad;    // seconds since the epoch; 0: the cache is loaded by the next call
extern RateGroupName* rx_tag;               // one for each group; null: there is none
extern RateText* suppRx_info;               // as many as the groups have rows; null: all count as empty
extern int32_t rxval_index;                 // position of the next rate's text
extern int32_t rx_row_index;                // rates stored by the current call
extern SupportedDataRatesRxRow suppRxInfo;  // not used

extern uint32_t SUPPDATARATESTXLastLoad;
extern RateGroupName* tx_tag;
extern RateText* suppTx_info;
extern int32_t txval_index;
extern int32_t a_index;
extern SupportedDataRatesTxRow suppTxInfo;

// Copies one row of a walk into `record`, a SupportedDataRatesRxRow. `row` is the group's position, from 0;
// `*value_index` is the row's index in the group: 1 for a new group, and each row increments it. Returns
//    1  a row, and the group has more
//    2  the group's last row: go on with the next group and *value_index 1
//    0  no row: end of the table, or the store failed, or out of memory
//   -1  no row: the store has no "supported-rate" object
int GetSuppDataRatesRxTableByIndex(uint32_t row, int32_t* value_index, void* record);
// The same, `record` a SupportedDataRatesTxRow.
int GetSuppDataRatesTxTableByIndex(uint32_t row, int32_t* value_index, void* record);

// Stores the rate of an answer for "rate" in the next text, truncated to five characters. Only the first node counts.
void lcl_suppRx(const cfqlquery_node* list);
void lcl_suppTx(const cfqlquery_node* list);
}
#pragma GCC visibility pop

}  // namespace dot11
