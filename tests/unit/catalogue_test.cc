// What holds for every table's description.
#include "agent/catalogue.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "surface.h"

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

// In the order of the tables.
const struct {
    size_t row_size;
    uint32_t indexes;
    MissingRow missing_row;
    Undo undo;
} members[] = {
    {292, 1, MissingRow::refused, Undo::strict},  // dot11StationConfigTable
    {16, 2, MissingRow::refused, Undo::strict},   // dot11AuthenticationAlgorithmsTable
    {76, 2, MissingRow::refused, Undo::strict},   // dot11WEPDefaultKeysTable
    {32, 2, MissingRow::made, Undo::plain},       // dot11WEPKeyMappingsTable
    {28, 1, MissingRow::refused, Undo::strict},   // dot11PrivacyTable
    {304, 1, MissingRow::refused, Undo::strict},  // dot11OperationTable
    {60, 1, MissingRow::stood_in, Undo::none},    // dot11CountersTable
    {16, 2, MissingRow::stood_in, Undo::plain},   // dot11GroupAddressesTable
    {796, 1, MissingRow::stood_in, Undo::none},   // dot11ResourceInfoTable
    {16, 1, MissingRow::refused, Undo::strict},   // dot11PhyOperationTable
    {44, 1, MissingRow::refused, Undo::strict},   // dot11PhyTxPowerTable
    {20, 1, MissingRow::refused, Undo::strict},   // dot11PhyDSSSTable
    {12, 2, MissingRow::stood_in, Undo::none},    // dot11RegDomainsSupportedTable
    {12, 2, MissingRow::stood_in, Undo::none},    // dot11SupportedDataRatesTxTable
    {12, 2, MissingRow::stood_in, Undo::none},    // dot11SupportedDataRatesRxTable
    {20, 1, MissingRow::stood_in, Undo::none},    // dot11PhyHRDSSSTable
    {24, 1, MissingRow::stood_in, Undo::plain},   // dot11PhyERPTable
};

TEST(Catalogue, SaysHowATablesRowsAreMetBySets) {
    ASSERT_EQ(std::size(members), std::size(tables));
    for (size_t i = 0; i < std::size(tables); ++i) {
        EXPECT_EQ(tables[i]->row_size, members[i].row_size) << tables[i]->name;
        EXPECT_EQ(tables[i]->indexes, members[i].indexes) << tables[i]->name;
        EXPECT_EQ(tables[i]->missing_row, members[i].missing_row) << tables[i]->name;
        EXPECT_EQ(tables[i]->undo, members[i].undo) << tables[i]->name;
    }
}

std::string dotted(std::span<const oid> subids, uint32_t column) {
    std::string text;
    for (const oid subid : subids)
        text += std::to_string(subid) + ".";
    return text + "1." + std::to_string(column);
}

std::string type_name(u_char type) {
    switch (type) {
        case ASN_INTEGER:
            return "INTEGER";
        case ASN_OCTET_STR:
            return "OCTET STRING";
        case ASN_COUNTER:
            return "Counter32";
        case ASN_GAUGE:
            return "Gauge32";
        default:
            return "type " + std::to_string(type);
    }
}

std::string marks(const Column& column) {
    if (column.answered == Answered::always) return "always-set";
    if (column.answered == Answered::when_present) return "-";
    return column.write_ends_handler ? "not-answered,never-written" : "not-answered";
}

// The exported routine of that name, for comparison.
template <class Routine>
Routine* named(const std::string& name) {
    return reinterpret_cast<Routine*>(dlsym(RTLD_DEFAULT, name.c_str()));
}

TEST(Catalogue, IsWhatTheSurfaceFileSays) {
    const std::vector<SurfaceColumn> surface = read_surface();
    size_t next = 0;
    for (const Table* table : tables) {
        for (const Column& column : table->columns) {
            ASSERT_LT(next, surface.size());
            const SurfaceColumn& expected = surface[next++];
            EXPECT_EQ(column.name, expected.name);
            EXPECT_EQ(dotted(table->root, column.number), expected.oid) << column.name;
            EXPECT_EQ(type_name(column.type), expected.type) << column.name;
            EXPECT_EQ(marks(column), expected.marks) << column.name;
            EXPECT_EQ(column.set ? "read-write" : "read-only", expected.access) << column.name;
            EXPECT_EQ(column.get, named<GetColumn>("get_" + expected.name)) << column.name;
            if (!expected.is_writable()) continue;
            EXPECT_EQ(column.set, named<SetColumn>("set_" + expected.name)) << column.name;
            EXPECT_EQ(column.check, named<Check>(expected.check)) << column.name;
        }
    }
    EXPECT_EQ(next, 96U);
    EXPECT_EQ(surface.size(), 96U);
}

}  // namespace
