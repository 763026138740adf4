// SETs that no manager should make, with the answer to each, and the store that they are made on.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "agent.h"

inline constexpr char hazard_configuration[] = R"(
[[interface]]
name = "wlan0"
type = "service-set"
bss = "b0"

[[interface]]
name = "wlan1"
type = "service-set"

[[bss]]
name = "b0"
radio = "r0"

[[radio]]
name = "r0"
beacon-interval = "100"
)";

// Errors of a SET (RFC 3416).
constexpr int no_error = 0, gen_err = 5, wrong_type = 7, wrong_value = 10, no_creation = 11, inconsistent = 12,
              undo_failed = 15, not_writable = 17;

using Values = std::vector<std::pair<std::string, Value>>;

struct SetFact {
    const char* what;
    Values values;
    int status;
    int index;  // of the varbind that the status is about
    bool beyond_32_bits = false;
};

// A message with a number larger than the agent's long is dropped before any module sees it.
inline bool is_dropped(const SetFact& fact) {
    return fact.beyond_32_bits && long_bits_of_agent() == 32;
}

inline Value integer(int64_t number) {
    return Value::integer(number);
}

inline Value octets(size_t count) {
    return Value::string(std::string(count, 'k'));
}

// wlan0 has index 11; 99 is no interface. The unbacked tables have no rows.
inline const std::string beacon = "1.1.1.12.11", rate_set = "1.1.1.11.11", privacy = "1.5.1.1.11",
                         authentication = "1.2.1.3.11.1", key_address = "1.4.1.2.11.1", key_on = "1.4.1.3.11.1",
                         key_value = "1.4.1.4.11.1", key_status = "1.4.1.5.11.1", group_address = "2.3.1.2.11.1",
                         group_status = "2.3.1.3.11.1", erp_enabled = "4.14.1.2.11";

inline const std::vector<SetFact> set_facts = {
    // A table without rows takes a value, into a row of its own that nothing reads.
    {"group address", {{group_address, octets(6)}}, no_error, 0},
    {"group address, short", {{group_address, octets(5)}}, wrong_value, 1},
    {"group status createAndGo", {{group_status, integer(4)}}, no_error, 0},
    {"group status createAndWait", {{group_status, integer(5)}}, no_error, 0},
    {"group status active, without a row", {{group_status, integer(1)}}, inconsistent, 1},
    {"group status out of range", {{group_status, integer(7)}}, inconsistent, 1},
    {"ERP 1", {{"4.14.1.1.11", integer(1)}}, not_writable, 1},
    {"ERP 2", {{erp_enabled, integer(1)}}, no_error, 0},
    {"ERP 2, out of range", {{erp_enabled, integer(3)}}, inconsistent, 1},
    {"ERP 3", {{"4.14.1.3.11", integer(1)}}, not_writable, 1},
    {"ERP 4", {{"4.14.1.4.11", integer(2)}}, no_error, 0},
    {"ERP 5", {{"4.14.1.5.99", integer(1)}}, no_error, 0},
    {"ERP 6", {{"4.14.1.6.11", integer(1)}}, no_error, 0},
    {"key address", {{key_address, octets(6)}}, no_error, 0},
    {"key on", {{key_on, integer(2)}}, no_error, 0},
    {"key value", {{key_value, octets(5)}}, no_error, 0},
    {"key value of 13 octets", {{key_value, octets(13)}}, wrong_value, 1},
    // A key mapping's status always reads active.
    {"key status active", {{key_status, integer(1)}}, no_error, 0},
    {"key status destroy", {{key_status, integer(6)}}, no_error, 0},
    {"key status createAndGo", {{key_status, integer(4)}}, inconsistent, 1},
    {"key mapping whole",
     {{key_address, octets(6)}, {key_on, integer(1)}, {key_value, octets(5)}, {key_status, integer(1)}},
     no_error,
     0},

    // The first table's UNDO empties the stores, and the second table finds nothing to undo.
    {"beacon, key on", {{beacon, integer(100)}, {key_on, integer(1)}}, undo_failed, 2},
    {"key on, beacon", {{key_on, integer(1)}, {beacon, integer(100)}}, undo_failed, 2},
    {"beacon, privacy", {{beacon, integer(100)}, {privacy, integer(1)}}, undo_failed, 2},
    {"privacy, beacon", {{privacy, integer(1)}, {beacon, integer(100)}}, undo_failed, 2},
    {"authentication, key status", {{authentication, integer(1)}, {key_status, integer(1)}}, undo_failed, 2},
    {"key address, beacon", {{key_address, octets(6)}, {beacon, integer(100)}}, undo_failed, 2},
    {"key on, key value, beacon",
     {{key_on, integer(1)}, {key_value, octets(5)}, {beacon, integer(100)}},
     undo_failed,
     3},

    // The first table's COMMIT empties the stores, and the second table has nothing left to commit.
    {"rate set, key on", {{rate_set, octets(3)}, {key_on, integer(1)}}, no_error, 0},
    {"key on, rate set", {{key_on, integer(1)}, {rate_set, octets(3)}}, no_error, 0},
    {"key on, group address", {{key_on, integer(1)}, {group_address, octets(6)}}, no_error, 0},
    {"group address, ERP", {{group_address, octets(6)}, {erp_enabled, integer(1)}}, no_error, 0},
    {"ERP, key value", {{erp_enabled, integer(1)}, {key_value, octets(5)}}, no_error, 0},

    // The agent refuses the first varbind, and the list still begins with it.
    {"the entry, beacon", {{"1.1.1", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"the table, beacon", {{"1.1", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"a wrong entry, beacon", {{"1.1.2.12.11", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"a column too high, beacon", {{"1.1.1.99.11", integer(1)}, {beacon, integer(100)}}, not_writable, 1},
    {"the table, key on", {{"1.4", integer(1)}, {key_on, integer(1)}}, not_writable, 1},
    {"a column too high, key value", {{"1.4.1.99.11.1", integer(1)}, {key_value, octets(5)}}, not_writable, 1},
    {"a column too high, authentication",
     {{"1.2.1.99.11.1", integer(1)}, {authentication, integer(1)}},
     not_writable,
     1},
    {"no index", {{"1.1.1.12", integer(1)}, {beacon, integer(100)}}, no_creation, 1},
    {"too long an index", {{"1.1.1.12.11.5", integer(1)}, {beacon, integer(100)}}, no_creation, 1},
    {"too short an index", {{"1.4.1.3.11", integer(1)}, {key_on, integer(1)}}, no_creation, 1},

    // The rate set ends the handler: what stands behind it is not tried.
    {"beacon, rate set", {{beacon, integer(100)}, {rate_set, octets(3)}}, not_writable, 1},
    {"rate set, beacon", {{rate_set, octets(3)}, {beacon, integer(100)}}, no_error, 0},

    // One row for all, that of the first varbind.
    {"beacon of two rows", {{beacon, integer(100)}, {"1.1.1.12.12", integer(100)}}, not_writable, 1},
    {"beacon twice", {{beacon, integer(100)}, {beacon, integer(200)}}, not_writable, 1},
    {"beacon, of a missing row", {{beacon, integer(100)}, {"1.1.1.12.99", integer(100)}}, no_creation, 2},

    // Numbers count in their 32-bit form.
    {"4294967295 is -1", {{privacy, integer(4294967295)}}, inconsistent, 1, true},
    {"4294967295 is -1, as length", {{"1.5.1.3.11", integer(4294967295)}}, wrong_value, 1, true},
    {"-1", {{privacy, integer(-1)}}, inconsistent, 1},
    {"NULL", {{beacon, Value::of_type(ASN_NULL)}}, wrong_type, 1},
    {"Counter32", {{beacon, Value::of_type(ASN_COUNTER, integer(100).octets)}}, wrong_type, 1},
};
