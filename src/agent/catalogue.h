// Every table that the module serves, under the subtree 1.2.840.10036 (IEEE802dot11-MIB, IEEE Std 802.11).
#pragma once

#include "agent/table.h"

namespace catalogue {

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

}  // namespace catalogue
