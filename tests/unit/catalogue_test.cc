// What holds for every table's description.
#include "agent/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace catalogue;

const Table* const tables[] = {
    &dot11StationConfigTable,
    &dot11AuthenticationAlgorithmsTable,
    &dot11WEPDefaultKeysTable,
    &dot11WEPKeyMappingsTable,
    &dot11PrivacyTable,
    &dot11OperationTable,
    &dot11CountersTable,
    &dot11GroupAddressesTable,
    &dot11ResourceInfoTable,
    &dot11PhyOperationTable,
    &dot11PhyTxPowerTable,
    &dot11PhyDSSSTable,
    &dot11RegDomainsSupportedTable,
    &dot11SupportedDataRatesTxTable,
    &dot11SupportedDataRatesRxTable,
    &dot11PhyHRDSSSTable,
    &dot11PhyERPTable,
};

TEST(Catalogue, AColumnHasACheckAndAWriteAccessorOrNeither) {
    for (const Table* table : tables)
        for (const Column& column : table->columns) {
            EXPECT_NE(column.get, nullptr) << column.name;
            EXPECT_EQ(column.check == nullptr, column.set == nullptr) << column.name;
            EXPECT_TRUE(column.set || !column.write_ends_handler) << column.name;
        }
}

TEST(Catalogue, AnUndoGoesWithWritableColumnsAndIsStrictWhereThereAreRows) {
    for (const Table* table : tables) {
        const bool has_rows = table->make_data_context != nullptr;
        const bool writable = std::any_of(table->columns.begin(), table->columns.end(),
                                          [](const Column& column) { return column.set != nullptr; });
        EXPECT_EQ(has_rows, table->free_data_context != nullptr) << table->name;
        EXPECT_EQ(table->undo == Undo::none, !writable) << table->name;
        EXPECT_EQ(table->undo == Undo::strict, writable && has_rows) << table->name;
    }
}

}  // namespace
