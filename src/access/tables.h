// The tables that the module serves, under the subtree 1.2.840.10036 (IEEE802dot11-MIB, IEEE Std 802.11).
#pragma once

#include "access/table.h"

namespace dot11 {

extern const Table dot11StationConfigTable;
extern const Table dot11AuthenticationAlgorithmsTable;
extern const Table dot11WEPDefaultKeysTable;
extern const Table dot11WEPKeyMappingsTable;
extern const Table dot11PrivacyTable;
extern const Table dot11OperationTable;
extern const Table dot11CountersTable;
extern const Table dot11GroupAddressesTable;
extern const Table dot11ResourceInfoTable;
extern const Table dot11PhyOperationTable;
extern const Table dot11PhyTxPowerTable;
extern const Table dot11PhyDSSSTable;
extern const Table dot11RegDomainsSupportedTable;
extern const Table dot11SupportedDataRatesTxTable;
extern const Table dot11SupportedDataRatesRxTable;
extern const Table dot11PhyHRDSSSTable;
extern const Table dot11PhyERPTable;

// All of them, in the order of their OIDs.
inline constexpr const Table* tables[] = {
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

}  // namespace dot11
