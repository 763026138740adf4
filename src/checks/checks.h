// Whether a value that a manager wants to SET is acceptable for its column: one check for every writable column, and
// after it a site check, `check_<column>_local`, for rules of this access point beyond those of the MIB.
//
// All have the same signature:
//
//   type         ASN.1 tag of the value sent: 2 INTEGER, 4 OCTET STRING
//   value        the value sent; refused when null. An INTEGER is a 32-bit integer in the machine's byte order, which
//                may be unaligned
//   length       the number of octets of an OCTET STRING; ignored for an INTEGER
//   old_value    the column's present value, null if there is none; used only for row-status columns: a 32-bit
//                integer, taken as 0 (no such row) if null or shorter
//   old_length   its length in bytes
//
// The result is an SNMP error-status (RFC 3416, section 3), decided in this order:
//
//   5  genErr               no value
//   7  wrongType            not the column's type
//   10 wrongValue           a number out of range, or a wrong length
//   12 inconsistentValue    a number outside an enumeration. Quirk: not 10
//   any                     row-status columns: the result of Net-SNMP's check_rowstatus_transition for old and new
//   status any                     the result of check_<column>_local, which is called only for accepted values; all
//   return 0
//
// The checks have no state. Some belong to columns of tables that are not served.
#pragma once

#include <stddef.h>

namespace dot11 {

using Check = int(int type, const void* value, size_t length, const void* old_value, size_t old_length);

#pragma GCC visibility push(default)
extern "C" {

// clang-format off
Check check_dot11WEPKeyMappingAddress,           check_dot11WEPKeyMappingAddress_local;
Check check_dot11WEPKeyMappingWEPOn,             check_dot11WEPKeyMappingWEPOn_local;
Check check_dot11WEPKeyMappingValue,             check_dot11WEPKeyMappingValue_local;
Check check_dot11WEPKeyMappingStatus,            check_dot11WEPKeyMappingStatus_local;
Check check_dot11CurrentChannelNumber,           check_dot11CurrentChannelNumber_local;
Check check_dot11CurrentDwellTime,               check_dot11CurrentDwellTime_local;
Check check_dot11CurrentSet,                     check_dot11CurrentSet_local;
Check check_dot11CurrentPattern,                 check_dot11CurrentPattern_local;
Check check_dot11CurrentIndex,                   check_dot11CurrentIndex_local;
Check check_dot11CurrentChannel,                 check_dot11CurrentChannel_local;
Check check_dot11CurrentCCAMode,                 check_dot11CurrentCCAMode_local;
Check check_dot11EDThreshold,                    check_dot11EDThreshold_local;
Check check_dot11CurrentRegDomain,               check_dot11CurrentRegDomain_local;
Check check_dot11StationID,                      check_dot11StationID_local;
Check check_dot11MediumOccupancyLimit,           check_dot11MediumOccupancyLimit_local;
Check check_dot11CFPPeriod,                      check_dot11CFPPeriod_local;
Check check_dot11CFPMaxDuration,                 check_dot11CFPMaxDuration_local;
Check check_dot11AuthenticationResponseTimeOut,  check_dot11AuthenticationResponseTimeOut_local;
Check check_dot11PowerManagementMode,            check_dot11PowerManagementMode_local;
Check check_dot11DesiredSSID,                    check_dot11DesiredSSID_local;
Check check_dot11DesiredBSSType,                 check_dot11DesiredBSSType_local;
Check check_dot11OperationalRateSet,             check_dot11OperationalRateSet_local;
Check check_dot11BeaconPeriod,                   check_dot11BeaconPeriod_local;
Check check_dot11DTIMPeriod,                     check_dot11DTIMPeriod_local;
Check check_dot11AssociationResponseTimeOut,     check_dot11AssociationResponseTimeOut_local;
Check check_dot11CurrentTxAntenna,               check_dot11CurrentTxAntenna_local;
Check check_dot11CurrentRxAntenna,               check_dot11CurrentRxAntenna_local;
Check check_dot11SupportedTxAntenna,             check_dot11SupportedTxAntenna_local;
Check check_dot11SupportedRxAntenna,             check_dot11SupportedRxAntenna_local;
Check check_dot11DiversitySelectionRx,           check_dot11DiversitySelectionRx_local;
Check check_dot11CurrentTxPowerLevel,            check_dot11CurrentTxPowerLevel_local;
Check check_dot11Address,                        check_dot11Address_local;
Check check_dot11GroupAddressesStatus,           check_dot11GroupAddressesStatus_local;
Check check_dot11AuthenticationAlgorithmsEnable, check_dot11AuthenticationAlgorithmsEnable_local;
Check check_dot11CCAWatchdogTimerMax,            check_dot11CCAWatchdogTimerMax_local;
Check check_dot11CCAWatchdogCountMax,            check_dot11CCAWatchdogCountMax_local;
Check check_dot11CCAWatchdogTimerMin,            check_dot11CCAWatchdogTimerMin_local;
Check check_dot11CCAWatchdogCountMin,            check_dot11CCAWatchdogCountMin_local;
Check check_dot11PrivacyInvoked,                 check_dot11PrivacyInvoked_local;
Check check_dot11WEPDefaultKeyID,                check_dot11WEPDefaultKeyID_local;
Check check_dot11WEPKeyMappingLength,            check_dot11WEPKeyMappingLength_local;
Check check_dot11ExcludeUnencrypted,             check_dot11ExcludeUnencrypted_local;
Check check_dot11ERPBCCOptionEnabled,            check_dot11ERPBCCOptionEnabled_local;
Check check_dot11DSSSOFDMOptionEnabled,          check_dot11DSSSOFDMOptionEnabled_local;
Check check_dot11ShortSlotTimeOptionImplemented, check_dot11ShortSlotTimeOptionImplemented_local;
Check check_dot11ShortSlotTimeOptionEnabled,     check_dot11ShortSlotTimeOptionEnabled_local;
Check check_dot11WEPDefaultKeyValue,             check_dot11WEPDefaultKeyValue_local;
Check check_dot11RTSThreshold,                   check_dot11RTSThreshold_local;
Check check_dot11ShortRetryLimit,                check_dot11ShortRetryLimit_local;
Check check_dot11LongRetryLimit,                 check_dot11LongRetryLimit_local;
Check check_dot11FragmentationThreshold,         check_dot11FragmentationThreshold_local;
Check check_dot11MaxTransmitMSDULifetime,        check_dot11MaxTransmitMSDULifetime_local;
Check check_dot11MaxReceiveLifetime,             check_dot11MaxReceiveLifetime_local;
// clang-format on

}  // extern "C"
#pragma GCC visibility pop

}  // namespace dot11
