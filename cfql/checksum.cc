#include "checksum.h"

#include <array>

namespace cfql {
namespace {

constexpr auto crc_table = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t octet = 0; octet < table.size(); ++octet) {
        uint32_t crc = octet;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
        table[octet] = crc;
    }
    return table;
}();

uint32_t add(uint32_t state, unsigned char octet) {
    return (state >> 8) ^ crc_table[(state ^ octet) & 0xffU];
}

uint32_t add(uint32_t state, Text text) {
    for (char c : text)
        state = add(state, static_cast<unsigned char>(c));
    return add(state, static_cast<unsigned char>(0));
}

}  // namespace

Checksum::Checksum(int64_t id, Text table, Text object) : state_(0xffffffffU) {
    for (int shift = 56; shift >= 0; shift -= 8)
        state_ = add(state_, static_cast<unsigned char>(id >> shift));
    state_ = add(add(state_, table), object);
}

uint32_t Checksum::of_attribute(Text key, Text value) const {
    return ~add(add(state_, key), value);
}

}  // namespace cfql
