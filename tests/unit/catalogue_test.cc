// What all tables' descriptions have in common.
#include "agent/catalogue.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "access/tables.h"
#include "columns.h"

using namespace dot11;

namespace {

using testing::ElementsAre;

const AgentTable& of_agent(const Table& table) {
    return **std::ranges::find_if(catalogue, [&](const AgentTable* entry) { return &entry->facts == &table; });
}

TEST(Catalogue, AColumnHasACheckAndAWriteAccessorOrNeither) {
    for (const Table* table : tables)
        for (const Column& column : table->columns) {
            EXPECT_NE(column.get, nullptr) << column.name;
            EXPECT_EQ(column.check == nullptr, column.set == nullptr) << column.name;
            EXPECT_TRUE(column.set || !column.write_ends_handler) << column.name;
        }
}

// Column 1 of a table with two indexes is its second index, which is not served.
TEST(Catalogue, ColumnsFollowTheIndexesWithoutGaps) {
    for (const Table* table : tables) {
        uint32_t number = table->indexes;
        for (const Column& column : table->columns)
            EXPECT_EQ(column.number, number++) << column.name;
        EXPECT_FALSE(table->columns.empty()) << table->name;
    }
}

TEST(Catalogue, TheTablesAreInTheOrderOfTheirOids) {
    for (size_t i = 1; i < std::size(tables); ++i)
        EXPECT_TRUE(std::ranges::lexicographical_compare(of_agent(*tables[i - 1]).root, of_agent(*tables[i]).root))
            << tables[i]->name;
}

TEST(Catalogue, RowsAreReadAsAWholeOrOneByOneOrNotAtAll) {
    for (const Table* table : tables) {
        const bool as_a_whole = table->entries != nullptr;
        EXPECT_EQ(table->table_data != nullptr, as_a_whole) << table->name;
        EXPECT_EQ(table->index_count != nullptr, as_a_whole) << table->name;
        EXPECT_EQ(table->rows_per_interface != 0, as_a_whole) << table->name;
        EXPECT_EQ(table->entry_by_index != nullptr, as_a_whole) << table->name;
        EXPECT_FALSE(as_a_whole && table->row_by_index) << table->name;
        const Hooks& hooks = of_agent(*table).hooks;
        EXPECT_EQ(hooks.make_data_context != nullptr, as_a_whole || table->row_by_index) << table->name;
        EXPECT_EQ(hooks.free_data_context != nullptr, as_a_whole || table->row_by_index) << table->name;
    }
}

TEST(Catalogue, ValuesComeFromOneKeyOrFromOneForEachRowOfAnInterface) {
    for (const Table* table : tables)
        for (const Column& column : table->columns)
            EXPECT_TRUE(column.keys.size() <= 1 || column.keys.size() == table->rows_per_interface) << column.name;
}

// The columns that complete answers add, and those that stay without a value.
TEST(Catalogue, CompleteAnswersAddTwoTables) {
    std::vector<std::string> added, unanswered;
    for (const Table* table : tables)
        for (const Column& column : table->columns) {
            if (is_answered(column, true) != is_answered(column, false)) added.push_back(column.name);
            if (!is_answered(column, true)) unanswered.push_back(column.name);
        }
    EXPECT_THAT(added, ElementsAre("dot11manufacturerOUI", "dot11manufacturerName", "dot11manufacturerProductName",
                                   "dot11manufacturerProductVersion", "dot11NumberSupportedPowerLevels",
                                   "dot11TxPowerLevel1", "dot11TxPowerLevel2", "dot11TxPowerLevel3",
                                   "dot11TxPowerLevel4", "dot11TxPowerLevel5", "dot11TxPowerLevel6",
                                   "dot11TxPowerLevel7", "dot11TxPowerLevel8", "dot11CurrentTxPowerLevel"));
    EXPECT_THAT(unanswered,
                ElementsAre("dot11OperationalRateSet", "dot11PHYType", "dot11CCAModeSupported", "dot11CurrentCCAMode",
                            "dot11EDThreshold", "dot11SupportedDataRatesTxValue", "dot11SupportedDataRatesRxValue",
                            "dot11ShortPreambleOptionImplemented", "dot11PBCCOptionImplemented",
                            "dot11ChannelAgilityPresent", "dot11ChannelAgilityEnabled", "dot11HRCCAModeSupported"));
}

// In the order of the tables.
const struct {
    uint32_t indexes;
    MissingRow missing_row;
} members[] = {
    {1, MissingRow::refused},    // dot11StationConfigTable
    {2, MissingRow::refused},    // dot11AuthenticationAlgorithmsTable
    {2, MissingRow::refused},    // dot11WEPDefaultKeysTable
    {2, MissingRow::created},    // dot11WEPKeyMappingsTable
    {1, MissingRow::refused},    // dot11PrivacyTable
    {1, MissingRow::refused},    // dot11OperationTable
    {1, MissingRow::throwaway},  // dot11CountersTable
    {2, MissingRow::throwaway},  // dot11GroupAddressesTable
    {1, MissingRow::throwaway},  // dot11ResourceInfoTable
    {1, MissingRow::refused},    // dot11PhyOperationTable
    {1, MissingRow::refused},    // dot11PhyTxPowerTable
    {1, MissingRow::refused},    // dot11PhyDSSSTable
    {2, MissingRow::throwaway},  // dot11RegDomainsSupportedTable
    {2, MissingRow::throwaway},  // dot11SupportedDataRatesTxTable
    {2, MissingRow::throwaway},  // dot11SupportedDataRatesRxTable
    {1, MissingRow::throwaway},  // dot11PhyHRDSSSTable
    {1, MissingRow::throwaway},  // dot11PhyERPTable
};

TEST(Catalogue, SaysHowATablesRowsAreMetBySets) {
    ASSERT_EQ(std::size(members), std::size(tables));
    for (size_t i = 0; i < std::size(tables); ++i) {
        EXPECT_EQ(tables[i]->indexes, members[i].indexes) << tables[i]->name;
        EXPECT_EQ(of_agent(*tables[i]).missing_row, members[i].missing_row) << tables[i]->name;
    }
}

std::string dotted(std::span<const oid> subids, uint32_t column) {
    std::string text;
    for (const oid subid : subids)
        text += std::to_string(subid) + ".";
    return text + "1." + std::to_string(column);
}

std::string type_name(Type type) {
    switch (static_cast<u_char>(type)) {
        case ASN_INTEGER:
            return "INTEGER";
        case ASN_OCTET_STR:
            return "OCTET STRING";
        case ASN_COUNTER:
            return "Counter32";
        case ASN_GAUGE:
            return "Gauge32";
        default:
            return "another";
    }
}

std::string answered(const Column& column) {
    if (column.answered == Answered::always) return "always";
    if (column.answered == Answered::complete_only) return "complete";
    return column.answered == Answered::never ? "no" : "yes";
}

std::string accepted(const Column& column, const Table& table) {
    if (!column.set) return "-";
    if (column.write_ends_handler) return "dropped";
    return table.entries ? "refused" : "accepted";
}

std::vector<std::string> keys(const Column& column) {
    std::vector<std::string> texts;
    for (const StoreKey& key : column.keys)
        texts.push_back(std::string(key.table) + "/" + key.name);
    return texts;
}

// The exported routine of that name, for comparison.
template <class Routine>
Routine* named(const std::string& name) {
    return reinterpret_cast<Routine*>(dlsym(RTLD_DEFAULT, name.c_str()));
}

void expect_routines(const Column& column) {
    const std::string name = column.name;
    EXPECT_EQ(column.get, named<GetColumn>("get_" + name));
    if (!column.set) return;
    EXPECT_EQ(column.set, named<SetColumn>("set_" + name));
    EXPECT_EQ(column.check, named<Check>("check_" + name));
}

void expect_fact(const Table& table, const Column& column, const ColumnFact& fact) {
    SCOPED_TRACE("tests/columns.tsv and the list of columns of " + fact.name + " in src/access/ differ");
    EXPECT_EQ(dotted(of_agent(table).root, column.number), "1.2.840.10036." + fact.oid);
    EXPECT_EQ(type_name(column.type), fact.type);
    EXPECT_EQ(column.set ? "read-write" : "read-only", fact.access);
    EXPECT_EQ(answered(column), fact.get);
    EXPECT_EQ(accepted(column, table), fact.set);
    EXPECT_EQ(table.entries || table.row_by_index, fact.has_rows);
    EXPECT_EQ(keys(column), fact.keys);
    expect_routines(column);
}

TEST(Catalogue, IsWhatTheTableOfFactsSays) {
    std::map<std::string, const ColumnFact*> facts;
    for (const ColumnFact& fact : column_facts())
        facts[fact.name] = &fact;
    for (const Table* table : tables)
        for (const Column& column : table->columns) {
            const auto fact = facts.extract(column.name);
            if (fact)
                expect_fact(*table, column, *fact.mapped());
            else
                ADD_FAILURE() << "tests/columns.tsv has no line for " << column.name;
        }
    for (const auto& [name, fact] : facts)
        ADD_FAILURE() << "src/access/ has no line for " << name << ", which tests/columns.tsv has";
}

}  // namespace
