// dot11OperationTable (1.2.840.10036.2.1).
#include "backend/mac/operation.h"
#include "access/accessors.h"
#include "access/tables.h"
#include "backend/lookup.h"

namespace dot11 {

using Row = OperationRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11MACAddress(void* row, size_t* length) { return counted_octets<&Row::dot11MACAddress, &Row::dot11MACAddressLen>(row, length); }
void* get_dot11RTSThreshold(void* row, size_t* length) { return word<&Row::dot11RTSThreshold>(row, length); }
void* get_dot11ShortRetryLimit(void* row, size_t* length) { return word<&Row::dot11ShortRetryLimit>(row, length); }
void* get_dot11LongRetryLimit(void* row, size_t* length) { return word<&Row::dot11LongRetryLimit>(row, length); }
void* get_dot11FragmentationThreshold(void* row, size_t* length) { return word<&Row::dot11FragmentationThreshold>(row, length); }
void* get_dot11MaxTransmitMSDULifetime(void* row, size_t* length) { return word<&Row::dot11MaxTransmitMSDULifetime>(row, length); }
void* get_dot11MaxReceiveLifetime(void* row, size_t* length) { return word<&Row::dot11MaxReceiveLifetime>(row, length); }

// Quirk: a fixed text, whatever the store says.
void* get_dot11ManufacturerID(void*, size_t* length) { return constant_octets<&Row::dot11ManufacturerID>("Vantorix", length); }
void* get_dot11ProductID(void*, size_t* length) { return constant_octets<&Row::dot11ProductID>("Quillnet AP", length); }

int set_dot11RTSThreshold(void*, const void*, size_t) { return refuse_write(); }
int set_dot11ShortRetryLimit(void*, const void*, size_t) { return refuse_write(); }
int set_dot11LongRetryLimit(void*, const void*, size_t) { return refuse_write(); }
int set_dot11FragmentationThreshold(void*, const void*, size_t) { return refuse_write(); }
int set_dot11MaxTransmitMSDULifetime(void*, const void*, size_t) { return refuse_write(); }
int set_dot11MaxReceiveLifetime(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_ONLY(1, dot11MACAddress, octet_string, key::mac),
    READ_WRITE(2, dot11RTSThreshold, integer, key::rts_threshold),
    READ_WRITE(3, dot11ShortRetryLimit, integer, key::short_retry_limit),
    READ_WRITE(4, dot11LongRetryLimit, integer, key::long_retry_limit),
    READ_WRITE(5, dot11FragmentationThreshold, integer, key::fragmentation_threshold),
    READ_WRITE(6, dot11MaxTransmitMSDULifetime, gauge, key::max_transmit_msdu_lifetime),
    READ_WRITE(7, dot11MaxReceiveLifetime, gauge, key::max_receive_lifetime),
    READ_ONLY(8, dot11ManufacturerID, octet_string, no_key),
    READ_ONLY(9, dot11ProductID, octet_string, no_key),
};
// clang-format on

constexpr Table dot11OperationTable = {
    .name = "dot11OperationTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetOperationsEntries,
    .table_data = GetOperationsTableData,
    .index_count = GetOperationTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetOperationsEntryByIndex,
};

}  // namespace dot11
