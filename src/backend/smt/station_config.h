// dot11StationConfigTable: one row for each wireless interface.
#pragma once

#include <stddef.h>

#include "store/answer.h"
#include "store/interfaces.h"

namespace dot11 {

namespace key {
inline constexpr StoreKey cf_pollable = {"interface", "dot11-cf-pollable"};
inline constexpr StoreKey authentication_response_time_out = {"interface", "dot11-authentication-response-time-out"};
inline constexpr StoreKey privacy_option_implemented = {"interface", "dot11-privacy-option-implemented"};
inline constexpr StoreKey security = {"interface", "security"};
inline constexpr StoreKey ssid = {"interface", "ssid"};
inline constexpr StoreKey association_response_time_out = {"interface", "dot11-association-response-time-out"};
inline constexpr StoreKey disassociate_reason = {"interface", "dot11-disassociate-reason"};
inline constexpr StoreKey disassociate_station = {"interface", "dot11-disassociate-station"};
inline constexpr StoreKey deauthenticate_reason = {"interface", "dot11-deauthenticate-reason"};
inline constexpr StoreKey deauthenticate_station = {"interface", "dot11-deauthenticate-station"};
inline constexpr StoreKey authenticate_fail_status = {"interface", "dot11-authenticate-fail-status"};
inline constexpr StoreKey authenticate_fail_station = {"interface", "dot11-authenticate-fail-station"};
inline constexpr StoreKey dtim_period = {"bss", "dtim-period"};
inline constexpr StoreKey beacon_interval = {"radio", "beacon-interval"};
inline constexpr StoreKey dot11d = {"radio", "dot11d"};
inline constexpr StoreKey country = {"system", "country"};
}  // namespace key

// Integers have 32 bits; TruthValues (RFC 2579) are 1 for true and 2 for false; MAC addresses use 6 of their 8 octets.
struct StationConfigRow {
    uint32_t ifIndex;
    uint8_t dot11StationID[8];
    uint32_t dot11StationIDLen;
    int32_t dot11MediumOccupancyLimit;  // TU
    int32_t dot11CFPollable;
    int32_t dot11CFPPeriod;                      // DTIM intervals
    int32_t dot11CFPMaxDuration;                 // TU
    int32_t dot11AuthenticationResponseTimeOut;  // TU
    int32_t privacy_option_configured;           // no column serves it
    int32_t dot11PrivacyOptionImplemented;
    int32_t dot11PowerManagementMode;
    uint8_t dot11DesiredSSID[32];
    uint32_t dot11DesiredSSIDLen;
    int32_t dot11DesiredBSSType;
    uint8_t dot11OperationalRateSet[128];  // 500 kbit/s each
    uint32_t dot11OperationalRateSetLen;
    int32_t dot11BeaconPeriod;                // TU
    int32_t dot11DTIMPeriod;                  // beacon intervals
    int32_t dot11AssociationResponseTimeOut;  // TU
    int32_t dot11DisassociateReason;
    uint8_t dot11DisassociateStation[8];
    uint32_t dot11DisassociateStationLen;
    int32_t dot11DeauthenticateReason;
    uint8_t dot11DeauthenticateStation[8];
    uint32_t dot11DeauthenticateStationLen;
    int32_t dot11AuthenticateFailStatus;
    uint8_t dot11AuthenticateFailStation[8];
    uint32_t dot11AuthenticateFailStationLen;
    int32_t dot11MultiDomainCapabilityImplemented;
    int32_t dot11MultiDomainCapabilityEnabled;  // -1 when unknown
    uint8_t dot11CountryString[3];
};

static_assert(sizeof(StationConfigRow) == 292);
static_assert(offsetof(StationConfigRow, dot11DesiredSSID) == 48);
static_assert(offsetof(StationConfigRow, dot11OperationalRateSet) == 88);
static_assert(offsetof(StationConfigRow, dot11BeaconPeriod) == 220);
static_assert(offsetof(StationConfigRow, dot11CountryString) == 288);

struct StationConfigScratch {
    ScratchText mac, cf_pollable, authentication_time_out, privacy_option, security, ssid, beacon_interval, dtim_period,
        dot11d, association_time_out, disassociate_reason, disassociate_station, deauthenticate_reason,
        deauthenticate_station, authenticate_fail_status, authenticate_fail_station, bss, radio, country;
    ScratchText rates[8];
    uint32_t rate_count;
};

#pragma GCC visibility push(default)
extern "C" {

extern StationConfigRow sinfo[max_interfaces];
extern StationConfigScratch sta_info;

int GetStationConfigEntries(void);               // enumerates the interfaces; 1 = there are rows, 0 = there are none
uint32_t GetStationConfigTableIndexCount(void);  // rows found by the latest enumeration
int GetStationConfigTableData(void);             // fills the rows; 1, or -1 when out of memory on the way
int GetStationConfigEntryByIndex(uint32_t row, void* destination);  // copies one StationConfigRow; see copy_row

// Writers into the store, for callers other than SNMP. `index` points to a row's interface index. All return
// setTableData's result, -1 when out of memory, 0 when the interface has no BSS or no radio to write to. A trailing
// `length` is ignored.
int32_t SetDesiredSSID(const uint32_t* index, const char* ssid, uint32_t length);
int32_t SetBeaconPeriod(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetDtimPeriod(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetStationId(const uint32_t* index, const uint8_t* octets, uint32_t count);  // -1 also for more than 9 octets
int32_t SetAuthenticationResponseTimeout(const uint32_t* index, const uint32_t* value, uint32_t length);
int32_t SetAssociationResponseTimeout(const uint32_t* index, const uint32_t* value, uint32_t length);
}
#pragma GCC visibility pop

}  // namespace dot11
