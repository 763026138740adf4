// If this program has a routine of the same name, the module calls that one.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

#include "access/hooks.h"
#include "backend/phy/supported_data_rates.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/wep_default_keys.h"
#include "checks/checks.h"
#include "module.h"

using namespace dot11;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

uint32_t interfaces = 0;              // in every table
std::vector<uint32_t> row_positions;  // that the iterator asked for
int site_check = 0;

// What the next-row hook of a table was called with, and what it answers.
std::vector<const void*> next_arguments;
netsnmp_variable_list* next_result;

// What the rates' routines answer, which table's was called last, and what each was called with: position and new-row
// flag.
std::deque<int> rate_results;
std::string rate_table;
std::vector<std::pair<uint32_t, int32_t>> rate_calls;

int copy_indexes(uint32_t position, void* row) {
    row_positions.push_back(position);
    static_cast<uint32_t*>(row)[0] = 10 + position;
    static_cast<uint32_t*>(row)[1] = 100 + position;
    return 1;
}

int next_rate(const char* table, uint32_t position, int32_t* flag, void* row) {
    rate_table = table;
    rate_calls.emplace_back(position, *flag);
    *flag = 5;  // stays unless the iterator sets it
    static_cast<uint32_t*>(row)[0] = 10 + position;
    static_cast<uint32_t*>(row)[1] = static_cast<uint32_t>(rate_calls.size());
    const int result = rate_results.empty() ? 0 : rate_results.front();
    if (!rate_results.empty()) rate_results.pop_front();
    return result;
}

}  // namespace

extern "C" {

int GetPrivacyEntries(void) {
    return 1;
}
int GetPrivacyTableData(void) {
    return 1;
}
uint32_t GetPrivacyTableIndexCount(void) {
    return interfaces;
}
int GetPrivacyEntryByIndex(uint32_t position, void* row) {
    return copy_indexes(position, row);
}

int GetAuthAlgorithmEntries(void) {
    return 1;
}
int GetAuthAlgorithmTableData(void) {
    return 1;
}
uint32_t GetAuthenticationAlgorithmTableIndexCount(void) {
    return interfaces;
}
int GetAuthAlgorithmEntryByIndex(uint32_t position, void* row) {
    return copy_indexes(position, row);
}

int GetDefaultWEPKeysEntries(void) {
    return 1;
}
int GetDefaultWEPKeysTableData(void) {
    return 1;
}
uint32_t GetWEPDefaultKeysTableIndexCount(void) {
    return interfaces;
}
int GetDefaultWEPKeysEntryByIndex(uint32_t position, void* row) {
    return copy_indexes(position, row);
}

int GetSuppDataRatesRxTableByIndex(uint32_t position, int32_t* flag, void* row) {
    return next_rate("dot11SupportedDataRatesRxTable", position, flag, row);
}
int GetSuppDataRatesTxTableByIndex(uint32_t position, int32_t* flag, void* row) {
    return next_rate("dot11SupportedDataRatesTxTable", position, flag, row);
}

netsnmp_variable_list* dot11CountersTable_get_next_data_point(void** loop_context, void** data_context,
                                                              netsnmp_variable_list* put_index_data,
                                                              netsnmp_iterator_info* info) {
    next_arguments = {loop_context, data_context, put_index_data, info};
    return next_result;
}

int check_dot11BeaconPeriod_local(int, const void*, size_t, const void*, size_t) {
    return site_check;
}

}  // extern "C"

namespace {

struct Walk {
    explicit Walk(const std::string& table)
        : first(symbol<Netsnmp_First_Data_Point>(table + "_get_first_data_point")),
          next(symbol<Netsnmp_Next_Data_Point>(table + "_get_next_data_point")) {
        row_positions.clear();
        rate_calls.clear();
    }

    void first_row() const {
        netsnmp_variable_list index = {};
        index.type = ASN_INTEGER;
        void* loop = nullptr;
        void* data = nullptr;
        EXPECT_NE(first(&loop, &data, &index, nullptr), nullptr);
    }

    // First and second index of every row.
    std::vector<std::pair<long, long>> rows() {
        netsnmp_variable_list second = {};
        netsnmp_variable_list index = {};
        index.type = second.type = ASN_INTEGER;
        index.next_variable = &second;
        std::vector<std::pair<long, long>> found;
        void* loop = nullptr;
        void* data = nullptr;
        for (auto* row = first(&loop, &data, &index, nullptr); row && found.size() < 1000;
             row = next(&loop, &data, &index, nullptr))
            found.emplace_back(*index.val.integer, second.val_len == 0 ? 0 : *second.val.integer);
        return found;
    }

    Netsnmp_First_Data_Point* first;
    Netsnmp_Next_Data_Point* next;
};

TEST(Replaced, AWalkHasRowsForTheCountOfInterfacesItIsGiven) {
    const struct {
        const char* table;
        uint32_t interfaces;
        size_t rows;
    } tables[] = {
        {"dot11PrivacyTable", 3, 3},
        {"dot11PrivacyTable", 0, 0},
        {"dot11AuthenticationAlgorithmsTable", 3, 6},
        {"dot11AuthenticationAlgorithmsTable", 0, 0},
        {"dot11WEPDefaultKeysTable", 3, 12},
        {"dot11WEPDefaultKeysTable", 0, 0},
    };
    for (const auto& [table, count, rows] : tables) {
        interfaces = count;
        Walk walk(table);
        EXPECT_EQ(walk.rows().size(), rows) << table;
        EXPECT_EQ(row_positions.size(), rows) << table;
    }
}

TEST(Replaced, IndexValuesAreTheFirstWordsOfTheRow) {
    interfaces = 1;
    EXPECT_THAT(Walk("dot11PrivacyTable").rows(), ElementsAre(std::pair(10, 0)));
    EXPECT_THAT(Walk("dot11AuthenticationAlgorithmsTable").rows(), ElementsAre(std::pair(10, 100), std::pair(11, 101)));
}

TEST(Replaced, TheFirstRowIsTheNextOneOfAWalkPutBack) {
    const auto first = symbol<Netsnmp_First_Data_Point>("dot11CountersTable_get_first_data_point");
    netsnmp_variable_list index = {};
    netsnmp_variable_list other = {};
    netsnmp_iterator_info info = {};
    void* loop = nullptr;
    void* data = nullptr;
    next_result = &other;
    EXPECT_EQ(first(&loop, &data, &index, &info), &other);
    EXPECT_THAT(next_arguments, ElementsAre(&loop, &data, &index, &info));
    auto* words = static_cast<uint32_t*>(loop);
    ASSERT_NE(words, nullptr);
    words[0] = 7;
    words[1] = 9;
    next_result = nullptr;
    EXPECT_EQ(first(&loop, &data, &index, &info), nullptr);
    EXPECT_EQ(words[0], 0U) << "the position";
    EXPECT_EQ(words[1], 9U) << "the row stays what it was";
}

class ReplacedRates : public testing::TestWithParam<std::string> {
  protected:
    // A last row leaves the flag as it is at load.
    ReplacedRates() {
        rate_results = {2};
        Walk(GetParam()).first_row();
    }
};

INSTANTIATE_TEST_SUITE_P(Tables, ReplacedRates,
                         testing::Values("dot11SupportedDataRatesRxTable", "dot11SupportedDataRatesTxTable"),
                         [](const auto& table) { return table.param; });

void expect_new_groups() {
    for (const char* table : {"dot11SupportedDataRatesRxTable", "dot11SupportedDataRatesTxTable"}) {
        rate_results = {1};
        Walk(table).first_row();
        EXPECT_THAT(rate_calls, ElementsAre(std::pair(0, 1))) << table;
    }
}

// In a process of its own, in which no other test has run.
TEST(ReplacedRatesAtLoad, AGroupBegins) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT((expect_new_groups(), exit(testing::Test::HasFailure() ? 1 : 0)), testing::ExitedWithCode(0), "");
}

TEST_P(ReplacedRates, TheNextGroupBeginsBehindALastRow) {
    rate_results = {1, 1, 2, 1, 2, 0};
    Walk walk(GetParam());
    EXPECT_THAT(walk.rows(),
                ElementsAre(std::pair(10, 1), std::pair(10, 2), std::pair(10, 3), std::pair(11, 4), std::pair(11, 5)));
    EXPECT_EQ(rate_table, GetParam());
    EXPECT_THAT(rate_calls, ElementsAre(std::pair(0, 1), std::pair(0, 5), std::pair(0, 5), std::pair(1, 1),
                                        std::pair(1, 5), std::pair(2, 1)));
}

TEST_P(ReplacedRates, AWalkBeginsAtTheFirstGroupAndLeavesTheFlag) {
    rate_results = {1, 0, 1, 0};
    Walk walk(GetParam());
    walk.rows();
    walk.rows();
    EXPECT_EQ(rate_calls[2], std::pair(0U, 5));
}

TEST_P(ReplacedRates, OnlyPositiveResultsAreRows) {
    for (const int result : {0, -1, -1000}) {
        rate_results = {result, 1, 1};
        EXPECT_THAT(Walk(GetParam()).rows(), IsEmpty());
    }
    rate_results = {3, 7, 0};
    Walk walk(GetParam());
    EXPECT_EQ(walk.rows().size(), 2U);
    EXPECT_EQ(rate_calls[2].first, 0U) << "and only 2 goes on to the next group";
}

TEST(Replaced, ASiteCheckHasTheLastWord) {
    Check* check = symbol<Check>("check_dot11BeaconPeriod");
    const int32_t value = 100;
    site_check = 0;
    EXPECT_EQ(check(2, &value, 4, nullptr, 0), 0);
    site_check = 12;
    EXPECT_EQ(check(2, &value, 4, nullptr, 0), 12);
    const int32_t too_small = 0;
    EXPECT_EQ(check(2, &too_small, 4, nullptr, 0), 10);
}

// The agent unloads and loads modules again on SIGHUP; the tables that it holds on to must stay.
TEST(Loaded, TheModuleIsNeverUnloaded) {
    void* first = dlopen(MODULE, RTLD_NOW);
    ASSERT_NE(first, nullptr) << dlerror();
    void* entry = dlsym(first, "init_ieee802dot11");
    dlclose(first);
    dlclose(first);
    void* still_there = dlopen(MODULE, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(still_there, nullptr);
    EXPECT_EQ(dlsym(still_there, "init_ieee802dot11"), entry);
}

}  // namespace
