#include "access/group_addresses.h"

#include "access/accessors.h"

namespace {

using Row = GroupAddressesRow;

}  // namespace

netsnmp_variable_list* dot11GroupAddressesTable_get_first_data_point(void**, void**, netsnmp_variable_list*,
                                                                     netsnmp_iterator_info*) {
    return nullptr;
}

netsnmp_variable_list* dot11GroupAddressesTable_get_next_data_point(void**, void**, netsnmp_variable_list*,
                                                                    netsnmp_iterator_info*) {
    return nullptr;
}

void* dot11GroupAddressesTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11GroupAddressesTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
void* get_dot11Address(void* row, size_t* length) { return fixed_octets<&Row::dot11Address, 6>(row, length); }
void* get_dot11GroupAddressesStatus(void* row, size_t* length) { return word<&Row::dot11GroupAddressesStatus>(row, length); }

int set_dot11Address(void* row, const void* value, size_t) { return store_octets<&Row::dot11Address, 6>(row, value); }
int set_dot11GroupAddressesStatus(void* row, const void* value, size_t) { return store_word<&Row::dot11GroupAddressesStatus>(row, value); }
// clang-format on
