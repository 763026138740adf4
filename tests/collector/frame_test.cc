// Management frames, octet by octet.
#include "frame.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using collector::Mac;
using collector::Sent;
using collector::sent_frame;
using collector::Told;

constexpr Mac own = {2, 0, 0, 0, 0, 0};
constexpr Mac client = {2, 0, 0, 0, 2, 0};

std::string octets(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values)
        text += static_cast<char>(value);
    return text;
}

// A header of the given control octets, to `receiver` from the access point, with `body`.
std::string frame(int control, int flags, const std::string& receiver, const std::string& body) {
    const std::string from = octets({2, 0, 0, 0, 0, 0});
    return octets({control, flags, 0, 0}) + receiver + from + from + octets({0x10, 0}) + body;
}

const std::string to_client = octets({2, 0, 0, 0, 2, 0});

TEST(SentFrame, Tells) {
    const struct {
        const char* name;
        std::string frame;
        std::optional<Sent> sent;
    } cases[] = {
        {"disassociation, reason 8", frame(0xa0, 0, to_client, octets({8, 0})), Sent{Told::disassociated, 8, client}},
        {"deauthentication, reason 5", frame(0xc0, 0, to_client, octets({5, 0})),
         Sent{Told::deauthenticated, 5, client}},
        {"reason 0x1234, little-endian", frame(0xc0, 0, to_client, octets({0x34, 0x12})),
         Sent{Told::deauthenticated, 0x1234, client}},
        {"more behind the reason", frame(0xc0, 0, to_client, octets({5, 0, 1, 2, 3})),
         Sent{Told::deauthenticated, 5, client}},
        {"retried", frame(0xc0, 8, to_client, octets({5, 0})), Sent{Told::deauthenticated, 5, client}},
        {"authentication refused by the list, status 1", frame(0xb0, 0, to_client, octets({0, 0, 2, 0, 1, 0})),
         Sent{Told::refused, 1, client}},
        {"SAE, wrong password, status 1", frame(0xb0, 0, to_client, octets({3, 0, 2, 0, 1, 0})),
         Sent{Told::refused, 1, client}},
        {"authentication accepted", frame(0xb0, 0, to_client, octets({0, 0, 2, 0, 0, 0})), {}},
        {"SAE wants a token: goes on", frame(0xb0, 0, to_client, octets({3, 0, 1, 0, 76, 0})), {}},
        {"SAE by hash to element: goes on", frame(0xb0, 0, to_client, octets({3, 0, 1, 0, 126, 0})), {}},
        {"SAE with public key: goes on", frame(0xb0, 0, to_client, octets({3, 0, 1, 0, 127, 0})), {}},
        {"status 76 of another algorithm", frame(0xb0, 0, to_client, octets({0, 0, 2, 0, 76, 0})),
         Sent{Told::refused, 76, client}},
        {"to all stations", frame(0xc0, 0, octets({255, 255, 255, 255, 255, 255}), octets({2, 0})), {}},
        {"to a group", frame(0xc0, 0, octets({3, 0, 0, 0, 2, 0}), octets({2, 0})), {}},
        {"encrypted", frame(0xc0, 0x40, to_client, octets({2, 0})), {}},
        {"association response", frame(0x10, 0, to_client, octets({0, 0, 1, 0, 0, 0})), {}},
        {"data", frame(0x08, 0, to_client, octets({5, 0})), {}},
        {"control", frame(0xc4, 0, to_client, octets({5, 0})), {}},
        {"version 1", frame(0xc1, 0, to_client, octets({5, 0})), {}},
        {"nothing", "", {}},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        EXPECT_EQ(sent_frame(expected.frame, own), expected.sent);
    }
}

TEST(SentFrame, OfAnotherSenderIsNot) {
    EXPECT_FALSE(sent_frame(frame(0xc0, 0, to_client, octets({5, 0})), client));
}

TEST(SentFrame, CutShortIsNot) {
    const struct {
        std::string frame;
        std::size_t least;  // octets that it takes
    } cases[] = {
        {frame(0xa0, 0, to_client, octets({8, 0})), 26},
        {frame(0xc0, 0, to_client, octets({8, 0})), 26},
        {frame(0xb0, 0, to_client, octets({0, 0, 2, 0, 1, 0})), 30},
    };
    for (const auto& expected : cases) {
        for (std::size_t size = 0; size <= expected.frame.size(); ++size) {
            // A copy of its own, so that a sanitizer sees the octet behind it.
            const std::string cut(expected.frame.data(), size);
            EXPECT_EQ(sent_frame(cut, own).has_value(), size >= expected.least) << size;
        }
    }
}

}  // namespace
