// The MAC operation's rows, on a scripted device.
#include "backend/mac/operation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "row_facts.h"
#include "rows.h"
#include "scripted.h"

using namespace dot11;

namespace {

using std::to_string;
using testing::ElementsAre;

Fields shown(const OperationRow& row) {
    return {
        {"ifIndex", to_string(row.ifIndex)},
        {"dot11MACAddress", hex(row.dot11MACAddress, 6)},
        {"dot11MACAddressLen", to_string(row.dot11MACAddressLen)},
        {"dot11RTSThreshold", to_string(row.dot11RTSThreshold)},
        {"dot11ShortRetryLimit", to_string(row.dot11ShortRetryLimit)},
        {"dot11LongRetryLimit", to_string(row.dot11LongRetryLimit)},
        {"dot11FragmentationThreshold", to_string(row.dot11FragmentationThreshold)},
        {"dot11MaxTransmitMSDULifetime", to_string(row.dot11MaxTransmitMSDULifetime)},
        {"dot11MaxReceiveLifetime", to_string(row.dot11MaxReceiveLifetime)},
        {"dot11ManufacturerID", row.dot11ManufacturerID},
        {"dot11ManufacturerIDLen", to_string(row.dot11ManufacturerIDLen)},
        {"dot11ProductID", row.dot11ProductID},
        {"dot11ProductIDLen", to_string(row.dot11ProductIDLen)},
    };
}

// The first load of an interface of which the store knows nothing.
const Fields defaults = {
    {"ifIndex", "3"},
    {"dot11MACAddress", "00 00 00 00 00 00"},
    {"dot11MACAddressLen", "6"},
    {"dot11RTSThreshold", "2346"},
    {"dot11ShortRetryLimit", "7"},
    {"dot11LongRetryLimit", "4"},
    {"dot11FragmentationThreshold", "0"},
    {"dot11MaxTransmitMSDULifetime", "512"},
    {"dot11MaxReceiveLifetime", "512"},
    {"dot11ManufacturerID", ""},
    {"dot11ManufacturerIDLen", "1"},
    {"dot11ProductID", ""},
    {"dot11ProductIDLen", "1"},
};

struct Stored {
    const char *table, *object, *key, *value;
};

const Stored everything[] = {
    {"interface", "wlan0", "mac", "00:11:22:33:44:55"},
    {"interface", "wlan0", "bss", "b0"},
    {"bss", "b0", "radio", "r0"},
    {"radio", "r0", "rts-threshold", "3000"},
    {"interface", "wlan0", "dot11-short-retry-limit", "5"},
    {"interface", "wlan0", "dot11-long-retry-limit", "3"},
    {"radio", "r0", "fragmentation-threshold", "1500"},
    {"interface", "wlan0", "dot11-max-transmit-msdu-lifetime", "1024"},
    {"interface", "wlan0", "dot11-max-receive-lifetime", "2048"},
    {"radio", "r0", "manufacturer-id", "Acme"},
    {"radio", "r0", "manufacturer-product-name", "AP-24"},
};

const Fields everything_shown = {
    {"dot11MACAddress", "00 11 22 33 44 55"},
    {"dot11RTSThreshold", "3000"},
    {"dot11ShortRetryLimit", "5"},
    {"dot11LongRetryLimit", "3"},
    {"dot11FragmentationThreshold", "1500"},
    {"dot11MaxTransmitMSDULifetime", "1024"},
    {"dot11MaxReceiveLifetime", "2048"},
    {"dot11ManufacturerID", "Acme"},
    {"dot11ManufacturerIDLen", "4"},
    {"dot11ProductID", "AP-24"},
    {"dot11ProductIDLen", "5"},
};

class Operation : public testing::Test {
  protected:
    Operation() {
        memset(&row(), 0, sizeof row());
        device.add_interface("wlan0", 3);
    }

    static OperationRow& row() { return opinfo[0]; }

    void store_everything() {
        for (const Stored& stored : everything)
            device.set(stored.table, stored.object, stored.key, stored.value);
    }

    void link_radio() {
        device.set("interface", "wlan0", "bss", "b0");
        device.set("bss", "b0", "radio", "r0");
    }

    Fields filled() {
        EXPECT_EQ(GetOperationsEntries(), 1);
        EXPECT_EQ(GetOperationsTableData(), 1);
        EXPECT_TRUE(all_released(oper_info));
        return shown(row());
    }

    ScriptedDevice device;
};

TEST_F(Operation, ReadsTheKeysInOrder) {
    link_radio();
    filled();
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",                       //
                                          "get interface wlan0 mac",                               //
                                          "get interface wlan0 bss",                               //
                                          "get bss b0 radio",                                      //
                                          "get radio r0 rts-threshold",                            //
                                          "get interface wlan0 dot11-short-retry-limit",           //
                                          "get interface wlan0 dot11-long-retry-limit",            //
                                          "get interface wlan0 bss",                               //
                                          "get bss b0 radio",                                      //
                                          "get radio r0 fragmentation-threshold",                  //
                                          "get interface wlan0 dot11-max-transmit-msdu-lifetime",  //
                                          "get interface wlan0 dot11-max-receive-lifetime",        //
                                          "get interface wlan0 bss",                               //
                                          "get bss b0 radio",                                      //
                                          "get radio r0 manufacturer-id",                          //
                                          "get bss b0 radio",                                      //
                                          "get radio r0 manufacturer-product-name"));
}

// The answer for "bss" outlives those of the links behind it.
TEST_F(Operation, HandsBackEachAnswerWhenItHasReadTheValue) {
    store_everything();
    device.shows_releases = true;
    filled();
    device.calls.resize(10);
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set",  //
                                          "release interface",                //
                                          "get interface wlan0 mac",          //
                                          "release interface wlan0 mac",      //
                                          "get interface wlan0 bss",          //
                                          "get bss b0 radio",                 //
                                          "release bss b0 radio",             //
                                          "get radio r0 rts-threshold",       //
                                          "release radio r0 rts-threshold",   //
                                          "release interface wlan0 bss"));
}

TEST_F(Operation, HasADefaultForEveryMissingKey) {
    EXPECT_EQ(filled(), defaults);
}

TEST_F(Operation, ServesEveryKey) {
    store_everything();
    EXPECT_EQ(differences(defaults, filled()), everything_shown);
}

// What has vanished goes, but for the address's tail and the fragmentation threshold.
TEST_F(Operation, ForgetsWhatHasVanished) {
    store_everything();
    device.set("interface", "wlan0", "mac", "a1:11:22:33:44:55");
    filled();
    device.clear_store();
    device.add_interface("wlan0", 3);
    EXPECT_EQ(differences(defaults, filled()),
              (Fields{{"dot11MACAddress", "00 11 22 33 44 55"}, {"dot11FragmentationThreshold", "1500"}}));
}

TEST_F(Operation, HasNoNegativeNumbers) {
    using Row = OperationRow;
    store_everything();
    // clang-format off
    expect_numbers<Row>(
        device,
        {
            {"radio", "rts-threshold", &Row::dot11RTSThreshold, 2347, zero_when_negative, "r0"},
            {"interface", "dot11-short-retry-limit", &Row::dot11ShortRetryLimit, 7, zero_when_negative},
            {"interface", "dot11-long-retry-limit", &Row::dot11LongRetryLimit, 4, zero_when_negative},
            {"radio", "fragmentation-threshold", &Row::dot11FragmentationThreshold, 77, zero_when_negative, "r0"},
            {"interface", "dot11-max-transmit-msdu-lifetime", &Row::dot11MaxTransmitMSDULifetime, 512, zero_when_negative},
            {"interface", "dot11-max-receive-lifetime", &Row::dot11MaxReceiveLifetime, 512, zero_when_negative},
        },
        [this]() -> const Row& {
            row().dot11FragmentationThreshold = 77;  // kept when the key is absent
            filled();
            return row();
        });
    // clang-format on
}

// The thresholds that a row shows after it had 111 and 222. A missing fragmentation threshold puts its default into the
// RTS threshold; without a BSS the RTS threshold does not take its own.
struct Thresholds {
    const char *bss, *radio, *rts, *fragmentation;  // values; null: absent
    int32_t rts_shown, fragmentation_shown;
};

const Thresholds thresholds[] = {
    {"b0", "r0", "3000", "1500", 3000, 1500},   {"b0", "r0", nullptr, "1500", 2347, 1500},
    {"b0", "r0", "3000", nullptr, 2346, 222},   {"b0", "r0", nullptr, nullptr, 2346, 222},
    {"b0", nullptr, "3000", "1500", 2346, 222}, {"b0", "r9", "3000", "1500", 2346, 222},
    {"b0", "", "3000", "1500", 2346, 222},      {"b9", "r0", "3000", "1500", 2346, 222},
    {nullptr, "r0", "3000", "1500", 2346, 222}, {"", "r0", "3000", "1500", 2346, 222},
};

TEST_F(Operation, PutsTheMissingFragmentationThresholdIntoTheRTSThreshold) {
    for (const Thresholds& fact : thresholds) {
        const Stored values[] = {
            {"interface", "wlan0", "bss", fact.bss},
            {"bss", "b0", "radio", fact.radio},
            {"radio", "r0", "rts-threshold", fact.rts},
            {"radio", "r0", "fragmentation-threshold", fact.fragmentation},
        };
        std::string shown_values;
        for (const auto& [table, object, key, value] : values) {
            if (value)
                device.set(table, object, key, value);
            else
                device.unset(table, object, key);
            shown_values += std::string(" ") + (value ? value : "-");
        }
        row().dot11RTSThreshold = 111;
        row().dot11FragmentationThreshold = 222;
        filled();
        EXPECT_EQ(row().dot11RTSThreshold, fact.rts_shown) << shown_values;
        EXPECT_EQ(row().dot11FragmentationThreshold, fact.fragmentation_shown) << shown_values;
    }
}

// The BSS is there when the fragmentation threshold is asked for, and was not for the RTS threshold, whose read fails.
TEST_F(Operation, KeepsTheRTSThresholdWithoutABSS) {
    store_everything();
    row().dot11RTSThreshold = 111;
    device.fail_allocation(5);
    EXPECT_EQ(filled().at("dot11RTSThreshold"), "111");
    EXPECT_TRUE(device.allocation_failed());
}

// A name that was found once is not found again through an answer with another tag.
TEST_F(Operation, FindsNoNameThatHasBeenUsed) {
    store_everything();
    filled();
    EXPECT_EQ(oper_info.bss.length, 2U);
    EXPECT_EQ(oper_info.radio.length, 2U);
    device.answer("interface", "wlan0", "bss", {{"other", "b0"}, {"bss", "b0"}});
    row().dot11RTSThreshold = 111;
    const Fields fields = filled();
    EXPECT_EQ(fields.at("dot11RTSThreshold"), "2346");
    EXPECT_EQ(fields.at("dot11ManufacturerIDLen"), "1");
    EXPECT_EQ(oper_info.bss.length, 2U);
    EXPECT_EQ(device.calls_of("get bss").size(), 4U);

    device.set("interface", "wlan0", "bss", "b0");
    device.answer("bss", "b0", "radio", {{std::nullopt, "r0"}});
    EXPECT_EQ(filled().at("dot11RTSThreshold"), "2346");
    EXPECT_EQ(oper_info.radio.length, 2U);
    EXPECT_EQ(device.calls_of("get radio").size(), 4U);
}

TEST_F(Operation, LooksAtTheFirstNodeOnly) {
    for (const Stored& stored : everything)
        device.answer(stored.table, stored.object, stored.key, {{"other", "7"}, {stored.key, stored.value}});
    EXPECT_EQ(filled(), defaults);
}

TEST_F(Operation, ClipsTheIdentifiers) {
    link_radio();
    for (const size_t length : {1U, 126U, 127U, 128U, 129U, 4096U}) {
        device.set("radio", "r0", "manufacturer-id", std::string(length, '\xfe'));
        device.set("radio", "r0", "manufacturer-product-name", std::string(length, 'p'));
        const size_t kept = length < 127 ? length : 127;
        const Fields fields = filled();
        EXPECT_EQ(fields.at("dot11ManufacturerID"), std::string(kept, '\xfe'));
        EXPECT_EQ(fields.at("dot11ManufacturerIDLen"), to_string(kept));
        EXPECT_EQ(fields.at("dot11ProductID"), std::string(kept, 'p'));
        EXPECT_EQ(fields.at("dot11ProductIDLen"), to_string(kept));
    }
}

TEST_F(Operation, ConvertsTheAddress) {
    const std::pair<const char*, const char*> facts[] = {
        {"00:11:22:33:44:55", "00 11 22 33 44 55"},
        {"aBcDeF012345", "ab cd ef 01 23 45"},
        {"1:2", "12 00 00 00 00 00"},
        {"00:11:22:33:44:55:66", "00 11 22 33 44 55"},
        {":::::::::::::::::::", "00 00 00 00 00 00"},
    };
    for (const auto& [text, octets] : facts) {
        device.set("interface", "wlan0", "mac", text);
        EXPECT_EQ(filled().at("dot11MACAddress"), octets) << text;
    }
    device.set("interface", "wlan0", "mac", std::string(5000, '1'));
    EXPECT_EQ(filled().at("dot11MACAddress"), "11 11 11 11 11 11");
}

// The row whose address fails has its index and nothing more; the rows before it are whole, those behind it untouched.
TEST_F(Operation, EndsTheFillWithoutMemoryForAnAddress) {
    device.add_interface("wlan1", 5);
    for (const char* interface : {"wlan0", "wlan1"})
        device.set("interface", interface, "mac", "00:11:22:33:44:55");
    const struct {
        int failing;  // a row takes two allocations: the text and the working buffer
        uint32_t first_index, second_index;
        int32_t first_limit, second_limit;
        std::string last_call;
    } facts[] = {
        {2, 3, 0, 0, 0, "get interface wlan0 mac"},
        {4, 3, 5, 7, 0, "get interface wlan1 mac"},
    };
    for (const auto& fact : facts) {
        memset(opinfo, 0, 2 * sizeof row());
        ASSERT_EQ(GetOperationsEntries(), 1);
        device.fail_allocation(fact.failing);
        EXPECT_EQ(GetOperationsTableData(), -1);
        EXPECT_EQ(opinfo[0].ifIndex, fact.first_index) << fact.failing;
        EXPECT_EQ(opinfo[1].ifIndex, fact.second_index) << fact.failing;
        EXPECT_EQ(opinfo[0].dot11ShortRetryLimit, fact.first_limit) << fact.failing;
        EXPECT_EQ(opinfo[1].dot11ShortRetryLimit, fact.second_limit) << fact.failing;
        EXPECT_EQ(device.calls.back(), fact.last_call);
    }
}

// For an interface with every key. The first two are the enumeration's.
const Losses losses = {
    Fields{},
    Fields{},
    Fields{{"dot11MACAddress", "00 00 00 00 00 00"}},
    std::nullopt,
    Fields{{"dot11RTSThreshold", "0"}},  // no BSS
    Fields{{"dot11RTSThreshold", "2347"}},
    Fields{{"dot11RTSThreshold", "2347"}},
    Fields{{"dot11ShortRetryLimit", "7"}},
    Fields{{"dot11LongRetryLimit", "4"}},
    Fields{{"dot11RTSThreshold", "2346"}, {"dot11FragmentationThreshold", "0"}},
    Fields{{"dot11RTSThreshold", "2346"}, {"dot11FragmentationThreshold", "0"}},
    Fields{{"dot11RTSThreshold", "2346"}, {"dot11FragmentationThreshold", "0"}},
    Fields{{"dot11MaxTransmitMSDULifetime", "512"}},
    Fields{{"dot11MaxReceiveLifetime", "512"}},
    Fields{{"dot11ManufacturerID", ""}, {"dot11ManufacturerIDLen", "1"}},
    Fields{{"dot11ManufacturerID", ""}, {"dot11ManufacturerIDLen", "1"}},
    Fields{{"dot11ManufacturerID", ""}, {"dot11ManufacturerIDLen", "1"}},
    Fields{{"dot11ProductID", ""}, {"dot11ProductIDLen", "1"}},
    Fields{{"dot11ProductID", ""}, {"dot11ProductIDLen", "1"}},
    Fields{{"dot11ProductID", ""}, {"dot11ProductIDLen", "1"}},
};

TEST_F(Operation, LosesOneFieldWithoutMemoryForIt) {
    store_everything();
    const auto fill_anew = [] {
        memset(&row(), 0, sizeof row());
        EXPECT_EQ(GetOperationsEntries(), 1);
        const int result = GetOperationsTableData();
        EXPECT_TRUE(all_released(oper_info));
        return result;
    };
    expect_losses(device, losses, fill_anew, [] { return shown(row()); });
}

}  // namespace
