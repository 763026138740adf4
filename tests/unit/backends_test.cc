// What holds for every table with rows for each interface: which rows there are, whatever their columns.
#include <gtest/gtest.h>

#include <cstring>

#include "backend/phy/dsss.h"
#include "backend/phy/phy_operation.h"
#include "backend/phy/reg_domains.h"
#include "backend/phy/tx_power.h"
#include "scripted.h"

namespace {

struct Backend {
    const char* name;
    int (*entries)(void);
    uint32_t (*index_count)(void);
    int (*table_data)(void);
    int (*entry_by_index)(uint32_t position, void* row);
    uint32_t rows_per_interface;
    size_t row_size;
};

// clang-format off
const Backend backends[] = {
    {"phy_operation", GetPhyOperationsEntries, GetPhyOperationTableIndexCount, GetPhyOperationsTableData,
     GetPhyOperationsEntryByIndex, 1, 16},
    {"tx_power", GetPhyTxPowerEntries, GetPhyTxPowerTableIndexCount, GetPhyTxPowerTableData,
     GetPhyTxPowerEntryByIndex, 1, 44},
    {"dsss", GetPhyDsssEntries, GetPhyDsssTableIndexCount, GetPhyDsssTableData,
     GetPhyDsssEntryByIndex, 1, 20},
    {"reg_domains", GetRegDomainSupportedEntries, GetRegDomainsSupportedTableIndexCount, GetRegDomainSupportedTableData,
     GetRegDomainSupportedEntryByIndex, 1, 12},
};
// clang-format on

class Backends : public testing::TestWithParam<Backend> {
  protected:
    static std::string name(unsigned number) { return "w" + std::to_string(number); }

    void add_interfaces(unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            device.add_interface(name(i), 1000 + i);
    }

    // The interface index of a row. Checks that nothing but a row is copied.
    static uint32_t index_of(uint32_t position) {
        std::vector<uint8_t> copy(GetParam().row_size + 16, 0xa5);
        EXPECT_EQ(GetParam().entry_by_index(position, copy.data()), 1) << position;
        for (size_t i = GetParam().row_size; i < copy.size(); ++i)
            EXPECT_EQ(copy[i], 0xa5) << i;
        uint32_t index;
        memcpy(&index, copy.data(), sizeof index);
        return index;
    }

    ScriptedDevice device;
};

TEST_P(Backends, HasNoRowsWithoutInterfaces) {
    EXPECT_EQ(GetParam().entries(), 0);
    EXPECT_EQ(GetParam().index_count(), 0U);
    EXPECT_EQ(GetParam().table_data(), 1);
    EXPECT_EQ(device.calls, std::vector<std::string>{"grid interface type=service-set"});
}

TEST_P(Backends, HasRowsForOneToAHundredAndTwentyEightInterfaces) {
    for (const unsigned count : {1U, 2U, 128U}) {
        device.clear_store();
        add_interfaces(count);
        ASSERT_EQ(GetParam().entries(), 1) << count;
        EXPECT_EQ(GetParam().index_count(), count);
        EXPECT_EQ(GetParam().table_data(), 1);
        for (uint32_t i = 0; i < count * GetParam().rows_per_interface; ++i)
            EXPECT_EQ(index_of(i), 1000 + i / GetParam().rows_per_interface);
    }
}

TEST_P(Backends, RefusesMoreInterfaces) {
    for (const unsigned count : {129U, 130U, 300U}) {
        device.clear_store();
        add_interfaces(count);
        EXPECT_EQ(GetParam().entries(), 0) << count;
        EXPECT_EQ(GetParam().index_count(), 129U);
        EXPECT_EQ(GetParam().table_data(), 1) << "and fills no row that it has no room for";
    }
}

TEST_P(Backends, KeepsTheRowsBehindItsLast) {
    add_interfaces(2);
    ASSERT_EQ(GetParam().entries(), 1);
    ASSERT_EQ(GetParam().table_data(), 1);
    device.clear_store();
    device.add_interface("wlan9", 9);
    ASSERT_EQ(GetParam().entries(), 1);
    ASSERT_EQ(GetParam().table_data(), 1);
    EXPECT_EQ(index_of(0), 9U);
    EXPECT_EQ(index_of(GetParam().rows_per_interface), 1001U);
}

TEST_P(Backends, RefusesPositionsBehindItsArray) {
    for (const uint32_t position : {128 * GetParam().rows_per_interface, UINT32_MAX}) {
        uint8_t copy = 0xa5;
        EXPECT_EQ(GetParam().entry_by_index(position, &copy), 0) << position;
        EXPECT_EQ(copy, 0xa5);
    }
}

// Row and name stay together when an interface goes away after it was enumerated.
TEST_P(Backends, AnInterfaceThatVanishesHasTheIndexZero) {
    add_interfaces(3);
    ASSERT_EQ(GetParam().entries(), 1);
    device.interfaces.erase(name(1));
    ASSERT_EQ(GetParam().table_data(), 1);
    EXPECT_EQ(index_of(0), 1000U);
    EXPECT_EQ(index_of(GetParam().rows_per_interface), 0U);
    EXPECT_EQ(index_of(2 * GetParam().rows_per_interface), 1002U);
}

TEST_P(Backends, EnumeratesWithoutMemoryForTheFilterToo) {
    for (int failing = 1; failing <= 2; ++failing) {
        device.clear_store();
        add_interfaces(2);
        device.fail_allocation(failing);
        EXPECT_EQ(GetParam().entries(), 1) << failing;
        EXPECT_TRUE(device.allocation_failed());
        EXPECT_EQ(GetParam().index_count(), 2U);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Backends, testing::ValuesIn(backends),
                         [](const auto& backend) { return backend.param.name; });

}  // namespace
