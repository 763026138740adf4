#include "access/hr_dsss.h"

#include "access/accessors.h"

namespace {

using Row = HrDsssRow;

}  // namespace

netsnmp_variable_list* dot11PhyHRDSSSTable_get_first_data_point(void**, void**, netsnmp_variable_list*,
                                                                netsnmp_iterator_info*) {
    return nullptr;
}

netsnmp_variable_list* dot11PhyHRDSSSTable_get_next_data_point(void**, void**, netsnmp_variable_list*,
                                                               netsnmp_iterator_info*) {
    return nullptr;
}

void* dot11PhyHRDSSSTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11PhyHRDSSSTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11ShortPreambleOptionImplemented(void* row, size_t* length) { return word<&Row::dot11ShortPreambleOptionImplemented>(row, length); }
void* get_dot11PBCCOptionImplemented(void* row, size_t* length) { return word<&Row::dot11PBCCOptionImplemented>(row, length); }
void* get_dot11ChannelAgilityPresent(void* row, size_t* length) { return word<&Row::dot11ChannelAgilityPresent>(row, length); }
void* get_dot11ChannelAgilityEnabled(void* row, size_t* length) { return word<&Row::dot11ChannelAgilityEnabled>(row, length); }
void* get_dot11HRCCAModeSupported(void* row, size_t* length) { return word<&Row::dot11HRCCAModeSupported>(row, length); }
// clang-format on
