#include "access/hooks.h"

#include <stdlib.h>

#include "access/iterator.h"
#include "access/tables.h"
#include "access/wep_key_mappings.h"
#include "backend/mac/counters.h"
#include "backend/mac/operation.h"
#include "backend/mac/resource_info.h"
#include "backend/phy/dsss.h"
#include "backend/phy/phy_operation.h"
#include "backend/phy/reg_domains.h"
#include "backend/phy/supported_data_rates.h"
#include "backend/phy/tx_power.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/station_config.h"
#include "backend/smt/wep_default_keys.h"

namespace dot11 {

uint32_t dot11WEPKeyMappingIndexMax;

// The hooks of a table with rows; Walk is one of the walks in iterator.h.
#define TABLE_WITH_ROWS(table, Walk)                                                                       \
    static Walk table##_walk;                                                                              \
    netsnmp_variable_list* table##_get_first_data_point(void** loop_context, void** data_context,          \
                                                        netsnmp_variable_list* put_index_data,             \
                                                        netsnmp_iterator_info* info) {                     \
        begin_walk(table##_walk);                                                                          \
        *loop_context = &table##_walk.loop;                                                                \
        return table##_get_next_data_point(loop_context, data_context, put_index_data, info);              \
    }                                                                                                      \
    netsnmp_variable_list* table##_get_next_data_point(                                                    \
        void** loop_context, void**, netsnmp_variable_list* put_index_data, netsnmp_iterator_info* info) { \
        netsnmp_variable_list* indexes = next_row(table, table##_walk, *loop_context, put_index_data);     \
        tell_order(table##_walk, info);                                                                    \
        return indexes;                                                                                    \
    }                                                                                                      \
    void* table##_context_convert_function(void* loop_context, netsnmp_iterator_info*) {                   \
        return copy_of_row(table##_walk, loop_context);                                                    \
    }                                                                                                      \
    void table##_data_free(void* row, netsnmp_iterator_info*) {                                            \
        free(row);                                                                                         \
    }                                                                                                      \
    void* table##_create_data_context(netsnmp_variable_list*) {                                            \
        return nullptr;                                                                                    \
    }                                                                                                      \
    int table##_commit_row(void**, int) {                                                                  \
        return 0;                                                                                          \
    }                                                                                                      \
    constexpr Hooks table##_hooks = {table##_get_first_data_point,     table##_get_next_data_point,        \
                                     table##_context_convert_function, table##_data_free,                  \
                                     table##_create_data_context,      table##_commit_row};

// The hooks of a table without rows, and the row that a SET gets.
#define TABLE_WITHOUT_ROWS(table, new_row)                                                                        \
    netsnmp_variable_list* table##_get_first_data_point(void**, void**, netsnmp_variable_list*,                   \
                                                        netsnmp_iterator_info*) {                                 \
        return nullptr;                                                                                           \
    }                                                                                                             \
    netsnmp_variable_list* table##_get_next_data_point(void**, void**, netsnmp_variable_list*,                    \
                                                       netsnmp_iterator_info*) {                                  \
        return nullptr;                                                                                           \
    }                                                                                                             \
    void* table##_create_data_context(netsnmp_variable_list*) {                                                   \
        return new_row;                                                                                           \
    }                                                                                                             \
    int table##_commit_row(void**, int) {                                                                         \
        return 0;                                                                                                 \
    }                                                                                                             \
    constexpr Hooks table##_hooks = {table##_get_first_data_point, table##_get_next_data_point, nullptr, nullptr, \
                                     table##_create_data_context,  table##_commit_row};

namespace {

// The caller releases the row when the SET is done. Null when out of memory.
WEPKeyMappingsRow* make_key_mapping() {
    void* row = calloc(1, sizeof(WEPKeyMappingsRow));
    if (row) ++dot11WEPKeyMappingIndexMax;
    return static_cast<WEPKeyMappingsRow*>(row);
}

}  // namespace

// clang-format off
TABLE_WITH_ROWS(dot11StationConfigTable, ReloadingWalk<StationConfigRow>)
TABLE_WITH_ROWS(dot11AuthenticationAlgorithmsTable, ReloadingWalk<AuthenticationAlgorithmsRow>)
TABLE_WITH_ROWS(dot11WEPDefaultKeysTable, ReloadingWalk<WEPDefaultKeysRow>)
TABLE_WITHOUT_ROWS(dot11WEPKeyMappingsTable, make_key_mapping())
TABLE_WITH_ROWS(dot11PrivacyTable, ReloadingWalk<PrivacyRow>)
TABLE_WITH_ROWS(dot11OperationTable, ReloadingWalk<OperationRow>)
TABLE_WITH_ROWS(dot11CountersTable, ReloadingWalk<CountersRow>)
TABLE_WITHOUT_ROWS(dot11GroupAddressesTable, nullptr)
TABLE_WITH_ROWS(dot11ResourceInfoTable, ReloadingWalk<ResourceInfoRow>)
TABLE_WITH_ROWS(dot11PhyOperationTable, ReloadingWalk<PhyOperationRow>)
TABLE_WITH_ROWS(dot11PhyTxPowerTable, ReloadingWalk<TxPowerRow>)
TABLE_WITH_ROWS(dot11PhyDSSSTable, ReloadingWalk<DsssRow>)
TABLE_WITH_ROWS(dot11RegDomainsSupportedTable, ReloadingWalk<RegDomainsRow>)
TABLE_WITH_ROWS(dot11SupportedDataRatesTxTable, RateWalk<SupportedDataRatesTxRow>)
TABLE_WITH_ROWS(dot11SupportedDataRatesRxTable, RateWalk<SupportedDataRatesRxRow>)
TABLE_WITHOUT_ROWS(dot11PhyHRDSSSTable, nullptr)
TABLE_WITHOUT_ROWS(dot11PhyERPTable, nullptr)
// clang-format on

}  // namespace dot11
