#include "agent/catalogue.h"

#include <algorithm>
#include <initializer_list>

#include "access/authentication_algorithms.h"
#include "access/counters.h"
#include "access/dsss.h"
#include "access/erp.h"
#include "access/group_addresses.h"
#include "access/hr_dsss.h"
#include "access/operation.h"
#include "access/phy_operation.h"
#include "access/privacy.h"
#include "access/reg_domains.h"
#include "access/resource_info.h"
#include "access/station_config.h"
#include "access/supported_data_rates.h"
#include "access/tx_power.h"
#include "access/wep_default_keys.h"
#include "access/wep_key_mappings.h"
#include "agent/tables.h"

namespace {

// A column: number, name, ASN.1 type of the answer.
#define READ_ONLY(number, name, type) \
    { number, type, Answered::when_present, false, #name, get_##name, nullptr, nullptr }
#define READ_WRITE(number, name, type) \
    { number, type, Answered::when_present, false, #name, get_##name, check_##name, set_##name }

// Answered with whatever the accessor returns.
#define ALWAYS_SET(number, name, type) \
    { number, type, Answered::always, false, #name, get_##name, nullptr, nullptr }

// Never answered: a GET ends the handler. Meant, also for the columns that accept a SET.
#define NOT_ANSWERED(number, name, type) \
    { number, type, Answered::never, false, #name, get_##name, nullptr, nullptr }
#define NOT_ANSWERED_WRITE(number, name, type) \
    { number, type, Answered::never, false, #name, get_##name, check_##name, set_##name }

// A SET is checked, and then ACTION and UNDO end the handler as a GET does: nothing is written. Meant.
#define CHECKED_ONLY(number, name, type) \
    { number, type, Answered::never, true, #name, get_##name, check_##name, set_##name }

// The routines of a table, in the order of struct Table.
#define ROUTINES(table)                                                                                           \
    table##_handler, table##_get_first_data_point, table##_get_next_data_point, table##_context_convert_function, \
        table##_data_free, table##_create_data_context, table##_commit_row

// The same for a table that never has rows.
#define ROUTINES_WITHOUT_ROWS(table)                                                              \
    table##_handler, table##_get_first_data_point, table##_get_next_data_point, nullptr, nullptr, \
        table##_create_data_context, table##_commit_row

// clang-format off

constexpr Column station_config_columns[] = {
    READ_WRITE(1, dot11StationID, ASN_OCTET_STR),
    READ_WRITE(2, dot11MediumOccupancyLimit, ASN_INTEGER),
    ALWAYS_SET(3, dot11CFPollable, ASN_INTEGER),
    READ_WRITE(4, dot11CFPPeriod, ASN_INTEGER),
    READ_WRITE(5, dot11CFPMaxDuration, ASN_INTEGER),
    READ_WRITE(6, dot11AuthenticationResponseTimeOut, ASN_GAUGE),
    ALWAYS_SET(7, dot11PrivacyOptionImplemented, ASN_INTEGER),
    READ_WRITE(8, dot11PowerManagementMode, ASN_INTEGER),
    READ_WRITE(9, dot11DesiredSSID, ASN_OCTET_STR),
    READ_WRITE(10, dot11DesiredBSSType, ASN_INTEGER),
    CHECKED_ONLY(11, dot11OperationalRateSet, ASN_OCTET_STR),
    READ_WRITE(12, dot11BeaconPeriod, ASN_INTEGER),
    READ_WRITE(13, dot11DTIMPeriod, ASN_INTEGER),
    READ_WRITE(14, dot11AssociationResponseTimeOut, ASN_GAUGE),
    READ_ONLY(15, dot11DisassociateReason, ASN_INTEGER),
    READ_ONLY(16, dot11DisassociateStation, ASN_OCTET_STR),
    READ_ONLY(17, dot11DeauthenticateReason, ASN_INTEGER),
    READ_ONLY(18, dot11DeauthenticateStation, ASN_OCTET_STR),
    READ_ONLY(19, dot11AuthenticateFailStatus, ASN_INTEGER),
    READ_ONLY(20, dot11AuthenticateFailStation, ASN_OCTET_STR),
    READ_ONLY(21, dot11MultiDomainCapabilityImplemented, ASN_INTEGER),
    READ_ONLY(22, dot11MultiDomainCapabilityEnabled, ASN_INTEGER),
    ALWAYS_SET(23, dot11CountryString, ASN_OCTET_STR),
};

constexpr Column authentication_algorithms_columns[] = {
    ALWAYS_SET(2, dot11AuthenticationAlgorithm, ASN_INTEGER),
    READ_WRITE(3, dot11AuthenticationAlgorithmsEnable, ASN_INTEGER),
};

constexpr Column wep_default_keys_columns[] = {
    READ_WRITE(2, dot11WEPDefaultKeyValue, ASN_OCTET_STR),
};

constexpr Column wep_key_mappings_columns[] = {
    READ_WRITE(2, dot11WEPKeyMappingAddress, ASN_OCTET_STR),
    READ_WRITE(3, dot11WEPKeyMappingWEPOn, ASN_INTEGER),
    READ_WRITE(4, dot11WEPKeyMappingValue, ASN_OCTET_STR),
    READ_WRITE(5, dot11WEPKeyMappingStatus, ASN_INTEGER),
};

constexpr Column privacy_columns[] = {
    READ_WRITE(1, dot11PrivacyInvoked, ASN_INTEGER),
    READ_WRITE(2, dot11WEPDefaultKeyID, ASN_INTEGER),
    READ_WRITE(3, dot11WEPKeyMappingLength, ASN_GAUGE),
    READ_WRITE(4, dot11ExcludeUnencrypted, ASN_INTEGER),
    READ_ONLY(5, dot11WEPICVErrorCount, ASN_COUNTER),
    READ_ONLY(6, dot11WEPExcludedCount, ASN_COUNTER),
};

constexpr Column operation_columns[] = {
    READ_ONLY(1, dot11MACAddress, ASN_OCTET_STR),
    READ_WRITE(2, dot11RTSThreshold, ASN_INTEGER),
    READ_WRITE(3, dot11ShortRetryLimit, ASN_INTEGER),
    READ_WRITE(4, dot11LongRetryLimit, ASN_INTEGER),
    READ_WRITE(5, dot11FragmentationThreshold, ASN_INTEGER),
    READ_WRITE(6, dot11MaxTransmitMSDULifetime, ASN_GAUGE),
    READ_WRITE(7, dot11MaxReceiveLifetime, ASN_GAUGE),
    READ_ONLY(8, dot11ManufacturerID, ASN_OCTET_STR),
    READ_ONLY(9, dot11ProductID, ASN_OCTET_STR),
};

constexpr Column counters_columns[] = {
    READ_ONLY(1, dot11TransmittedFragmentCount, ASN_COUNTER),
    READ_ONLY(2, dot11MulticastTransmittedFrameCount, ASN_COUNTER),
    READ_ONLY(3, dot11FailedCount, ASN_COUNTER),
    READ_ONLY(4, dot11RetryCount, ASN_COUNTER),
    READ_ONLY(5, dot11MultipleRetryCount, ASN_COUNTER),
    READ_ONLY(6, dot11FrameDuplicateCount, ASN_COUNTER),
    READ_ONLY(7, dot11RTSSuccessCount, ASN_COUNTER),
    READ_ONLY(8, dot11RTSFailureCount, ASN_COUNTER),
    READ_ONLY(9, dot11ACKFailureCount, ASN_COUNTER),
    READ_ONLY(10, dot11ReceivedFragmentCount, ASN_COUNTER),
    READ_ONLY(11, dot11MulticastReceivedFrameCount, ASN_COUNTER),
    READ_ONLY(12, dot11FCSErrorCount, ASN_COUNTER),
    READ_ONLY(13, dot11TransmittedFrameCount, ASN_COUNTER),
    READ_ONLY(14, dot11WEPUndecryptableCount, ASN_COUNTER),
};

constexpr Column group_addresses_columns[] = {
    READ_WRITE(2, dot11Address, ASN_OCTET_STR),
    READ_WRITE(3, dot11GroupAddressesStatus, ASN_INTEGER),
};

constexpr Column resource_info_columns[] = {
    NOT_ANSWERED(1, dot11manufacturerOUI, ASN_OCTET_STR),
    NOT_ANSWERED(2, dot11manufacturerName, ASN_OCTET_STR),
    NOT_ANSWERED(3, dot11manufacturerProductName, ASN_OCTET_STR),
    NOT_ANSWERED(4, dot11manufacturerProductVersion, ASN_OCTET_STR),
};

constexpr Column phy_operation_columns[] = {
    NOT_ANSWERED(1, dot11PHYType, ASN_INTEGER),
    READ_WRITE(2, dot11CurrentRegDomain, ASN_INTEGER),
    ALWAYS_SET(3, dot11TempType, ASN_INTEGER),
};

constexpr Column tx_power_columns[] = {
    NOT_ANSWERED(1, dot11NumberSupportedPowerLevels, ASN_INTEGER),
    NOT_ANSWERED(2, dot11TxPowerLevel1, ASN_INTEGER),
    NOT_ANSWERED(3, dot11TxPowerLevel2, ASN_INTEGER),
    NOT_ANSWERED(4, dot11TxPowerLevel3, ASN_INTEGER),
    NOT_ANSWERED(5, dot11TxPowerLevel4, ASN_INTEGER),
    NOT_ANSWERED(6, dot11TxPowerLevel5, ASN_INTEGER),
    NOT_ANSWERED(7, dot11TxPowerLevel6, ASN_INTEGER),
    NOT_ANSWERED(8, dot11TxPowerLevel7, ASN_INTEGER),
    NOT_ANSWERED(9, dot11TxPowerLevel8, ASN_INTEGER),
    NOT_ANSWERED_WRITE(10, dot11CurrentTxPowerLevel, ASN_INTEGER),
};

constexpr Column dsss_columns[] = {
    READ_WRITE(1, dot11CurrentChannel, ASN_INTEGER),
    NOT_ANSWERED(2, dot11CCAModeSupported, ASN_INTEGER),
    NOT_ANSWERED_WRITE(3, dot11CurrentCCAMode, ASN_INTEGER),
    NOT_ANSWERED_WRITE(4, dot11EDThreshold, ASN_INTEGER),
};

constexpr Column reg_domains_columns[] = {
    READ_ONLY(2, dot11RegDomainsSupportValue, ASN_INTEGER),
};

constexpr Column supported_data_rates_tx_columns[] = {
    NOT_ANSWERED(2, dot11SupportedDataRatesTxValue, ASN_INTEGER),
};

constexpr Column supported_data_rates_rx_columns[] = {
    NOT_ANSWERED(2, dot11SupportedDataRatesRxValue, ASN_INTEGER),
};

constexpr Column hr_dsss_columns[] = {
    NOT_ANSWERED(1, dot11ShortPreambleOptionImplemented, ASN_INTEGER),
    NOT_ANSWERED(2, dot11PBCCOptionImplemented, ASN_INTEGER),
    NOT_ANSWERED(3, dot11ChannelAgilityPresent, ASN_INTEGER),
    NOT_ANSWERED(4, dot11ChannelAgilityEnabled, ASN_INTEGER),
    NOT_ANSWERED(5, dot11HRCCAModeSupported, ASN_INTEGER),
};

constexpr Column erp_columns[] = {
    READ_ONLY(1, dot11ERPPBCCOptionImplemented, ASN_INTEGER),
    READ_WRITE(2, dot11ERPBCCOptionEnabled, ASN_INTEGER),
    READ_ONLY(3, dot11DSSSOFDMOptionImplemented, ASN_INTEGER),
    READ_WRITE(4, dot11DSSSOFDMOptionEnabled, ASN_INTEGER),
    READ_WRITE(5, dot11ShortSlotTimeOptionImplemented, ASN_INTEGER),
    READ_WRITE(6, dot11ShortSlotTimeOptionEnabled, ASN_INTEGER),
};

constexpr oid station_config_oid[] = {1, 2, 840, 10036, 1, 1};
constexpr oid authentication_algorithms_oid[] = {1, 2, 840, 10036, 1, 2};
constexpr oid wep_default_keys_oid[] = {1, 2, 840, 10036, 1, 3};
constexpr oid wep_key_mappings_oid[] = {1, 2, 840, 10036, 1, 4};
constexpr oid privacy_oid[] = {1, 2, 840, 10036, 1, 5};
constexpr oid operation_oid[] = {1, 2, 840, 10036, 2, 1};
constexpr oid counters_oid[] = {1, 2, 840, 10036, 2, 2};
constexpr oid group_addresses_oid[] = {1, 2, 840, 10036, 2, 3};
constexpr oid resource_info_oid[] = {1, 2, 840, 10036, 3, 1, 2};
constexpr oid phy_operation_oid[] = {1, 2, 840, 10036, 4, 1};
constexpr oid tx_power_oid[] = {1, 2, 840, 10036, 4, 3};
constexpr oid dsss_oid[] = {1, 2, 840, 10036, 4, 5};
constexpr oid reg_domains_oid[] = {1, 2, 840, 10036, 4, 7};
constexpr oid supported_data_rates_tx_oid[] = {1, 2, 840, 10036, 4, 9};
constexpr oid supported_data_rates_rx_oid[] = {1, 2, 840, 10036, 4, 10};
constexpr oid hr_dsss_oid[] = {1, 2, 840, 10036, 4, 12};
constexpr oid erp_oid[] = {1, 2, 840, 10036, 4, 14};

// clang-format on

}  // namespace

// clang-format off
constexpr Table catalogue::dot11StationConfigTable = {"dot11StationConfigTable", station_config_oid, station_config_columns, 1, MissingRow::refused, Undo::strict, sizeof(StationConfigRow), ROUTINES(dot11StationConfigTable)};
constexpr Table catalogue::dot11AuthenticationAlgorithmsTable = {"dot11AuthenticationAlgorithmsTable", authentication_algorithms_oid, authentication_algorithms_columns, 2, MissingRow::refused, Undo::strict, sizeof(AuthenticationAlgorithmsRow), ROUTINES(dot11AuthenticationAlgorithmsTable)};
constexpr Table catalogue::dot11WEPDefaultKeysTable = {"dot11WEPDefaultKeysTable", wep_default_keys_oid, wep_default_keys_columns, 2, MissingRow::refused, Undo::strict, sizeof(WEPDefaultKeysRow), ROUTINES(dot11WEPDefaultKeysTable)};
constexpr Table catalogue::dot11WEPKeyMappingsTable = {"dot11WEPKeyMappingsTable", wep_key_mappings_oid, wep_key_mappings_columns, 2, MissingRow::made, Undo::plain, sizeof(WEPKeyMappingsRow), ROUTINES_WITHOUT_ROWS(dot11WEPKeyMappingsTable)};
constexpr Table catalogue::dot11PrivacyTable = {"dot11PrivacyTable", privacy_oid, privacy_columns, 1, MissingRow::refused, Undo::strict, sizeof(PrivacyRow), ROUTINES(dot11PrivacyTable)};
constexpr Table catalogue::dot11OperationTable = {"dot11OperationTable", operation_oid, operation_columns, 1, MissingRow::refused, Undo::strict, sizeof(OperationRow), ROUTINES(dot11OperationTable)};
constexpr Table catalogue::dot11CountersTable = {"dot11CountersTable", counters_oid, counters_columns, 1, MissingRow::stood_in, Undo::none, sizeof(CountersRow), ROUTINES(dot11CountersTable)};
constexpr Table catalogue::dot11GroupAddressesTable = {"dot11GroupAddressesTable", group_addresses_oid, group_addresses_columns, 2, MissingRow::stood_in, Undo::plain, sizeof(GroupAddressesRow), ROUTINES_WITHOUT_ROWS(dot11GroupAddressesTable)};
constexpr Table catalogue::dot11ResourceInfoTable = {"dot11ResourceInfoTable", resource_info_oid, resource_info_columns, 1, MissingRow::stood_in, Undo::none, sizeof(ResourceInfoRow), ROUTINES(dot11ResourceInfoTable)};
constexpr Table catalogue::dot11PhyOperationTable = {"dot11PhyOperationTable", phy_operation_oid, phy_operation_columns, 1, MissingRow::refused, Undo::strict, sizeof(PhyOperationRow), ROUTINES(dot11PhyOperationTable)};
constexpr Table catalogue::dot11PhyTxPowerTable = {"dot11PhyTxPowerTable", tx_power_oid, tx_power_columns, 1, MissingRow::refused, Undo::strict, sizeof(TxPowerRow), ROUTINES(dot11PhyTxPowerTable)};
constexpr Table catalogue::dot11PhyDSSSTable = {"dot11PhyDSSSTable", dsss_oid, dsss_columns, 1, MissingRow::refused, Undo::strict, sizeof(DsssRow), ROUTINES(dot11PhyDSSSTable)};
constexpr Table catalogue::dot11RegDomainsSupportedTable = {"dot11RegDomainsSupportedTable", reg_domains_oid, reg_domains_columns, 2, MissingRow::stood_in, Undo::none, sizeof(RegDomainsRow), ROUTINES(dot11RegDomainsSupportedTable)};
constexpr Table catalogue::dot11SupportedDataRatesTxTable = {"dot11SupportedDataRatesTxTable", supported_data_rates_tx_oid, supported_data_rates_tx_columns, 2, MissingRow::stood_in, Undo::none, sizeof(SupportedDataRatesTxRow), ROUTINES(dot11SupportedDataRatesTxTable)};
constexpr Table catalogue::dot11SupportedDataRatesRxTable = {"dot11SupportedDataRatesRxTable", supported_data_rates_rx_oid, supported_data_rates_rx_columns, 2, MissingRow::stood_in, Undo::none, sizeof(SupportedDataRatesRxRow), ROUTINES(dot11SupportedDataRatesRxTable)};
constexpr Table catalogue::dot11PhyHRDSSSTable = {"dot11PhyHRDSSSTable", hr_dsss_oid, hr_dsss_columns, 1, MissingRow::stood_in, Undo::none, sizeof(HrDsssRow), ROUTINES_WITHOUT_ROWS(dot11PhyHRDSSSTable)};
constexpr Table catalogue::dot11PhyERPTable = {"dot11PhyERPTable", erp_oid, erp_columns, 1, MissingRow::stood_in, Undo::plain, sizeof(ErpRow), ROUTINES_WITHOUT_ROWS(dot11PhyERPTable)};
// clang-format on

namespace {

// Column 1 of a table with two indexes is its second index, which is not served. (What a test asks of the pointers,
// sanitizers do not let a compiler ask.)
consteval bool is_well_formed(const Table& table) {
    uint32_t number = table.indexes;
    for (const Column& column : table.columns)
        if (column.number != number++) return false;
    return !table.columns.empty() && (table.missing_row == MissingRow::refused) == (table.undo == Undo::strict);
}

consteval bool is_in_order(std::initializer_list<const Table*> tables) {
    const Table* last = nullptr;
    for (const Table* table : tables) {
        if (!is_well_formed(*table)) return false;
        if (last &&
            !std::lexicographical_compare(last->root.begin(), last->root.end(), table->root.begin(), table->root.end()))
            return false;
        last = table;
    }
    return true;
}

using namespace catalogue;

static_assert(is_in_order({&dot11StationConfigTable, &dot11AuthenticationAlgorithmsTable, &dot11WEPDefaultKeysTable,
                           &dot11WEPKeyMappingsTable, &dot11PrivacyTable, &dot11OperationTable, &dot11CountersTable,
                           &dot11GroupAddressesTable, &dot11ResourceInfoTable, &dot11PhyOperationTable,
                           &dot11PhyTxPowerTable, &dot11PhyDSSSTable, &dot11RegDomainsSupportedTable,
                           &dot11SupportedDataRatesTxTable, &dot11SupportedDataRatesRxTable, &dot11PhyHRDSSSTable,
                           &dot11PhyERPTable}));

}  // namespace
