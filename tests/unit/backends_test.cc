// What all tables with rows for each interface have in common: which rows there are, whatever their columns.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <set>
#include <sstream>

#include "backend/mac/counters.h"
#include "backend/mac/operation.h"
#include "backend/mac/resource_info.h"
#include "backend/phy/dsss.h"
#include "backend/phy/phy_operation.h"
#include "backend/phy/reg_domains.h"
#include "backend/phy/tx_power.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/station_config.h"
#include "backend/smt/wep_default_keys.h"
#include "scripted.h"

using namespace dot11;

namespace {

using Keys = std::vector<std::string>;

struct Backend {
    const char* name;
    int (*entries)(void);
    uint32_t (*index_count)(void);
    int (*table_data)(void);
    int (*entry_by_index)(uint32_t position, void* row);
    uint32_t rows_per_interface;
    size_t row_size;
    const void* scratch;
    Keys scratch_keys;  // of the scratch record's pairs, in their order, which other programs see; "": of none
};
void PrintTo(const Backend& backend, std::ostream* out) {
    *out << backend.name;
}

// clang-format off
const Backend backends[] = {
    {"station_config", GetStationConfigEntries, GetStationConfigTableIndexCount, GetStationConfigTableData,
     GetStationConfigEntryByIndex, 1, sizeof(StationConfigRow),
     &sta_info, {}},
    {"authentication_algorithms", GetAuthAlgorithmEntries, GetAuthenticationAlgorithmTableIndexCount, GetAuthAlgorithmTableData,
     GetAuthAlgorithmEntryByIndex, 2, sizeof(AuthenticationAlgorithmsRow),
     &auth_info, {"shared-key-authentication", "bss"}},
    {"privacy", GetPrivacyEntries, GetPrivacyTableIndexCount, GetPrivacyTableData,
     GetPrivacyEntryByIndex, 1, sizeof(PrivacyRow),
     &priv_info, {"dot11-privacy-invoked", "wep-default-key", "wep-key-mapping-length"}},
    {"wep_default_keys", GetDefaultWEPKeysEntries, GetWEPDefaultKeysTableIndexCount, GetDefaultWEPKeysTableData,
     GetDefaultWEPKeysEntryByIndex, 4, sizeof(WEPDefaultKeysRow),
     &wep_info, {"wep-key-4"}},
    {"operation", GetOperationsEntries, GetOperationTableIndexCount, GetOperationsTableData,
     GetOperationsEntryByIndex, 1, sizeof(OperationRow),
     &oper_info, {"mac", "rts-threshold", "dot11-short-retry-limit", "dot11-long-retry-limit", "fragmentation-threshold",
      "dot11-max-transmit-msdu-lifetime", "dot11-max-receive-lifetime", "manufacturer-id", "manufacturer-product-name",
      "bss", "radio"}},
    {"counters", GetCountersEntries, GetCountersTableIndexCount, GetCountersTableData,
     GetCountersEntryByIndex, 1, sizeof(CountersRow),
     &cnt_info, {"transmitted-fragment-count", "multicast-transmitted-frame-count", "failed-count", "retry-count",
      "multiple-retry-count", "frame-duplicate-count", "rts-success-count", "rts-failure-count", "ack-failure-count",
      "received-fragment-count", "multicast-received-frame-count", "fcs-error-count", "transmitted-frame-count",
      "wep-undecryptable-count"}},
    {"resource_info", GetResourceInfoEntries, GetResourceInfoTableIndexCount, GetResourceInfoTableData,
     GetResourceInfoEntryByIndex, 1, sizeof(ResourceInfoRow),
     &res_info, {"radio", "bss", "manufacturer-oui", "manufacturer-name", "manufacturer-product-name",
      "manufacturer-product-version"}},
    {"phy_operation", GetPhyOperationsEntries, GetPhyOperationTableIndexCount, GetPhyOperationsTableData,
     GetPhyOperationsEntryByIndex, 1, sizeof(PhyOperationRow),
     &phy_oper_info, {"dot11-phy-type", "dot11-current-reg-domain", "dot11-temp-type"}},
    {"tx_power", GetPhyTxPowerEntries, GetPhyTxPowerTableIndexCount, GetPhyTxPowerTableData,
     GetPhyTxPowerEntryByIndex, 1, sizeof(TxPowerRow),
     &phy_pow_info, {"num_supported_pow_level", "tx-power", "tx-power", "tx-power", "tx-power", "tx-power", "tx-power", "tx-power",
      "tx-power", "curr_tx_power_level"}},
    {"dsss", GetPhyDsssEntries, GetPhyDsssTableIndexCount, GetPhyDsssTableData,
     GetPhyDsssEntryByIndex, 1, sizeof(DsssRow),
     &phy_dsss_info, {"channel", "", "", ""}},
    {"reg_domains", GetRegDomainSupportedEntries, GetRegDomainsSupportedTableIndexCount, GetRegDomainSupportedTableData,
     GetRegDomainSupportedEntryByIndex, 1, sizeof(RegDomainsRow),
     &reg_info, {"dot11-current-reg-domain"}},
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

    static std::vector<uint8_t> row(uint32_t position) {
        std::vector<uint8_t> copy(GetParam().row_size);
        EXPECT_EQ(GetParam().entry_by_index(position, copy.data()), 1) << position;
        return copy;
    }

    // Fills the rows until each key that they ask for has these nodes: names found on the way lead to further keys.
    void answer_every_key(const std::function<std::vector<ScriptedDevice::Pair>(std::string)>& nodes) {
        std::set<std::string> answered;
        size_t known = 0;
        do {
            known = answered.size();
            ASSERT_EQ(GetParam().entries(), 1);
            ASSERT_EQ(GetParam().table_data(), 1);
            for (const std::string& call : device.calls_of("get")) {
                if (!answered.insert(call).second) continue;
                std::istringstream words(call);
                std::string table, object, key;
                words >> table >> object >> key;
                device.answer(table, object == "-" ? "" : object, key, nodes(key));
            }
        } while (answered.size() > known);
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
    for (const unsigned count : {1U, 2U, 32U, 33U, 64U, 65U, 127U, 128U}) {
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
        EXPECT_EQ(GetParam().table_data(), 1);
        for (const std::string& call : device.calls)
            EXPECT_EQ(call.find("w128"), std::string::npos) << "there is no room for its row";
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
        EXPECT_EQ(device.calls.back(), "grid interface -=-") << "half a filter is none";
    }
}

TEST_P(Backends, KeepsEachTextsLengthInItsPlace) {
    const Keys& keys = GetParam().scratch_keys;
    const auto length_of = [&](const std::string& key) {
        return static_cast<uint32_t>(std::find(keys.begin(), keys.end(), key) - keys.begin() + 1);
    };
    add_interfaces(1);
    answer_every_key([&](const std::string& key) {
        return std::vector{ScriptedDevice::Pair{key, std::string(length_of(key), '1')}};
    });
    const auto* texts = static_cast<const ScratchText*>(GetParam().scratch);
    for (size_t i = 0; i < keys.size(); ++i)
        EXPECT_EQ(texts[i].length, keys[i].empty() ? 0 : length_of(keys[i])) << i << " " << keys[i];
}

const std::vector<std::optional<std::string>> garbage = {
    std::nullopt,
    "",
    "x",
    " ",
    ":",
    "-",
    "0",
    "-2147483649",
    "\xff\x80\x01",
    "18446744073709551616",
    "%s%n%s%n",
    std::string(41, ':'),
    std::string(64, 'a'),
    std::string(100, '9'),
    std::string(255, 'a'),
    std::string(256, 'a'),
    std::string(257, 'a'),
    std::string(4096, '9'),
    std::string(4096, ':'),
    std::string(4096, 'f'),
    std::string(100000, '\xfe'),
};

TEST_P(Backends, ServeAnyStore) {
    for (const std::optional<std::string>& value : garbage) {
        device.clear_store();
        add_interfaces(2);
        answer_every_key([&](const std::string& key) { return std::vector{ScriptedDevice::Pair{key, value}}; });
        EXPECT_EQ(index_of(GetParam().rows_per_interface), 1001U);
        answer_every_key([&](const std::string&) { return std::vector{ScriptedDevice::Pair{std::nullopt, value}}; });
        EXPECT_EQ(index_of(GetParam().rows_per_interface), 1001U);
    }
}

TEST_P(Backends, FillTheirRowsOnceThereIsMemoryAgain) {
    add_interfaces(1);
    answer_every_key([](const std::string& key) { return std::vector{ScriptedDevice::Pair{key, "1"}}; });
    const std::vector<uint8_t> whole = row(0);
    for (int failing = 1;; ++failing) {
        device.fail_allocation(failing);
        EXPECT_EQ(GetParam().entries(), 1);
        const int result = GetParam().table_data();
        EXPECT_TRUE(result == 1 || result == -1) << failing;
        if (!device.allocation_failed()) break;
        device.fail_allocation(0);
        EXPECT_EQ(GetParam().table_data(), 1);
        EXPECT_EQ(row(0), whole) << failing;
    }
}

INSTANTIATE_TEST_SUITE_P(All, Backends, testing::ValuesIn(backends),
                         [](const auto& backend) { return backend.param.name; });

}  // namespace
