// The counters' rows, on a scripted device.
#include "backend/mac/counters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "row_facts.h"
#include "rows.h"
#include "scripted.h"

using namespace dot11;

namespace {

using std::to_string;
using testing::ElementsAreArray;

struct Column {
    const char* key;
    int32_t CountersRow::*field;
    const char* name;
};

// clang-format off
const Column columns[] = {
    {"transmitted-fragment-count", &CountersRow::dot11TransmittedFragmentCount, "dot11TransmittedFragmentCount"},
    {"multicast-transmitted-frame-count", &CountersRow::dot11MulticastTransmittedFrameCount, "dot11MulticastTransmittedFrameCount"},
    {"failed-count", &CountersRow::dot11FailedCount, "dot11FailedCount"},
    {"retry-count", &CountersRow::dot11RetryCount, "dot11RetryCount"},
    {"multiple-retry-count", &CountersRow::dot11MultipleRetryCount, "dot11MultipleRetryCount"},
    {"frame-duplicate-count", &CountersRow::dot11FrameDuplicateCount, "dot11FrameDuplicateCount"},
    {"rts-success-count", &CountersRow::dot11RTSSuccessCount, "dot11RTSSuccessCount"},
    {"rts-failure-count", &CountersRow::dot11RTSFailureCount, "dot11RTSFailureCount"},
    {"ack-failure-count", &CountersRow::dot11ACKFailureCount, "dot11ACKFailureCount"},
    {"received-fragment-count", &CountersRow::dot11ReceivedFragmentCount, "dot11ReceivedFragmentCount"},
    {"multicast-received-frame-count", &CountersRow::dot11MulticastReceivedFrameCount, "dot11MulticastReceivedFrameCount"},
    {"fcs-error-count", &CountersRow::dot11FCSErrorCount, "dot11FCSErrorCount"},
    {"transmitted-frame-count", &CountersRow::dot11TransmittedFrameCount, "dot11TransmittedFrameCount"},
    {"wep-undecryptable-count", &CountersRow::dot11WEPUndecryptableCount, "dot11WEPUndecryptableCount"},
};
// clang-format on

Fields shown(const CountersRow& row) {
    Fields fields = {{"ifIndex", to_string(row.ifIndex)}};
    for (const Column& column : columns)
        fields[column.name] = to_string(row.*column.field);
    return fields;
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

    static int fill() {
        EXPECT_EQ(GetCountersEntries(), 1);
        const int result = GetCountersTableData();
        EXPECT_TRUE(all_released(cnt_info));
        return result;
    }

    static Fields filled() {
        EXPECT_EQ(fill(), 1);
        return shown(cinfo[0]);
    }

    // The n-th column's key to n + 1.
    void set_all() {
        for (size_t i = 0; i < std::size(columns); ++i)
            device.set("interface", "wlan0", columns[i].key, to_string(i + 1));
    }

    Fields zeroes() {
        Fields fields = {{"ifIndex", "3"}};
        for (const Column& column : columns)
            fields[column.name] = "0";
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
        expected[columns[i].name] = to_string(i + 1);
    EXPECT_EQ(filled(), expected);
    device.clear_store();
    device.add_interface("wlan0", 3);
    EXPECT_EQ(filled(), zeroes());
}

TEST_F(Counters, AreNeverNegative) {
    std::vector<NumberKey<CountersRow>> keys;
    for (const Column& column : columns)
        keys.push_back({"interface", column.key, column.field, 0, zero_when_negative});
    expect_numbers<CountersRow>(device, keys, []() -> const CountersRow& {
        filled();
        return cinfo[0];
    });
}

// The first two allocations are the enumeration's, the others the reads' in their order. The first counter's second
// read makes up for its first.
TEST_F(Counters, LoseOneFieldWithoutMemoryForIt) {
    set_all();
    const Losses losses = {
        Fields{},
        Fields{},
        Fields{},
        Fields{{"dot11MulticastTransmittedFrameCount", "0"}},
        Fields{{"dot11FailedCount", "0"}},
        Fields{{"dot11MultipleRetryCount", "0"}},
        Fields{{"dot11RetryCount", "0"}},
        Fields{{"dot11FrameDuplicateCount", "0"}},
        Fields{{"dot11RTSSuccessCount", "0"}},
        Fields{{"dot11RTSFailureCount", "0"}},
        Fields{{"dot11ACKFailureCount", "0"}},
        Fields{{"dot11MulticastReceivedFrameCount", "0"}},
        Fields{{"dot11FCSErrorCount", "0"}},
        Fields{{"dot11ReceivedFragmentCount", "0"}},
        Fields{{"dot11TransmittedFrameCount", "0"}},
        Fields{{"dot11WEPUndecryptableCount", "0"}},
        Fields{{"dot11TransmittedFragmentCount", "0"}},
    };
    expect_losses(device, losses, fill, [] { return shown(cinfo[0]); });
}

}  // namespace
