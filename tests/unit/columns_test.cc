// Every read and write accessor, on rows whose layout is written down here a second time.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "access/tables.h"
#include "columns.h"

using namespace dot11;

namespace {

// A row of any table: `size` octets that all differ from their neighbours, between two guards that no accessor may
// touch.
class RowOctets {
  public:
    explicit RowOctets(size_t size) : octets_(guard + size + guard) {
        for (size_t i = 0; i < octets_.size(); ++i)
            octets_[i] = static_cast<uint8_t>(i * 7 + 13);
        before_ = octets_;
    }

    uint8_t* at(size_t offset) { return octets_.data() + guard + offset; }
    void put(size_t offset, uint32_t value) {
        memcpy(at(offset), &value, sizeof value);
        before_ = octets_;
    }
    bool contains(const void* address) {
        return address >= octets_.data() && address < octets_.data() + octets_.size();
    }
    std::string octets(size_t offset, size_t count) { return {reinterpret_cast<char*>(at(offset)), count}; }

    bool unchanged() const { return octets_ == before_; }
    // Whether nothing but `count` octets from `offset` may have changed.
    bool unchanged_but(size_t offset, size_t count) {
        std::vector<uint8_t> expected = before_;
        memcpy(expected.data() + guard + offset, at(offset), count);
        return octets_ == expected;
    }

  private:
    static constexpr size_t guard = 64;
    std::vector<uint8_t> octets_, before_;
};

std::string answered(GetColumn* get, RowOctets& row, void** where = nullptr) {
    size_t length = 999;
    void* value = get(row.at(0), &length);
    if (where) *where = value;
    return value ? std::string(static_cast<char*>(value), length) : "(null)";
}

// Lists none that the module does not have.
const Column& column_named(const std::string& name) {
    for (const Table* table : tables)
        for (const Column& column : table->columns)
            if (column.name == name) return column;
    abort();
}

// clang-format off
#define GET(column) #column, column_named(#column).get
#define SET(column) #column, column_named(#column).set

struct IntegerColumn {
    const char* name;
    GetColumn* get;
    size_t row_size, offset;
};

const IntegerColumn copied_integers[] = {
    {GET(dot11MediumOccupancyLimit), 292, 16},
    {GET(dot11CFPollable), 292, 20},
    {GET(dot11CFPPeriod), 292, 24},
    {GET(dot11CFPMaxDuration), 292, 28},
    {GET(dot11AuthenticationResponseTimeOut), 292, 32},
    {GET(dot11PrivacyOptionImplemented), 292, 40},
    {GET(dot11DesiredBSSType), 292, 84},
    {GET(dot11BeaconPeriod), 292, 220},
    {GET(dot11DTIMPeriod), 292, 224},
    {GET(dot11AssociationResponseTimeOut), 292, 228},
    {GET(dot11DisassociateReason), 292, 232},
    {GET(dot11DeauthenticateReason), 292, 248},
    {GET(dot11AuthenticateFailStatus), 292, 264},
    {GET(dot11MultiDomainCapabilityImplemented), 292, 280},
    {GET(dot11MultiDomainCapabilityEnabled), 292, 284},
    {GET(dot11AuthenticationAlgorithm), 16, 8},
    {GET(dot11AuthenticationAlgorithmsEnable), 16, 12},
    {GET(dot11WEPKeyMappingWEPOn), 32, 16},
    {GET(dot11PrivacyInvoked), 28, 4},
    {GET(dot11WEPDefaultKeyID), 28, 8},
    {GET(dot11WEPKeyMappingLength), 28, 12},
    {GET(dot11ExcludeUnencrypted), 28, 16},
    {GET(dot11WEPICVErrorCount), 28, 20},
    {GET(dot11WEPExcludedCount), 28, 24},
    {GET(dot11RTSThreshold), 304, 16},
    {GET(dot11ShortRetryLimit), 304, 20},
    {GET(dot11LongRetryLimit), 304, 24},
    {GET(dot11FragmentationThreshold), 304, 28},
    {GET(dot11MaxTransmitMSDULifetime), 304, 32},
    {GET(dot11MaxReceiveLifetime), 304, 36},
    {GET(dot11TransmittedFragmentCount), 60, 4},
    {GET(dot11MulticastTransmittedFrameCount), 60, 8},
    {GET(dot11FailedCount), 60, 12},
    {GET(dot11RetryCount), 60, 16},
    {GET(dot11MultipleRetryCount), 60, 20},
    {GET(dot11FrameDuplicateCount), 60, 24},
    {GET(dot11RTSSuccessCount), 60, 28},
    {GET(dot11RTSFailureCount), 60, 32},
    {GET(dot11ACKFailureCount), 60, 36},
    {GET(dot11ReceivedFragmentCount), 60, 40},
    {GET(dot11MulticastReceivedFrameCount), 60, 44},
    {GET(dot11FCSErrorCount), 60, 48},
    {GET(dot11TransmittedFrameCount), 60, 52},
    {GET(dot11WEPUndecryptableCount), 60, 56},
    {GET(dot11GroupAddressesStatus), 16, 12},
    {GET(dot11PHYType), 16, 4},
    {GET(dot11CurrentRegDomain), 16, 8},
    {GET(dot11TempType), 16, 12},
    {GET(dot11CurrentChannel), 20, 4},
    {GET(dot11CurrentCCAMode), 20, 12},
    {GET(dot11EDThreshold), 20, 16},
    {GET(dot11ShortPreambleOptionImplemented), 20, 0},
    {GET(dot11PBCCOptionImplemented), 20, 4},
    {GET(dot11ChannelAgilityPresent), 20, 8},
    {GET(dot11ChannelAgilityEnabled), 20, 12},
    {GET(dot11HRCCAModeSupported), 20, 16},
    {GET(dot11ERPPBCCOptionImplemented), 24, 0},
    {GET(dot11ERPBCCOptionEnabled), 24, 4},
    {GET(dot11DSSSOFDMOptionImplemented), 24, 8},
    {GET(dot11DSSSOFDMOptionEnabled), 24, 12},
    {GET(dot11ShortSlotTimeOptionImplemented), 24, 16},
    {GET(dot11ShortSlotTimeOptionEnabled), 24, 20},
};

const IntegerColumn integers_in_place[] = {
    {GET(dot11NumberSupportedPowerLevels), 44, 4},
    {GET(dot11TxPowerLevel1), 44, 8},
    {GET(dot11TxPowerLevel2), 44, 12},
    {GET(dot11TxPowerLevel3), 44, 16},
    {GET(dot11TxPowerLevel4), 44, 20},
    {GET(dot11TxPowerLevel5), 44, 24},
    {GET(dot11TxPowerLevel6), 44, 28},
    {GET(dot11TxPowerLevel7), 44, 32},
    {GET(dot11TxPowerLevel8), 44, 36},
    {GET(dot11CurrentTxPowerLevel), 44, 40},
    {GET(dot11RegDomainsSupportValue), 12, 8},
    {GET(dot11SupportedDataRatesTxValue), 12, 8},
    {GET(dot11SupportedDataRatesRxValue), 12, 8},
};

struct OctetColumn {
    const char* name;
    GetColumn* get;
    size_t row_size, offset;
    uint32_t width;
    size_t length_offset;
};

const OctetColumn copied_octets[] = {
    {GET(dot11StationID), 292, 4, 8, 12},
    {GET(dot11DesiredSSID), 292, 48, 32, 80},
    {GET(dot11OperationalRateSet), 292, 88, 128, 216},
    {GET(dot11DisassociateStation), 292, 236, 8, 244},
    {GET(dot11DeauthenticateStation), 292, 252, 8, 260},
    {GET(dot11AuthenticateFailStation), 292, 268, 8, 276},
    {GET(dot11MACAddress), 304, 4, 8, 12},
    {GET(dot11manufacturerOUI), 796, 4, 8, 12},
    {GET(dot11manufacturerName), 796, 16, 256, 272},
    {GET(dot11manufacturerProductName), 796, 276, 256, 532},
    {GET(dot11manufacturerProductVersion), 796, 536, 256, 792},
};

const OctetColumn octets_in_place[] = {
    {GET(dot11WEPDefaultKeyValue), 76, 8, 64, 72},
};

struct FixedColumn {
    const char* name;
    GetColumn* get;
    size_t row_size, offset, count;
};

const FixedColumn fixed_octets[] = {
    {GET(dot11CountryString), 292, 288, 3},
    {GET(dot11WEPKeyMappingValue), 32, 20, 5},
    {GET(dot11Address), 16, 4, 6},
};

struct ConstantColumn {
    const char* name;
    GetColumn* get;
    std::string answer;
};

const uint32_t one = 1;
const std::string one_word(reinterpret_cast<const char*>(&one), sizeof one);

const ConstantColumn constants[] = {
    {GET(dot11CCAModeSupported), one_word},
    {GET(dot11WEPKeyMappingStatus), one_word},
    {GET(dot11ManufacturerID), "Vantorix"},
    {GET(dot11ProductID), "Quillnet AP"},
};

struct WriteColumn {
    const char* name;
    SetColumn* set;
    size_t row_size, offset, count;
};

const WriteColumn storing[] = {
    {SET(dot11WEPKeyMappingAddress), 32, 8, 6},
    {SET(dot11WEPKeyMappingWEPOn), 32, 16, 4},
    {SET(dot11WEPKeyMappingValue), 32, 20, 5},
    {SET(dot11Address), 16, 4, 6},
    {SET(dot11GroupAddressesStatus), 16, 12, 4},
    {SET(dot11ERPBCCOptionEnabled), 24, 4, 4},
    {SET(dot11DSSSOFDMOptionEnabled), 24, 12, 4},
    {SET(dot11ShortSlotTimeOptionImplemented), 24, 16, 4},
    {SET(dot11ShortSlotTimeOptionEnabled), 24, 20, 4},
};
// clang-format on

// Writable columns whose rows come from the store.
std::vector<std::string> refusing() {
    std::vector<std::string> names;
    for (const ColumnFact& column : column_facts())
        if (column.is_writable() && column.has_rows) names.push_back(column.name);
    return names;
}

template <class Columns>
void add_names(std::set<std::string>& names, const Columns& columns) {
    for (const auto& column : columns)
        names.insert(column.name);
}

// A value from the store is also seen in tests/unit/tables_test.cc and by the agents' tests: its line here may be
// missing.
TEST(Columns, AreAllTested) {
    std::set<std::string> read = {"dot11PowerManagementMode", "dot11WEPKeyMappingAddress"};
    add_names(read, copied_integers);
    add_names(read, integers_in_place);
    add_names(read, copied_octets);
    add_names(read, octets_in_place);
    add_names(read, fixed_octets);
    add_names(read, constants);
    std::set<std::string> written = {"dot11WEPKeyMappingStatus"};
    add_names(written, storing);
    for (const std::string& name : refusing())
        written.insert(name);
    for (const Table* table : tables)
        for (const Column& column : table->columns) {
            EXPECT_TRUE(read.contains(column.name) || !column.keys.empty())
                << "tests/unit/columns_test.cc reads no " << column.name;
            EXPECT_TRUE(written.contains(column.name) || !column.set)
                << "tests/unit/columns_test.cc writes no " << column.name;
        }
}

TEST(Columns, IntegersAreCopied) {
    for (const IntegerColumn& column : copied_integers) {
        SCOPED_TRACE(column.name);
        RowOctets row(column.row_size);
        void* where = nullptr;
        EXPECT_EQ(answered(column.get, row, &where), row.octets(column.offset, 4));
        EXPECT_FALSE(row.contains(where));
        EXPECT_TRUE(row.unchanged());
    }
}

TEST(Columns, IntegersInPlaceAreTheRowsOwn) {
    for (const IntegerColumn& column : integers_in_place) {
        SCOPED_TRACE(column.name);
        RowOctets row(column.row_size);
        void* where = nullptr;
        EXPECT_EQ(answered(column.get, row, &where), row.octets(column.offset, 4));
        EXPECT_EQ(where, row.at(column.offset));
        EXPECT_TRUE(row.unchanged());
    }
}

TEST(Columns, OctetsAreCopiedByTheirLength) {
    for (const OctetColumn& column : copied_octets) {
        for (const uint32_t length : {0U, 1U, column.width - 1, column.width}) {
            SCOPED_TRACE(column.name + std::string(" ") + std::to_string(length));
            RowOctets row(column.row_size);
            row.put(column.length_offset, length);
            void* where = nullptr;
            EXPECT_EQ(answered(column.get, row, &where), row.octets(column.offset, length));
            EXPECT_FALSE(row.contains(where));
            EXPECT_TRUE(row.unchanged());
        }
    }
}

TEST(Columns, TheDefaultKeyIsNotCopied) {
    for (const OctetColumn& column : octets_in_place) {
        for (const uint32_t length : {0U, 1U, 5U, 13U, column.width}) {
            RowOctets row(column.row_size);
            row.put(column.length_offset, length);
            void* where = nullptr;
            EXPECT_EQ(answered(column.get, row, &where), row.octets(column.offset, length));
            EXPECT_EQ(where, row.at(column.offset));
        }
    }
}

TEST(Columns, ALengthPastItsFieldIsClipped) {
    for (const auto& columns :
         {std::span<const OctetColumn>(copied_octets), std::span<const OctetColumn>(octets_in_place)}) {
        for (const OctetColumn& column : columns) {
            for (const uint32_t length : {column.width + 1, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
                RowOctets row(column.row_size);
                row.put(column.length_offset, length);
                EXPECT_EQ(answered(column.get, row), row.octets(column.offset, column.width)) << column.name;
            }
        }
    }
}

TEST(Columns, FixedOctetsAlwaysHaveTheirLength) {
    for (const FixedColumn& column : fixed_octets) {
        SCOPED_TRACE(column.name);
        RowOctets row(column.row_size);
        void* where = nullptr;
        EXPECT_EQ(answered(column.get, row, &where), row.octets(column.offset, column.count));
        EXPECT_FALSE(row.contains(where));
        EXPECT_TRUE(row.unchanged());
        memset(row.at(column.offset), 0, column.count);
        EXPECT_EQ(answered(column.get, row), std::string(column.count, '\0'));
    }
}

TEST(Columns, ConstantsDoNotLookAtTheRow) {
    for (const ConstantColumn& column : constants) {
        size_t length = 0;
        const void* value = column.get(nullptr, &length);
        EXPECT_EQ(std::string(static_cast<const char*>(value), length), column.answer) << column.name;
    }
}

// A copy outlives its row, and is written again by the column's own next call only.
TEST(Columns, CopiesHaveABufferOfTheirOwn) {
    std::map<void*, std::string> owner;
    const auto expect_own_buffer = [&owner](const char* name, GetColumn* get) {
        RowOctets row(800);
        void* first = nullptr;
        void* second = nullptr;
        answered(get, row, &first);
        answered(get, row, &second);
        EXPECT_EQ(first, second) << name;
        EXPECT_TRUE(owner.emplace(first, name).second) << name << " shares a buffer with " << owner[first];
    };
    for (const IntegerColumn& column : copied_integers)
        expect_own_buffer(column.name, column.get);
    for (const OctetColumn& column : copied_octets)
        expect_own_buffer(column.name, column.get);
    for (const FixedColumn& column : fixed_octets)
        expect_own_buffer(column.name, column.get);
    expect_own_buffer(GET(dot11WEPKeyMappingAddress));
    expect_own_buffer(GET(dot11PowerManagementMode));
    for (const ConstantColumn& column : constants)
        expect_own_buffer(column.name, column.get);
}

TEST(Columns, PowerManagementIsAlwaysActive) {
    for (const uint32_t stored : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        RowOctets row(292);
        row.put(44, stored);
        void* where = nullptr;
        EXPECT_EQ(answered(column_named("dot11PowerManagementMode").get, row, &where), one_word);
        EXPECT_FALSE(row.contains(where));
        EXPECT_EQ(row.octets(44, 4), one_word) << "the row becomes active itself";
        EXPECT_TRUE(row.unchanged_but(44, 4));
    }
}

TEST(Columns, AKeyMappingAddressEndsBeforeItsFirstZero) {
    const struct {
        std::string address;
        size_t length;
    } addresses[] = {
        {{"\x00\x11\x22\x33\x44\x55", 6}, 0}, {{"\x11\x00\x22\x33\x44\x55", 6}, 1},
        {{"\x11\x22\x00\x33\x44\x55", 6}, 2}, {{"\x11\x22\x33\x44\x55\x00", 6}, 5},
        {{"\x11\x22\x33\x44\x55\x66", 6}, 6},
    };
    for (const auto& [address, length] : addresses) {
        RowOctets row(32);  // the fill behind the address is not zero
        memcpy(row.at(8), address.data(), 6);
        EXPECT_EQ(answered(column_named("dot11WEPKeyMappingAddress").get, row), address.substr(0, length));
    }
}

TEST(Columns, AStationIdOfSixOctetsIsAnsweredWithSix) {
    RowOctets row(292);
    memcpy(row.at(4), "\x00\x1a\x2b\x00\x4d\x5e\xff\xff", 8);
    row.put(12, 6);
    EXPECT_EQ(answered(column_named("dot11StationID").get, row), std::string("\x00\x1a\x2b\x00\x4d\x5e", 6));
}

TEST(Columns, StoredValuesGoIntoTheirFieldOnly) {
    const std::string value = "\xA1\xA2\xA3\xA4\xA5\xA6\xA7\xA8";
    for (const WriteColumn& column : storing) {
        for (const size_t length : {size_t{0}, size_t{4}, size_t{8}, size_t{1000}}) {
            SCOPED_TRACE(column.name);
            RowOctets row(column.row_size);
            EXPECT_EQ(column.set(row.at(0), value.data(), length), 0);
            EXPECT_EQ(row.octets(column.offset, column.count), value.substr(0, column.count));
            EXPECT_TRUE(row.unchanged_but(column.offset, column.count));
        }
    }
}

TEST(Columns, EveryKeyMappingStatusBecomesActive) {
    for (const int32_t status : {1, 2, 4, 5, 6, -1}) {
        RowOctets row(32);
        EXPECT_EQ(column_named("dot11WEPKeyMappingStatus").set(row.at(0), &status, 4), 0);
        EXPECT_EQ(row.octets(28, 4), one_word);
        EXPECT_TRUE(row.unchanged_but(28, 4));
    }
}

TEST(Columns, BackedColumnsRefuseEveryWrite) {
    const int32_t value = 1;
    for (const std::string& name : refusing()) {
        SetColumn* const set = column_named(name).set;
        ASSERT_NE(set, nullptr) << name;
        RowOctets row(800);
        EXPECT_EQ(set(row.at(0), &value, sizeof value), 17) << name;
        EXPECT_EQ(set(nullptr, nullptr, 0), 17) << name;
        EXPECT_TRUE(row.unchanged()) << name;
    }
}

}  // namespace
