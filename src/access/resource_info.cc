// dot11ResourceInfoTable (1.2.840.10036.3.1.2).
#include "backend/mac/resource_info.h"
#include "access/accessors.h"
#include "access/tables.h"
#include "backend/radio.h"

namespace dot11 {

using Row = ResourceInfoRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11manufacturerOUI(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerOUI, &Row::dot11manufacturerOUILen>(row, length); }
void* get_dot11manufacturerName(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerName, &Row::dot11manufacturerNameLen>(row, length); }
void* get_dot11manufacturerProductName(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerProductName, &Row::dot11manufacturerProductNameLen>(row, length); }
void* get_dot11manufacturerProductVersion(void* row, size_t* length) { return counted_octets<&Row::dot11manufacturerProductVersion, &Row::dot11manufacturerProductVersionLen>(row, length); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    COMPLETE_ONLY(1, dot11manufacturerOUI, octet_string, key::manufacturer_oui),
    COMPLETE_ONLY(2, dot11manufacturerName, octet_string, key::manufacturer_name),
    COMPLETE_ONLY(3, dot11manufacturerProductName, octet_string, key::manufacturer_product_name),
    COMPLETE_ONLY(4, dot11manufacturerProductVersion, octet_string, key::manufacturer_product_version),
};
// clang-format on

constexpr Table dot11ResourceInfoTable = {
    .name = "dot11ResourceInfoTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetResourceInfoEntries,
    .table_data = GetResourceInfoTableData,
    .index_count = GetResourceInfoTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetResourceInfoEntryByIndex,
};

}  // namespace dot11
