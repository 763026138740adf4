#include "access/supported_data_rates.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

// The backend reads the store by itself, and says with each row whether its group of rates goes on.
using RowByIndex = int(uint32_t position, int32_t* value_index, void* row);

constexpr int last_of_group = 2;

template <class Row>
struct Walk {
    RowByIndex* row_by_index;
    LoopContext<Row> loop;
    int32_t value_index;  // 1: a new group begins. A walk that begins anew leaves it as it is. Meant
};

Walk<SupportedDataRatesTxRow> tx = {GetSuppDataRatesTxTableByIndex, {}, 1};
Walk<SupportedDataRatesRxRow> rx = {GetSuppDataRatesRxTableByIndex, {}, 1};

template <class Row>
netsnmp_variable_list* next_rate(Walk<Row>& walk, void* loop_context, netsnmp_variable_list* put_index_data) {
    auto* loop = static_cast<LoopContext<Row>*>(loop_context);
    const int result = walk.row_by_index(loop->position, &walk.value_index, &loop->row);
    if (result < 1) return nullptr;
    if (result == last_of_group) {
        walk.value_index = 1;
        ++loop->position;
    }
    return put_indexes(put_index_data, &loop->row.ifIndex, 2);
}

}  // namespace

netsnmp_variable_list* dot11SupportedDataRatesTxTable_get_first_data_point(void** loop_context, void** data_context,
                                                                           netsnmp_variable_list* put_index_data,
                                                                           netsnmp_iterator_info* info) {
    rewind_walk(tx.loop, loop_context);
    return dot11SupportedDataRatesTxTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11SupportedDataRatesTxTable_get_next_data_point(void** loop_context, void**,
                                                                          netsnmp_variable_list* put_index_data,
                                                                          netsnmp_iterator_info*) {
    return next_rate(tx, *loop_context, put_index_data);
}

void* dot11SupportedDataRatesTxTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<SupportedDataRatesTxRow>(loop_context);
}

void dot11SupportedDataRatesTxTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11SupportedDataRatesTxTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11SupportedDataRatesTxTable_commit_row(void**, int) {
    return 0;
}

netsnmp_variable_list* dot11SupportedDataRatesRxTable_get_first_data_point(void** loop_context, void** data_context,
                                                                           netsnmp_variable_list* put_index_data,
                                                                           netsnmp_iterator_info* info) {
    rewind_walk(rx.loop, loop_context);
    return dot11SupportedDataRatesRxTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11SupportedDataRatesRxTable_get_next_data_point(void** loop_context, void**,
                                                                          netsnmp_variable_list* put_index_data,
                                                                          netsnmp_iterator_info*) {
    return next_rate(rx, *loop_context, put_index_data);
}

void* dot11SupportedDataRatesRxTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<SupportedDataRatesRxRow>(loop_context);
}

void dot11SupportedDataRatesRxTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11SupportedDataRatesRxTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11SupportedDataRatesRxTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11SupportedDataRatesTxValue(void* row, size_t* length) { return word_in_place<&SupportedDataRatesTxRow::dot11SupportedDataRatesTxValue>(row, length); }
void* get_dot11SupportedDataRatesRxValue(void* row, size_t* length) { return word_in_place<&SupportedDataRatesRxRow::dot11SupportedDataRatesRxValue>(row, length); }
// clang-format on
