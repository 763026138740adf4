// The counters' rows, on a scripted device.
#include "backend/mac/counters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "rows.h"
#include "scripted.h"

namespace {

using std::to_string;
using testing::ElementsAreArray;

// Key and field, in the order of the columns.
const std::pair<const char*, const char*> columns[] = {
    {"transmitted-fragment-count", "dot11TransmittedFragmentCount"},
    {"multicast-transmitted-frame-count", "dot11MulticastTransmittedFrameCount"},
    {"failed-count", "dot11FailedCount"},
    {"retry-count", "dot11RetryCount"},
    {"multiple-retry-count", "dot11MultipleRetryCount"},
    {"frame-duplicate-count", "dot11FrameDuplicateCount"},
    {"rts-success-count", "dot11RTSSuccessCount"},
    {"rts-failure-count", "dot11RTSFailureCount"},
    {"ack-failure-count", "dot11ACKFailureCount"},
    {"received-fragment-count", "dot11ReceivedFragmentCount"},
    {"multicast-received-frame-count", "dot11MulticastReceivedFrameCount"},
    {"fcs-error-count", "dot11FCSErrorCount"},
    {"transmitted-frame-count", "dot11TransmittedFrameCount"},
    {"wep-undecryptable-count", "dot11WEPUndecryptableCount"},
};

Fields shown(const CountersRow& row) {
    return {
        {"ifIndex", to_string(row.ifIndex)},
        {"dot11TransmittedFragmentCount", to_string(row.dot11TransmittedFragmentCount)},
        {"dot11MulticastTransmittedFrameCount", to_string(row.dot11MulticastTransmittedFrameCount)},
        {"dot11FailedCount", to_string(row.dot11FailedCount)},
        {"dot11RetryCount", to_string(row.dot11RetryCount)},
        {"dot11MultipleRetryCount", to_string(row.dot11MultipleRetryCount)},
        {"dot11FrameDuplicateCount", to_string(row.dot11FrameDuplicateCount)},
        {"dot11RTSSuccessCount", to_string(row.dot11RTSSuccessCount)},
        {"dot11RTSFailureCount", to_string(row.dot11RTSFailureCount)},
        {"dot11ACKFailureCount", to_string(row.dot11ACKFailureCount)},
        {"dot11ReceivedFragmentCount", to_string(row.dot11ReceivedFragmentCount)},
        {"dot11MulticastReceivedFrameCount", to_string(row.dot11MulticastReceivedFrameCount)},
        {"dot11FCSErrorCount", to_string(row.dot11FCSErrorCount)},
        {"dot11TransmittedFrameCount", to_string(row.dot11TransmittedFrameCount)},
        {"dot11WEPUndecryptableCount", to_string(row.dot11WEPUndecryptableCount)},
    };
}

const std::vector<std::string> reads = {
    "get interface wlan0 transmitted-fragment-count",
    "get interface wlan0 multicast-transmitted-frame-count",
    "get interface wlan0 failed-count",
    "get interface wlan0 multiple-retry-count",
    "get interface wlan0 retry-count",
    "get interface wlan0 frame-duplicate-count",
    "get interface wlan0 rts-success-count",
    "get interface wlan0 rts-failure-count",
    "get interface wlan0 ack-failure-count",
    "get interface wlan0 multicast-received-frame-count",
    "get interface wlan0 fcs-error-count",
    "get interface wlan0 received-fragment-count",
    "get interface wlan0 transmitted-frame-count",
    "get interface wlan0 wep-undecryptable-count",
    "get interface wlan0 transmitted-fragment-count",
};

class Counters : public testing::Test {
  protected:
    Counters() { device.add_interface("wlan0", 3); }

    Fields filled() {
        EXPECT_EQ(GetCountersEntries(), 1);
        EXPECT_EQ(GetCountersTableData(), 1);
        EXPECT_TRUE(all_released(cnt_info));
        return shown(cinfo[0]);
    }

    // The n-th column's key to n + 1.
    void set_all() {
        for (size_t i = 0; i < std::size(columns); ++i)
            device.set("interface", "wlan0", columns[i].first, to_string(i + 1));
    }

    Fields zeroes() {
        Fields fields = {{"ifIndex", "3"}};
        for (const auto& [key, field] : columns)
            fields[field] = "0";
        return fields;
    }

    ScriptedDevice device;
};

TEST_F(Counters, ReadTheKeysInOrderAndTheFirstTwice) {
    filled();
    std::vector<std::string> expected = {"grid interface type=service-set"};
    expected.insert(expected.end(), reads.begin(), reads.end());
    EXPECT_THAT(device.calls, ElementsAreArray(expected));
}

TEST_F(Counters, AreZeroForMissingKeys) {
    memset(&cinfo[0], 0xee, sizeof cinfo[0]);
    EXPECT_EQ(filled(), zeroes());
}

TEST_F(Counters, LandInTheirOwnFieldsUntilTheyVanish) {
    set_all();
    Fields expected = {{"ifIndex", "3"}};
    for (size_t i = 0; i < std::size(columns); ++i)
        expected[columns[i].second] = to_string(i + 1);
    EXPECT_EQ(filled(), expected);
    device.clear_store();
    device.add_interface("wlan0", 3);
    EXPECT_EQ(filled(), zeroes());
}

TEST_F(Counters, AreNeverNegative) {
    std::vector<NumberKey> keys;
    for (const auto& [key, field] : columns)
        keys.push_back({"interface", "wlan0", key, field, "0"});
    expect_numbers(device, keys, false, [this] { return filled(); });
}

// The first two allocations are the enumeration's, the others the reads' in their order. Reading the first counter
// again makes up for a failure of its first read.
TEST_F(Counters, LoseOneFieldWithoutMemoryForIt) {
    set_all();
    const Fields whole = filled();
    for (size_t n = 1; n <= 2 + reads.size(); ++n) {
        device.fail_allocation(static_cast<int>(n));
        Fields lost;
        for (const auto& [key, field] : columns)
            if (n > 3 && reads[n - 3] == std::string("get interface wlan0 ") + key) lost[field] = "0";
        EXPECT_EQ(differences(whole, filled()), lost) << "allocation " << n;
        EXPECT_EQ(lost.size(), n > 3 ? 1U : 0U);
        EXPECT_TRUE(device.allocation_failed());
    }
    device.fail_allocation(static_cast<int>(3 + reads.size()));
    EXPECT_EQ(filled(), whole);
    EXPECT_FALSE(device.allocation_failed());
}

}  // namespace
