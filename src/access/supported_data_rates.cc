// dot11SupportedDataRatesTxTable (1.2.840.10036.4.9) and dot11SupportedDataRatesRxTable (1.2.840.10036.4.10).
#include "backend/phy/supported_data_rates.h"

#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11SupportedDataRatesTxValue(void* row, size_t* length) { return word_in_place<&SupportedDataRatesTxRow::dot11SupportedDataRatesTxValue>(row, length); }
void* get_dot11SupportedDataRatesRxValue(void* row, size_t* length) { return word_in_place<&SupportedDataRatesRxRow::dot11SupportedDataRatesRxValue>(row, length); }
}
#pragma GCC visibility pop

constexpr Column tx_columns[] = {
    NOT_ANSWERED(2, dot11SupportedDataRatesTxValue, integer, key::rate),
};

constexpr Column rx_columns[] = {
    NOT_ANSWERED(2, dot11SupportedDataRatesRxValue, integer, key::rate),
};
// clang-format on

constexpr Table dot11SupportedDataRatesTxTable = {
    .name = "dot11SupportedDataRatesTxTable",
    .columns = tx_columns,
    .indexes = 2,
    .row_size = sizeof(SupportedDataRatesTxRow),
    .row_by_index = GetSuppDataRatesTxTableByIndex,
};

constexpr Table dot11SupportedDataRatesRxTable = {
    .name = "dot11SupportedDataRatesRxTable",
    .columns = rx_columns,
    .indexes = 2,
    .row_size = sizeof(SupportedDataRatesRxRow),
    .row_by_index = GetSuppDataRatesRxTableByIndex,
};

}  // namespace dot11
