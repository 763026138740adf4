#include "access/hr_dsss.h"

#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = HrDsssRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11ShortPreambleOptionImplemented(void* row, size_t* length) { return word<&Row::dot11ShortPreambleOptionImplemented>(row, length); }
void* get_dot11PBCCOptionImplemented(void* row, size_t* length) { return word<&Row::dot11PBCCOptionImplemented>(row, length); }
void* get_dot11ChannelAgilityPresent(void* row, size_t* length) { return word<&Row::dot11ChannelAgilityPresent>(row, length); }
void* get_dot11ChannelAgilityEnabled(void* row, size_t* length) { return word<&Row::dot11ChannelAgilityEnabled>(row, length); }
void* get_dot11HRCCAModeSupported(void* row, size_t* length) { return word<&Row::dot11HRCCAModeSupported>(row, length); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    NOT_ANSWERED(1, dot11ShortPreambleOptionImplemented, integer, no_key),
    NOT_ANSWERED(2, dot11PBCCOptionImplemented, integer, no_key),
    NOT_ANSWERED(3, dot11ChannelAgilityPresent, integer, no_key),
    NOT_ANSWERED(4, dot11ChannelAgilityEnabled, integer, no_key),
    NOT_ANSWERED(5, dot11HRCCAModeSupported, integer, no_key),
};
// clang-format on

constexpr Table dot11PhyHRDSSSTable = {
    .name = "dot11PhyHRDSSSTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
};

}  // namespace dot11
