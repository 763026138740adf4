// error-status of SNMP (RFC 3416, section 3), as far as checks and accessors answer it.
#pragma once

namespace dot11 {

constexpr int no_error = 0;
constexpr int generic_error = 5;
constexpr int wrong_type = 7;
constexpr int wrong_value = 10;
constexpr int inconsistent_value = 12;
constexpr int not_writable = 17;

}  // namespace dot11
