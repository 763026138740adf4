#include "access/group_addresses.h"

#include "access/accessors.h"
#include "access/tables.h"

namespace dot11 {

using Row = GroupAddressesRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11Address(void* row, size_t* length) { return fixed_octets<&Row::dot11Address, 6>(row, length); }
void* get_dot11GroupAddressesStatus(void* row, size_t* length) { return word<&Row::dot11GroupAddressesStatus>(row, length); }

int set_dot11Address(void* row, const void* value, size_t) { return store_octets<&Row::dot11Address, 6>(row, value); }
int set_dot11GroupAddressesStatus(void* row, const void* value, size_t) { return store_word<&Row::dot11GroupAddressesStatus>(row, value); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_WRITE(2, dot11Address, octet_string, no_key),
    READ_WRITE(3, dot11GroupAddressesStatus, integer, no_key),
};
// clang-format on

constexpr Table dot11GroupAddressesTable = {
    .name = "dot11GroupAddressesTable",
    .columns = columns,
    .indexes = 2,
    .row_size = sizeof(Row),
};

}  // namespace dot11
