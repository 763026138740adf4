#include "agent/catalogue.h"

#include "access/tables.h"
#include "agent/handler.h"
#include "agent/module.h"

namespace dot11 {

// A table, its OID below 1.2.840.10036, and its two routines.
#define TABLE(table, missing_row, ...)                                                                           \
    static constexpr oid table##_root[] = {1, 2, 840, 10036, __VA_ARGS__};                                       \
    static constexpr AgentTable table##_of_agent = {                                                             \
        table, table##_hooks, table##_root, MissingRow::missing_row, initialize_table_##table, table##_handler}; \
    int table##_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info,   \
                        netsnmp_request_info* requests) {                                                        \
        return handle_requests(table##_of_agent, info, requests);                                                \
    }                                                                                                            \
    void initialize_table_##table(void) {                                                                        \
        register_table(table##_of_agent);                                                                        \
    }

// clang-format off
TABLE(dot11StationConfigTable, refused, 1, 1)
TABLE(dot11AuthenticationAlgorithmsTable, refused, 1, 2)
TABLE(dot11WEPDefaultKeysTable, refused, 1, 3)
TABLE(dot11WEPKeyMappingsTable, created, 1, 4)
TABLE(dot11PrivacyTable, refused, 1, 5)
TABLE(dot11OperationTable, refused, 2, 1)
TABLE(dot11CountersTable, throwaway, 2, 2)
TABLE(dot11GroupAddressesTable, throwaway, 2, 3)
TABLE(dot11ResourceInfoTable, throwaway, 3, 1, 2)
TABLE(dot11PhyOperationTable, refused, 4, 1)
TABLE(dot11PhyTxPowerTable, refused, 4, 3)
TABLE(dot11PhyDSSSTable, refused, 4, 5)
TABLE(dot11RegDomainsSupportedTable, throwaway, 4, 7)
TABLE(dot11SupportedDataRatesTxTable, throwaway, 4, 9)
TABLE(dot11SupportedDataRatesRxTable, throwaway, 4, 10)
TABLE(dot11PhyHRDSSSTable, throwaway, 4, 12)
TABLE(dot11PhyERPTable, throwaway, 4, 14)

static constexpr const AgentTable* tables_in_order[] = {
    &dot11WEPKeyMappingsTable_of_agent,
    &dot11PhyDSSSTable_of_agent,
    &dot11ResourceInfoTable_of_agent,
    &dot11PhyOperationTable_of_agent,
    &dot11PhyHRDSSSTable_of_agent,
    &dot11StationConfigTable_of_agent,
    &dot11CountersTable_of_agent,
    &dot11PhyTxPowerTable_of_agent,
    &dot11GroupAddressesTable_of_agent,
    &dot11SupportedDataRatesRxTable_of_agent,
    &dot11AuthenticationAlgorithmsTable_of_agent,
    &dot11PrivacyTable_of_agent,
    &dot11PhyERPTable_of_agent,
    &dot11WEPDefaultKeysTable_of_agent,
    &dot11SupportedDataRatesTxTable_of_agent,
    &dot11OperationTable_of_agent,
    &dot11RegDomainsSupportedTable_of_agent,
};
// clang-format on

constexpr std::span<const AgentTable* const> catalogue(tables_in_order);

}  // namespace dot11
