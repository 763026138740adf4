#include "access/erp.h"

#include "access/accessors.h"

namespace {

using Row = ErpRow;

}  // namespace

netsnmp_variable_list* dot11PhyERPTable_get_first_data_point(void**, void**, netsnmp_variable_list*,
                                                             netsnmp_iterator_info*) {
    return nullptr;
}

netsnmp_variable_list* dot11PhyERPTable_get_next_data_point(void**, void**, netsnmp_variable_list*,
                                                            netsnmp_iterator_info*) {
    return nullptr;
}

void* dot11PhyERPTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11PhyERPTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
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
// clang-format on
