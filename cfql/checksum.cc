#include "checksum.h"

#include <array>

namespace cfql {
namespace {

constexpr auto crc_table = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t octet = 0; octet < table.size(); ++octet) {
        std::uint32_t crc = octet;
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
    Crc32& number(std::int64_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            octet(static_cast<unsigned char>(value >> shift));
        return *this;
    }
    Crc32& text(Text value) {
        for (char c : value)
            octet(static_cast<unsigned char>(c));
        return octet(0);
    }
    std::uint32_t result() const { return ~state_; }

  private:
    std::uint32_t state_ = 0xffffffffU;
};

}  // namespace

std::uint32_t checksum_of_object(std::int64_t id, Text table, Text object) {
    return Crc32().number(id).text(table).text(object).result();
}

std::uint32_t checksum_of_attribute(std::int64_t id, Text table, Text object, Text key, Text value) {
    return Crc32().number(id).text(table).text(object).text(key).text(value).result();
}

}  // namespace cfql
