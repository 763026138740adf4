// The values of SNMP's error-status (RFC 3416, section 3) that checks and accessors return.
#pragma once

namespace dot11 {

constexpr int no_error = 0;
constexpr int generic_error = 5;
constexpr int wrong_type = 7;
constexpr int wrong_value = 10;
constexpr int inconsistent_value = 12;
constexpr int not_writable = 17;

}  // namespace dot11
