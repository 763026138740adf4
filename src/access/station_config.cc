// dot11StationConfigTable (1.2.840.10036.1.1).
#include "backend/smt/station_config.h"
#include "access/accessors.h"
#include "access/tables.h"
#include "backend/lookup.h"
#include "backend/phy/supported_data_rates.h"

namespace dot11 {

using Row = StationConfigRow;

// clang-format off
#pragma GCC visibility push(default)
extern "C" {
void* get_dot11StationID(void* row, size_t* length) { return counted_octets<&Row::dot11StationID, &Row::dot11StationIDLen>(row, length); }
void* get_dot11MediumOccupancyLimit(void* row, size_t* length) { return word<&Row::dot11MediumOccupancyLimit>(row, length); }
void* get_dot11CFPollable(void* row, size_t* length) { return word<&Row::dot11CFPollable>(row, length); }
void* get_dot11CFPPeriod(void* row, size_t* length) { return word<&Row::dot11CFPPeriod>(row, length); }
void* get_dot11CFPMaxDuration(void* row, size_t* length) { return word<&Row::dot11CFPMaxDuration>(row, length); }
void* get_dot11AuthenticationResponseTimeOut(void* row, size_t* length) { return word<&Row::dot11AuthenticationResponseTimeOut>(row, length); }
void* get_dot11PrivacyOptionImplemented(void* row, size_t* length) { return word<&Row::dot11PrivacyOptionImplemented>(row, length); }
void* get_dot11DesiredSSID(void* row, size_t* length) { return counted_octets<&Row::dot11DesiredSSID, &Row::dot11DesiredSSIDLen>(row, length); }
void* get_dot11DesiredBSSType(void* row, size_t* length) { return word<&Row::dot11DesiredBSSType>(row, length); }
void* get_dot11OperationalRateSet(void* row, size_t* length) { return counted_octets<&Row::dot11OperationalRateSet, &Row::dot11OperationalRateSetLen>(row, length); }
void* get_dot11BeaconPeriod(void* row, size_t* length) { return word<&Row::dot11BeaconPeriod>(row, length); }
void* get_dot11DTIMPeriod(void* row, size_t* length) { return word<&Row::dot11DTIMPeriod>(row, length); }
void* get_dot11AssociationResponseTimeOut(void* row, size_t* length) { return word<&Row::dot11AssociationResponseTimeOut>(row, length); }
void* get_dot11DisassociateReason(void* row, size_t* length) { return word<&Row::dot11DisassociateReason>(row, length); }
void* get_dot11DisassociateStation(void* row, size_t* length) { return counted_octets<&Row::dot11DisassociateStation, &Row::dot11DisassociateStationLen>(row, length); }
void* get_dot11DeauthenticateReason(void* row, size_t* length) { return word<&Row::dot11DeauthenticateReason>(row, length); }
void* get_dot11DeauthenticateStation(void* row, size_t* length) { return counted_octets<&Row::dot11DeauthenticateStation, &Row::dot11DeauthenticateStationLen>(row, length); }
void* get_dot11AuthenticateFailStatus(void* row, size_t* length) { return word<&Row::dot11AuthenticateFailStatus>(row, length); }
void* get_dot11AuthenticateFailStation(void* row, size_t* length) { return counted_octets<&Row::dot11AuthenticateFailStation, &Row::dot11AuthenticateFailStationLen>(row, length); }
void* get_dot11MultiDomainCapabilityImplemented(void* row, size_t* length) { return word<&Row::dot11MultiDomainCapabilityImplemented>(row, length); }
void* get_dot11MultiDomainCapabilityEnabled(void* row, size_t* length) { return word<&Row::dot11MultiDomainCapabilityEnabled>(row, length); }
void* get_dot11CountryString(void* row, size_t* length) { return fixed_octets<&Row::dot11CountryString, 3>(row, length); }

// Quirk: an access point never sleeps, so the row itself becomes active (1) before it is answered.
void* get_dot11PowerManagementMode(void* row, size_t* length) {
    field<&Row::dot11PowerManagementMode>(row) = 1;
    return word<&Row::dot11PowerManagementMode>(row, length);
}

int set_dot11StationID(void*, const void*, size_t) { return refuse_write(); }
int set_dot11MediumOccupancyLimit(void*, const void*, size_t) { return refuse_write(); }
int set_dot11CFPPeriod(void*, const void*, size_t) { return refuse_write(); }
int set_dot11CFPMaxDuration(void*, const void*, size_t) { return refuse_write(); }
int set_dot11AuthenticationResponseTimeOut(void*, const void*, size_t) { return refuse_write(); }
int set_dot11PowerManagementMode(void*, const void*, size_t) { return refuse_write(); }
int set_dot11DesiredSSID(void*, const void*, size_t) { return refuse_write(); }
int set_dot11DesiredBSSType(void*, const void*, size_t) { return refuse_write(); }
int set_dot11OperationalRateSet(void*, const void*, size_t) { return refuse_write(); }
int set_dot11BeaconPeriod(void*, const void*, size_t) { return refuse_write(); }
int set_dot11DTIMPeriod(void*, const void*, size_t) { return refuse_write(); }
int set_dot11AssociationResponseTimeOut(void*, const void*, size_t) { return refuse_write(); }
}
#pragma GCC visibility pop

constexpr Column columns[] = {
    READ_WRITE(1, dot11StationID, octet_string, key::mac),
    READ_WRITE(2, dot11MediumOccupancyLimit, integer, no_key),
    ALWAYS_ANSWERED(3, dot11CFPollable, integer, key::cf_pollable),
    READ_WRITE(4, dot11CFPPeriod, integer, no_key),
    READ_WRITE(5, dot11CFPMaxDuration, integer, no_key),
    READ_WRITE(6, dot11AuthenticationResponseTimeOut, gauge, key::authentication_response_time_out),
    ALWAYS_ANSWERED(7, dot11PrivacyOptionImplemented, integer, key::security),
    READ_WRITE(8, dot11PowerManagementMode, integer, no_key),
    READ_WRITE(9, dot11DesiredSSID, octet_string, key::ssid),
    READ_WRITE(10, dot11DesiredBSSType, integer, no_key),
    CHECKED_ONLY(11, dot11OperationalRateSet, octet_string, key::rate),
    READ_WRITE(12, dot11BeaconPeriod, integer, key::beacon_interval),
    READ_WRITE(13, dot11DTIMPeriod, integer, key::dtim_period),
    READ_WRITE(14, dot11AssociationResponseTimeOut, gauge, key::association_response_time_out),
    READ_ONLY(15, dot11DisassociateReason, integer, key::disassociate_reason),
    READ_ONLY(16, dot11DisassociateStation, octet_string, key::disassociate_station),
    READ_ONLY(17, dot11DeauthenticateReason, integer, key::deauthenticate_reason),
    READ_ONLY(18, dot11DeauthenticateStation, octet_string, key::deauthenticate_station),
    READ_ONLY(19, dot11AuthenticateFailStatus, integer, key::authenticate_fail_status),
    READ_ONLY(20, dot11AuthenticateFailStation, octet_string, key::authenticate_fail_station),
    READ_ONLY(21, dot11MultiDomainCapabilityImplemented, integer, key::dot11d),
    READ_ONLY(22, dot11MultiDomainCapabilityEnabled, integer, key::dot11d),
    ALWAYS_ANSWERED(23, dot11CountryString, octet_string, key::country),
};
// clang-format on

constexpr Table dot11StationConfigTable = {
    .name = "dot11StationConfigTable",
    .columns = columns,
    .indexes = 1,
    .row_size = sizeof(Row),
    .entries = GetStationConfigEntries,
    .table_data = GetStationConfigTableData,
    .index_count = GetStationConfigTableIndexCount,
    .rows_per_interface = 1,
    .entry_by_index = GetStationConfigEntryByIndex,
};

}  // namespace dot11
