#include "access/erp.h"

#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = ErpRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11ERPPBCCOptionImplemented(void* row, size_t* length) { return word<&Row::dot11ERPPBCCOptionImplemented>(row, length); }
void* get_dot11ERPBCCOptionEnabled(void* row, size_t* length) { return word<&Row::dot11ERPBCCOptionEnabled>(row, length); }
void* get_dot11DSSSOFDMOptionImplemented(void* row, size_t* length) { return word<&Row::dot11DSSSOFDMOptionImplemented>(row, length); }
void* get_dot11DSSSOFDMOptionEnabled(void* row, size_t* length) { return word<&Row::dot11DSSSOFDMOptionEnabled>(row, length); }
void* get_dot11ShortSlotTimeOptionImplemented(void* row, size_t* length) { return word<&Row::dot11ShortSlotTimeOptionImplemented>(row, length); }
void* get_dot11ShortSlotTimeOptionEnabled(void* row, size_t* length) { return word<&Row::dot11ShortSlotTimeOptionEnabled>(row, length); }

int set_dot11ERPBCCOptionEnabled(void* row, const void* value, size_t) { return store_word<&Row::dot11ERPBCCOptionEnabled>(row, value); }
int set_dot11DSSSOFDMOptionEnabled(void* row, const void* value, size_t) { return store_word<&Row::dot11DSSSOFDMOptionEnabled>(row, value); }
int set_dot11ShortSlotTimeOptionImplemented(void* row, const void* value, size_t) { return store_word<&Row::dot11ShortSlotTimeOptionImplemented>(row, value); }
int set_dot11ShortSlotTimeOptionEnabled(void* row, const void* value, size_t) { return store_word<&Row::dot11ShortSlotTimeOptionEnabled>(row, value); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_ONLY(1, dot11ERPPBCCOptionImplemented, integer, no_key),
    READ_WRITE(2, dot11ERPBCCOptionEnabled, integer, no_key),
    READ_ONLY(3, dot11DSSSOFDMOptionImplemented, integer, no_key),
    READ_WRITE(4, dot11DSSSOFDMOptionEnabled, integer, no_key),
    READ_WRITE(5, dot11ShortSlotTimeOptionImplemented, integer, no_key),
    READ_WRITE(6, dot11ShortSlotTimeOptionEnabled, integer, no_key),
};
// clang-format on

constexpr Table dot11PhyERPTable = {
    .name = "dot11PhyERPTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
};

}  // namespace dot11
