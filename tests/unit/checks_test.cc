#include "checks/checks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "columns.h"

using namespace dot11;

namespace {

// Stands in for Net-SNMP's rule: what it was last asked, how often, and what it answers.
struct Transition {
    int asked = 0;
    int old_status = -1;
    int new_status = -1;
    int answer = 0;
} transition;

}  // namespace

extern "C" char check_rowstatus_transition(int old_status, int new_status);
extern "C" char check_rowstatus_transition(int old_status, int new_status) {
    ++transition.asked;
    transition.old_status = old_status;
    transition.new_status = new_status;
    return static_cast<char>(transition.answer);
}

namespace {

constexpr int integer = 2;
constexpr int octet_string = 4;

struct Names {
    const char* column;
    Check* check;
    Check* local;
};

struct IntegerColumn {
    Names names;
    std::vector<int32_t> accepted;
    std::vector<int32_t> refused;
    int error;
};

struct OctetColumn {
    Names names;
    std::vector<size_t> accepted;
    std::vector<size_t> refused;
};

#define NAMES(column) \
    { #column, check_##column, check_##column##_local }

// clang-format off
const IntegerColumn integer_columns[] = {
    {NAMES(dot11WEPKeyMappingWEPOn), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11WEPKeyMappingStatus), {1, 2, 3, 4, 5, 6}, {0, 7, -1, 33, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11CurrentChannelNumber), {0, 99}, {-1, 100, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11CurrentDwellTime), {1, 65535}, {0, 65536, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11CurrentSet), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11CurrentPattern), {0, 255}, {-1, 256, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11CurrentIndex), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11CurrentChannel), {1, 14}, {0, 15, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11CurrentCCAMode), {1, 2, 4}, {0, 3, 5, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11EDThreshold), {0, -1, INT32_MIN, INT32_MAX}, {}, 0},
    {NAMES(dot11CurrentRegDomain), {0, -1, INT32_MIN, INT32_MAX}, {}, 0},
    {NAMES(dot11MediumOccupancyLimit), {0, 1000}, {-1, 1001, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11CFPPeriod), {0, 255}, {-1, 256, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11CFPMaxDuration), {0, 65535}, {-1, 65536, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11AuthenticationResponseTimeOut), {1, INT32_MAX}, {0, -1, INT32_MIN}, 10},
    {NAMES(dot11PowerManagementMode), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11DesiredBSSType), {1, 2, 3}, {0, 4, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11BeaconPeriod), {1, 65535}, {0, 65536, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11DTIMPeriod), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11AssociationResponseTimeOut), {1, INT32_MAX}, {0, -1, INT32_MIN}, 10},
    {NAMES(dot11CurrentTxAntenna), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11CurrentRxAntenna), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11SupportedTxAntenna), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11SupportedRxAntenna), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11DiversitySelectionRx), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11CurrentTxPowerLevel), {1, 8}, {0, 9, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11GroupAddressesStatus), {1, 2, 3, 4, 5, 6}, {0, 7, -1, 33, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11AuthenticationAlgorithmsEnable), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11CCAWatchdogTimerMax), {0, -1, INT32_MIN, INT32_MAX}, {}, 0},
    {NAMES(dot11CCAWatchdogCountMax), {0, -1, INT32_MIN, INT32_MAX}, {}, 0},
    {NAMES(dot11CCAWatchdogTimerMin), {0, -1, INT32_MIN, INT32_MAX}, {}, 0},
    {NAMES(dot11CCAWatchdogCountMin), {0, -1, INT32_MIN, INT32_MAX}, {}, 0},
    {NAMES(dot11PrivacyInvoked), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11WEPDefaultKeyID), {0, 3}, {-1, 4, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11WEPKeyMappingLength), {10, 4000000, INT32_MAX}, {9, -1, INT32_MIN}, 10},
    {NAMES(dot11ExcludeUnencrypted), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11ERPBCCOptionEnabled), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11DSSSOFDMOptionEnabled), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11ShortSlotTimeOptionImplemented), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11ShortSlotTimeOptionEnabled), {1, 2}, {0, 3, -1, 33, 34, INT32_MIN, INT32_MAX}, 12},
    {NAMES(dot11RTSThreshold), {0, 2347}, {-1, 2348, INT32_MAX, INT32_MIN}, 10},
    {NAMES(dot11ShortRetryLimit), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11LongRetryLimit), {1, 255}, {0, 256, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11FragmentationThreshold), {256, 2346}, {255, 2347, INT32_MAX, -1, INT32_MIN}, 10},
    {NAMES(dot11MaxTransmitMSDULifetime), {1, INT32_MAX}, {0, -1, INT32_MIN}, 10},
    {NAMES(dot11MaxReceiveLifetime), {1, INT32_MAX}, {0, -1, INT32_MIN}, 10},
};

// The lengths that are accepted, and those that are refused with 10.
const OctetColumn octet_columns[] = {
    {NAMES(dot11WEPKeyMappingAddress), {6}, {0, 5, 7, 12}},
    {NAMES(dot11WEPKeyMappingValue), {5}, {0, 4, 6, 13}},
    {NAMES(dot11StationID), {6}, {0, 5, 7, 12}},
    {NAMES(dot11DesiredSSID), {0, 32}, {33}},
    {NAMES(dot11OperationalRateSet), {1, 126}, {0, 127}},
    {NAMES(dot11Address), {6}, {0, 5, 7, 12}},
    {NAMES(dot11WEPDefaultKeyValue), {5}, {0, 4, 6, 13}},
};
// clang-format on

struct Column {
    Names names;
    int type;
};

std::vector<Column> all_columns() {
    std::vector<Column> columns;
    for (const auto& column : integer_columns)
        columns.push_back({column.names, integer});
    for (const auto& column : octet_columns)
        columns.push_back({column.names, octet_string});
    return columns;
}

int check_integer(const Names& names, int32_t value) {
    return names.check(integer, &value, sizeof value, nullptr, 0);
}

// A null value is tested elsewhere, so that no octets still are an address.
int check_octets(const Names& names, size_t length) {
    const std::vector<uint8_t> octets(length + 1, 0xFF);
    return names.check(octet_string, octets.data(), length, nullptr, 0);
}

TEST(Checks, AreAllTried) {
    EXPECT_EQ(all_columns().size(), 53U) << "checks in src/checks/checks.cc";
}

TEST(Checks, AreTriedForEveryWritableColumn) {
    std::set<std::string> tried;
    for (const Column& column : all_columns())
        tried.insert(column.names.column);
    for (const ColumnFact& column : column_facts())
        EXPECT_TRUE(tried.contains(column.name) || !column.is_writable())
            << "tests/unit/checks_test.cc has no line for " << column.name;
}

TEST(Checks, Numbers) {
    transition = {};
    for (const auto& column : integer_columns) {
        for (const int32_t value : column.accepted) {
            EXPECT_EQ(check_integer(column.names, value), 0) << column.names.column << " " << value;
        }
        for (const int32_t value : column.refused) {
            EXPECT_EQ(check_integer(column.names, value), column.error) << column.names.column << " " << value;
        }
    }
}

TEST(Checks, Lengths) {
    for (const auto& column : octet_columns) {
        for (const size_t length : column.accepted) {
            EXPECT_EQ(check_octets(column.names, length), 0) << column.names.column << " " << length;
        }
        for (const size_t length : column.refused) {
            EXPECT_EQ(check_octets(column.names, length), 10) << column.names.column << " " << length;
        }
        const uint8_t octet = 0;
        EXPECT_EQ(column.names.check(octet_string, &octet, SIZE_MAX, nullptr, 0), 10) << column.names.column;
    }
}

TEST(Checks, NoValueComesBeforeTheType) {
    for (const Column& column : all_columns()) {
        for (const int type : {integer, octet_string, 0, 255}) {
            EXPECT_EQ(column.names.check(type, nullptr, 0, nullptr, 0), 5) << column.names.column << " " << type;
        }
    }
}

// The value would be refused with 10 or 12, but the type comes first.
TEST(Checks, TypeComesBeforeTheValue) {
    const uint8_t unacceptable[] = {0xFF, 0xFF, 0xFF, 0xFF};
    for (const Column& column : all_columns()) {
        for (int type = -1; type < 256; ++type) {
            if (type == column.type) continue;
            EXPECT_EQ(column.names.check(type, unacceptable, 4, nullptr, 0), 7) << column.names.column << " " << type;
        }
    }
}

TEST(Checks, NumbersAreReadUnaligned) {
    alignas(8) char bytes[12] = {};
    const int32_t value = 2347;
    for (size_t offset = 0; offset < 8; ++offset) {
        memcpy(bytes + offset, &value, sizeof value);
        EXPECT_EQ(check_dot11RTSThreshold(integer, bytes + offset, sizeof value, nullptr, 0), 0) << offset;
    }
}

TEST(SiteChecks, AcceptWithoutLooking) {
    for (const Column& column : all_columns()) {
        EXPECT_EQ(column.names.local(-1, nullptr, 99, nullptr, 99), 0) << column.names.column;
    }
}

Check* const row_status_checks[] = {check_dot11WEPKeyMappingStatus, check_dot11GroupAddressesStatus};

TEST(RowStatus, TheTransitionIsAskedAboutOldAndNewStatus) {
    const int32_t active = 1;
    const struct {
        const void* old_value;
        size_t old_length;
        int old_status;
    } rows[] = {
        {nullptr, 0, 0}, {nullptr, 4, 0}, {&active, 4, 1}, {&active, 8, 1}, {&active, 3, 0}, {&active, 0, 0},
    };
    for (Check* check : row_status_checks) {
        for (const auto& row : rows) {
            transition = {};
            const int32_t create_and_go = 4;
            EXPECT_EQ(check(integer, &create_and_go, 4, row.old_value, row.old_length), 0);
            EXPECT_EQ(transition.asked, 1);
            EXPECT_EQ(transition.old_status, row.old_status);
            EXPECT_EQ(transition.new_status, 4);
        }
    }
}

TEST(RowStatus, TheTransitionsErrorIsPassedOn) {
    for (Check* check : row_status_checks) {
        for (const int error : {1, 10, 12, 13, 18}) {
            transition = {.answer = error};
            const int32_t status = 6;
            EXPECT_EQ(check(integer, &status, 4, nullptr, 0), error);
        }
    }
}

TEST(RowStatus, TheTransitionIsNotAskedAboutWhatIsNoStatus) {
    for (Check* check : row_status_checks) {
        transition = {.answer = 10};
        for (const int32_t value : {0, 7, -1, INT32_MIN, INT32_MAX}) {
            EXPECT_EQ(check(integer, &value, 4, nullptr, 0), 12) << value;
        }
        const int32_t status = 1;
        EXPECT_EQ(check(octet_string, &status, 4, nullptr, 0), 7);
        EXPECT_EQ(transition.asked, 0);
    }
}

}  // namespace
