#include "frame.h"

#include <algorithm>

namespace collector {

namespace {

constexpr size_t header_size = 24;
constexpr size_t receiver = 4, transmitter = 10;  // offsets of the addresses

constexpr uint8_t disassociation = 0xa0, deauthentication = 0xc0, authentication = 0xb0;
constexpr uint8_t encrypted = 0x40;  // in the second octet of frame control

constexpr uint16_t sae = 3;  // authentication algorithm

uint8_t octet(std::string_view frame, size_t at) {
    return static_cast<uint8_t>(frame[at]);
}

// 802.11 is little-endian, whatever the host is.
uint16_t word(std::string_view frame, size_t at) {
    return static_cast<uint16_t>(octet(frame, at) | octet(frame, at + 1) << 8);
}

Mac address(std::string_view frame, size_t at) {
    Mac mac;
    std::transform(frame.begin() + static_cast<ptrdiff_t>(at), frame.begin() + static_cast<ptrdiff_t>(at + 6),
                   mac.begin(), [](char c) { return static_cast<uint8_t>(c); });
    return mac;
}

// SAE uses these status codes in a handshake that continues: token required, hash to element, public key.
bool is_refusal(uint16_t algorithm, uint16_t status) {
    return status != 0 && !(algorithm == sae && (status == 76 || status == 126 || status == 127));
}

std::optional<Sent> with_reason(std::string_view frame, Told told) {
    if (frame.size() < header_size + 2) return std::nullopt;
    return Sent{told, word(frame, header_size), address(frame, receiver)};
}

std::optional<Sent> with_status(std::string_view frame) {
    if (frame.size() < header_size + 6) return std::nullopt;
    const uint16_t status = word(frame, header_size + 4);
    if (!is_refusal(word(frame, header_size), status)) return std::nullopt;
    return Sent{Told::refused, status, address(frame, receiver)};
}

}  // namespace

std::optional<Sent> sent_frame(std::string_view frame, const Mac& own) {
    if (frame.size() < header_size || (octet(frame, 1) & encrypted) != 0) return std::nullopt;
    const bool to_a_group = (octet(frame, receiver) & 1) != 0;
    if (to_a_group || address(frame, transmitter) != own) return std::nullopt;
    switch (octet(frame, 0)) {
        case disassociation:
            return with_reason(frame, Told::disassociated);
        case deauthentication:
            return with_reason(frame, Told::deauthenticated);
        case authentication:
            return with_status(frame);
        default:
            return std::nullopt;
    }
}

}  // namespace collector
