#include "access/operation.h"

#include "access/accessors.h"
#include "access/iterator.h"

namespace {

using Row = OperationRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetOperationsEntries,
    .table_data = GetOperationsTableData,
    .index_count = GetOperationTableIndexCount,
    .entry_by_index = GetOperationsEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11OperationTable_get_first_data_point(void** loop_context, void** data_context,
                                                                netsnmp_variable_list* put_index_data,
                                                                netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11OperationTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11OperationTable_get_next_data_point(void** loop_context, void**,
                                                               netsnmp_variable_list* put_index_data,
                                                               netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11OperationTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11OperationTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11OperationTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11OperationTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11MACAddress(void* row, size_t* length) { return counted_octets<&Row::dot11MACAddress, &Row::dot11MACAddressLen>(row, length); }
void* get_dot11RTSThreshold(void* row, size_t* length) { return word<&Row::dot11RTSThreshold>(row, length); }
void* get_dot11ShortRetryLimit(void* row, size_t* length) { return word<&Row::dot11ShortRetryLimit>(row, length); }
void* get_dot11LongRetryLimit(void* row, size_t* length) { return word<&Row::dot11LongRetryLimit>(row, length); }
void* get_dot11FragmentationThreshold(void* row, size_t* length) { return word<&Row::dot11FragmentationThreshold>(row, length); }
void* get_dot11MaxTransmitMSDULifetime(void* row, size_t* length) { return word<&Row::dot11MaxTransmitMSDULifetime>(row, length); }
void* get_dot11MaxReceiveLifetime(void* row, size_t* length) { return word<&Row::dot11MaxReceiveLifetime>(row, length); }

// The access point's own, whatever the store says. Meant.
void* get_dot11ManufacturerID(void*, size_t* length) { return constant_octets<&Row::dot11ManufacturerID, "Vantorix">(length); }
void* get_dot11ProductID(void*, size_t* length) { return constant_octets<&Row::dot11ProductID, "Quillnet AP">(length); }

int set_dot11RTSThreshold(void*, const void*, size_t) { return refuse_write(); }
int set_dot11ShortRetryLimit(void*, const void*, size_t) { return refuse_write(); }
int set_dot11LongRetryLimit(void*, const void*, size_t) { return refuse_write(); }
int set_dot11FragmentationThreshold(void*, const void*, size_t) { return refuse_write(); }
int set_dot11MaxTransmitMSDULifetime(void*, const void*, size_t) { return refuse_write(); }
int set_dot11MaxReceiveLifetime(void*, const void*, size_t) { return refuse_write(); }
// clang-format on
