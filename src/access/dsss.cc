// dot11PhyDSSSTable (1.2.840.10036.4.5).
#include "backend/phy/dsss.h"
#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = DsssRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11CurrentChannel(void* row, size_t* length) { return word<&Row::dot11CurrentChannel>(row, length); }

// Quirk: energy detect only (1), for every row.
void* get_dot11CCAModeSupported(void*, size_t* length) { return constant_word<&Row::dot11CCAModeSupported, 1>(length); }
void* get_dot11CurrentCCAMode(void* row, size_t* length) { return word<&Row::dot11CurrentCCAMode>(row, length); }
void* get_dot11EDThreshold(void* row, size_t* length) { return word<&Row::dot11EDThreshold>(row, length); }

int set_dot11CurrentChannel(void*, const void*, size_t) { return refuse_write(); }
int set_dot11CurrentCCAMode(void*, const void*, size_t) { return refuse_write(); }
int set_dot11EDThreshold(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_WRITE(1, dot11CurrentChannel, integer, key::channel),
    NOT_ANSWERED(2, dot11CCAModeSupported, integer, no_key),
    NOT_ANSWERED_WRITE(3, dot11CurrentCCAMode, integer, no_key),
    NOT_ANSWERED_WRITE(4, dot11EDThreshold, integer, no_key),
};
// clang-format on

constexpr Table dot11PhyDSSSTable = {
    .name = "dot11PhyDSSSTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetPhyDsssEntries,
    .table_data = GetPhyDsssTableData,
    .index_count = GetPhyDsssTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetPhyDsssEntryByIndex,
};

}  // namespace dot11
