// Exported functions can be replaced: what this program defines is what the shared library calls.
#include <gtest/gtest.h>

#include <cstdint>

#include "checks/checks.h"
#include "util/convert.h"

using namespace dot11;

namespace {

struct Call {
    int type;
    const void* value;
    size_t length;
    const void* old_value;
    size_t old_length;
};

int site_calls = 0;
Call last_call = {};

}  // namespace

extern "C" {

int check_dot11RTSThreshold_local(int type, const void* value, size_t length, const void* old_value,
                                  size_t old_length) {
    ++site_calls;
    last_call = {type, value, length, old_value, old_length};
    return 99;
}

uint8_t GetHexValue(uint8_t) {
    return 7;
}

}  // extern "C"

namespace {

TEST(Replaceable, TheSiteCheckHasTheLastWord) {
    const int32_t value = 2347;
    const int32_t old_value = 1;
    EXPECT_EQ(check_dot11RTSThreshold(2, &value, 4, &old_value, 3), 99);
    EXPECT_EQ(site_calls, 1);
    EXPECT_EQ(last_call.type, 2);
    EXPECT_EQ(last_call.value, &value);
    EXPECT_EQ(last_call.length, 4U);
    EXPECT_EQ(last_call.old_value, &old_value);
    EXPECT_EQ(last_call.old_length, 3U);
}

TEST(Replaceable, TheSiteCheckIsNotAskedAboutRefusedValues) {
    site_calls = 0;
    const int32_t value = 2348;
    EXPECT_EQ(check_dot11RTSThreshold(2, &value, 4, nullptr, 0), 10);
    EXPECT_EQ(check_dot11RTSThreshold(4, &value, 4, nullptr, 0), 7);
    EXPECT_EQ(check_dot11RTSThreshold(2, nullptr, 4, nullptr, 0), 5);
    EXPECT_EQ(site_calls, 0);
}

TEST(Replaceable, ConversionsCallEachOtherByName) {
    char text[] = "12";
    EXPECT_EQ(*ConvertToHexValue(text, 2), 0x77);
}

// Here Net-SNMP's own rule answers.
TEST(RowStatus, FollowsNetSnmp) {
    const struct {
        const char* what;
        int32_t old_status;
        int32_t new_status;
        int error;
    } rows[] = {
        {"createAndGo, no row", 0, 4, 0},   {"createAndGo, active", 1, 4, 12}, {"active, no row", 0, 1, 12},
        {"notInService, active", 1, 2, 0},  {"destroy, no row", 0, 6, 0},      {"destroy, active", 1, 6, 0},
        {"createAndWait, no row", 0, 5, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(check_dot11GroupAddressesStatus(2, &row.new_status, 4, &row.old_status, 4), row.error) << row.what;
    }
    const int32_t create_and_go = 4;
    EXPECT_EQ(check_dot11GroupAddressesStatus(2, &create_and_go, 4, nullptr, 0), 0);
}

}  // namespace
