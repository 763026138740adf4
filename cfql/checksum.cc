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

class Crc32 {
  public:
    Crc32& octet(unsigned char value) {
        state_ = (state_ >> 8) ^ crc_table[(state_ ^ value) & 0xffU];
        return *this;
    }
    Crc32& number(int64_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            octet(static_cast<unsigned char>(value >> shift));
        return *this;
    }
    Crc32& text(Text value) {
        for (char c : value)
            octet(static_cast<unsigned char>(c));
        return octet(0);
    }
    uint32_t result() const { return ~state_; }

  private:
    uint32_t state_ = 0xffffffffU;
};

}  // namespace

uint32_t checksum_of_object(int64_t id, Text table, Text object) {
    return Crc32().number(id).text(table).text(object).result();
}

uint32_t checksum_of_attribute(int64_t id, Text table, Text object, Text key, Text value) {
    return Crc32().number(id).text(table).text(object).text(key).text(value).result();
}

}  // namespace cfql
