// SNMPv2c messages (RFC 3416) as a manager writes and reads them, down to the octets of each value.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

using Oid = std::vector<uint32_t>;

enum Command : uint8_t { get_request = 0xa0, get_next_request, response_pdu, set_request, get_bulk_request = 0xa5 };

enum Type : uint8_t {
    integer = 0x02,
    octet_string = 0x04,
    null_value = 0x05,
    object_id = 0x06,
    counter32 = 0x41,
    gauge32 = 0x42,
    no_such_object = 0x80,
    no_such_instance = 0x81,
    end_of_mib_view = 0x82,
};

struct Value {
    uint8_t type = null_value;
    std::string octets;  // as encoded

    bool operator==(const Value&) const = default;
};

struct Varbind {
    Oid name;
    Value value;

    bool operator==(const Varbind&) const = default;
};

struct Pdu {
    uint8_t command = 0;
    int32_t request_id = 0;
    int32_t status = 0;  // GETBULK: non-repeaters
    int32_t index = 0;   // GETBULK: max-repetitions
    std::vector<Varbind> varbinds;
};

// An INTEGER in as few octets as it takes.
std::string integer_octets(int64_t number);

// The number that an INTEGER's octets say.
int64_t number_of(const std::string& octets);

std::string encoded(const Pdu& pdu);

// Nothing for octets that are no message, or not of those types.
std::optional<Pdu> decoded(std::span<const uint8_t> message);

std::span<const uint8_t> octets_of(const std::string& text);

std::string shown(const Oid& name);
std::string shown(const Varbind& varbind);
