// What the kernel's messages say. They are made here in the host's byte order, as the kernel makes them.
#include "nl80211.h"

#include <gtest/gtest.h>
#include <linux/nl80211.h>
#include <linux/rtnetlink.h>

#include "links.h"
#include "messages.h"

namespace {

using namespace collector;
using messages::Message;

const std::string mac_octets = {2, 0, 0, 0, 1, 0};
constexpr Mac mac = {2, 0, 0, 0, 1, 0};

Message access_point() {
    return Message(NL80211_CMD_NEW_INTERFACE)
        .u32(NL80211_ATTR_WIPHY, 3)
        .u32(NL80211_ATTR_IFTYPE, NL80211_IFTYPE_AP)
        .u32(NL80211_ATTR_IFINDEX, 6)
        .text(NL80211_ATTR_IFNAME, "wlan0_1")
        .u64(NL80211_ATTR_WDEV, 0x300000002)
        .octets(NL80211_ATTR_MAC, mac_octets)
        .octets(NL80211_ATTR_SSID, "lab-\xc3\xa4")
        .u32(NL80211_ATTR_WIPHY_FREQ, 2437)
        .u32(NL80211_ATTR_WIPHY_TX_POWER_LEVEL, 2000);
}

TEST(ReadInterface, AccessPoint) {
    const std::optional<Interface> found = nl80211::read_interface(access_point().get());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->index, 6U);
    EXPECT_EQ(found->name, "wlan0_1");
    EXPECT_EQ(found->radio, 3U);
    EXPECT_EQ(found->type, 3U);
    EXPECT_EQ(found->mac, mac);
    EXPECT_EQ(found->ssid, "lab-\xc3\xa4");
    EXPECT_EQ(found->frequency, 2437U);
    EXPECT_EQ(found->power, 2000);
}

TEST(ReadInterface, NotStarted) {
    const auto found = nl80211::read_interface(
        Message(NL80211_CMD_NEW_INTERFACE).u32(NL80211_ATTR_IFINDEX, 6).text(NL80211_ATTR_IFNAME, "w").get());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->ssid, "");
    EXPECT_EQ(found->frequency, std::nullopt);
    EXPECT_EQ(found->power, std::nullopt);
}

TEST(ReadInterface, NegativePower) {
    const auto found = nl80211::read_interface(access_point().u32(NL80211_ATTR_WIPHY_TX_POWER_LEVEL, 0xffffff9c).get());
    EXPECT_EQ(found->power, -100);
}

TEST(ReadInterface, AP2pDeviceHasNoIndex) {
    EXPECT_FALSE(nl80211::read_interface(
        Message(NL80211_CMD_NEW_INTERFACE).u32(NL80211_ATTR_IFTYPE, NL80211_IFTYPE_P2P_DEVICE).get()));
}

TEST(ReadInterface, WrongLengthsAreAbsent) {
    const auto found = nl80211::read_interface(Message(NL80211_CMD_NEW_INTERFACE)
                                                   .u32(NL80211_ATTR_IFINDEX, 6)
                                                   .text(NL80211_ATTR_IFNAME, "w")
                                                   .octets(NL80211_ATTR_MAC, "12345")
                                                   .u16(NL80211_ATTR_WIPHY_FREQ, 2437)
                                                   .u64(NL80211_ATTR_IFTYPE, 3)
                                                   .octets(NL80211_ATTR_SSID, std::string(40, 'x'))
                                                   .get());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->mac, Mac{});
    EXPECT_EQ(found->frequency, std::nullopt);
    EXPECT_EQ(found->type, 0U);
    EXPECT_EQ(found->ssid.size(), 32U);
}

TEST(ReadInterface, OfAnotherCommandIsNot) {
    EXPECT_FALSE(nl80211::read_interface(Message(NL80211_CMD_NEW_STATION).u32(NL80211_ATTR_IFINDEX, 6).get()));
}

TEST(ReadRadio, ThresholdsAndLimits) {
    const auto found = nl80211::read_radio(Message(NL80211_CMD_NEW_WIPHY)
                                               .u32(NL80211_ATTR_WIPHY, 0)
                                               .text(NL80211_ATTR_WIPHY_NAME, "phy0")
                                               .u8(NL80211_ATTR_WIPHY_RETRY_SHORT, 7)
                                               .u8(NL80211_ATTR_WIPHY_RETRY_LONG, 4)
                                               .u32(NL80211_ATTR_WIPHY_FRAG_THRESHOLD, 0xffffffff)
                                               .u32(NL80211_ATTR_WIPHY_RTS_THRESHOLD, 2000)
                                               .get());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->index, 0U);
    EXPECT_EQ(found->name, "phy0");
    EXPECT_EQ(found->short_retry, 7);
    EXPECT_EQ(found->long_retry, 4);
    EXPECT_EQ(found->rts, 2000U);
    EXPECT_EQ(found->fragmentation, threshold_off);
}

TEST(ReadRegulatory, TheWorldAndARadioThatRulesItself) {
    const auto world = nl80211::read_regulatory(
        Message(NL80211_CMD_GET_REG).text(NL80211_ATTR_REG_ALPHA2, "DE").u8(NL80211_ATTR_DFS_REGION, 2).get());
    ASSERT_TRUE(world);
    EXPECT_EQ(world->country, "DE");
    EXPECT_EQ(world->dfs, 2);
    EXPECT_EQ(world->radio, std::nullopt);

    Message own(NL80211_CMD_GET_REG);
    own.text(NL80211_ATTR_REG_ALPHA2, "US").u32(NL80211_ATTR_WIPHY, 1);
    EXPECT_FALSE(nl80211::read_regulatory(own.get()));  // a hint of its driver's, which the world has taken up
    const auto radio = nl80211::read_regulatory(own.flag(NL80211_ATTR_WIPHY_SELF_MANAGED_REG).get());
    ASSERT_TRUE(radio);
    EXPECT_EQ(radio->radio, 1U);
}

void put_counters(Message& message) {
    message.u32(NL80211_STA_INFO_RX_PACKETS, 100)
        .u32(NL80211_STA_INFO_TX_PACKETS, 200)
        .u32(NL80211_STA_INFO_TX_RETRIES, 7)
        .u32(NL80211_STA_INFO_TX_FAILED, 3)
        .nest(NL80211_STA_INFO_BSS_PARAM, [](Message& bss) {
            bss.u8(NL80211_STA_BSS_PARAM_DTIM_PERIOD, 2).u16(NL80211_STA_BSS_PARAM_BEACON_INTERVAL, 0x1234);
        });
}

Message station(std::uint8_t command) {
    return Message(command)
        .u32(NL80211_ATTR_IFINDEX, 6)
        .octets(NL80211_ATTR_MAC, mac_octets)
        .u32(NL80211_ATTR_GENERATION, 41)
        .nest(NL80211_ATTR_STA_INFO, put_counters);
}

TEST(ReadStation, Counters) {
    const auto found = nl80211::read_station(station(NL80211_CMD_NEW_STATION).get());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->generation, 41U);
    EXPECT_EQ(found->station.mac, mac);
    EXPECT_EQ(found->station.sample, (Sample{100, 200, 3, 7, {}}));
    EXPECT_EQ(found->station.dtim, 2);
    EXPECT_EQ(found->station.beacon, 0x1234);
}

TEST(ReadStation, BadChecksums) {
    Message message(NL80211_CMD_NEW_STATION);
    message.octets(NL80211_ATTR_MAC, mac_octets).nest(NL80211_ATTR_STA_INFO, [](Message& info) {
        info.u32(NL80211_STA_INFO_FCS_ERROR_COUNT, 12);
    });
    EXPECT_EQ(nl80211::read_station(message.get())->station.sample.bad_checksums, 12U);
}

TEST(ReadEvent, Departure) {
    const nl80211::Event event = nl80211::read_event(station(NL80211_CMD_DEL_STATION).get());
    const auto* departed = std::get_if<Departed>(&event);
    ASSERT_NE(departed, nullptr);
    EXPECT_EQ(departed->interface, 6U);
    EXPECT_EQ(departed->generation, 41U);
    EXPECT_EQ(departed->mac, mac);
    EXPECT_EQ(departed->last, (Sample{100, 200, 3, 7, {}}));
}

TEST(ReadEvent, DepartureWithoutCounters) {
    const nl80211::Event event = nl80211::read_event(
        Message(NL80211_CMD_DEL_STATION).u32(NL80211_ATTR_IFINDEX, 6).octets(NL80211_ATTR_MAC, mac_octets).get());
    EXPECT_EQ(std::get<Departed>(event).last, std::nullopt);
}

TEST(ReadEvent, Transmission) {
    Message message(NL80211_CMD_FRAME_TX_STATUS);
    message.u32(NL80211_ATTR_IFINDEX, 6).octets(NL80211_ATTR_FRAME, "frame").flag(NL80211_ATTR_ACK);
    const nl80211::Event event = nl80211::read_event(message.get());
    EXPECT_EQ(std::get<nl80211::Transmission>(event).interface, 6U);
    EXPECT_EQ(std::get<nl80211::Transmission>(event).frame, "frame");
}

TEST(ReadEvent, Kinds) {
    const struct {
        std::uint8_t command;
        bool is_change;
    } cases[] = {
        {NL80211_CMD_NEW_STATION, true},
        {NL80211_CMD_NEW_INTERFACE, true},
        {NL80211_CMD_DEL_INTERFACE, true},
        {NL80211_CMD_SET_INTERFACE, true},
        {NL80211_CMD_NEW_WIPHY, true},
        {NL80211_CMD_DEL_WIPHY, true},
        {NL80211_CMD_START_AP, true},
        {NL80211_CMD_STOP_AP, true},
        {NL80211_CMD_REG_CHANGE, true},
        {NL80211_CMD_CH_SWITCH_NOTIFY, true},
        {NL80211_CMD_DEL_STATION, true},
        {NL80211_CMD_CH_SWITCH_STARTED_NOTIFY, false},
        {NL80211_CMD_NEW_SCAN_RESULTS, false},
        {NL80211_CMD_CONTROL_PORT_FRAME_TX_STATUS, false},
        {NL80211_CMD_FRAME_TX_STATUS, false},  // without a frame
        {0, false},
        {255, false},
    };
    for (const auto& expected : cases) {
        const nl80211::Event event = nl80211::read_event(Message(expected.command).get());
        EXPECT_EQ(std::holds_alternative<nl80211::Change>(event), expected.is_change) << int{expected.command};
    }
}

TEST(ReadFamily, NumberAndGroups) {
    Message message(CTRL_CMD_NEWFAMILY);
    message.u16(CTRL_ATTR_FAMILY_ID, 0x1c).nest(CTRL_ATTR_MCAST_GROUPS, [](Message& groups) {
        const std::pair<const char*, std::uint32_t> all[] = {
            {"config", 5}, {"scan", 6}, {"regulatory", 7}, {"mlme", 8}};
        std::uint16_t index = 1;
        for (const auto& one : all) {
            groups.nest(index++, [&](Message& group) {
                group.text(CTRL_ATTR_MCAST_GRP_NAME, one.first).u32(CTRL_ATTR_MCAST_GRP_ID, one.second);
            });
        }
    });
    const auto family = nl80211::read_family(message.get());
    ASSERT_TRUE(family);
    EXPECT_EQ(family->id, 0x1c);
    EXPECT_EQ(family->config, 5U);
    EXPECT_EQ(family->regulatory, 7U);
    EXPECT_EQ(family->mlme, 8U);
}

// Cut at every length, in a copy of its own, so that a sanitizer sees the octet behind it.
TEST(Readers, TakeMessagesCutShort) {
    Message message = station(NL80211_CMD_DEL_STATION);
    const std::string whole(reinterpret_cast<const char*>(message.get()), message.get()->nlmsg_len);
    for (std::size_t size = sizeof(nlmsghdr); size <= whole.size(); ++size) {
        std::vector<std::uint32_t> words((size + 3) / 4);
        std::memcpy(words.data(), whole.data(), size);
        auto* cut = reinterpret_cast<nlmsghdr*>(words.data());
        cut->nlmsg_len = static_cast<std::uint32_t>(size);
        nl80211::read_event(cut);
        nl80211::read_station(cut);
        nl80211::read_interface(cut);
        nl80211::read_radio(cut);
        nl80211::read_regulatory(cut);
        nl80211::read_family(cut);
        read_alternative_names(cut);
        read_link_event(cut);
    }
}

TEST(ReadLink, AlternativeNamesAndIndex) {
    std::vector<char> buffer(1024);
    nlmsghdr* message = mnl_nlmsg_put_header(buffer.data());
    message->nlmsg_type = RTM_NEWLINK;
    static_cast<ifinfomsg*>(mnl_nlmsg_put_extra_header(message, sizeof(ifinfomsg)))->ifi_index = 9;
    mnl_attr_put_strz(message, IFLA_IFNAME, "phy0-ap0");
    nlattr* list = mnl_attr_nest_start(message, IFLA_PROP_LIST);
    mnl_attr_put_strz(message, IFLA_ALT_IFNAME, "0ap0");
    mnl_attr_put_strz(message, IFLA_ALT_IFNAME, "lobby");
    mnl_attr_nest_end(message, list);
    EXPECT_EQ(read_alternative_names(message), (std::vector<std::string>{"0ap0", "lobby"}));
    EXPECT_EQ(read_link_event(message), 9U);
    message->nlmsg_type = RTM_NEWADDR;
    EXPECT_TRUE(read_alternative_names(message).empty());
    EXPECT_EQ(read_link_event(message), 0U);
}

}  // namespace
