#include "checks/checks.h"

#include <stdint.h>
#include <string.h>

#include "util/error_status.h"

namespace dot11 {

// Net-SNMP's rule for RowStatus (RFC 2579): 0 or an error-status. Declared here, because nothing else of the agent is
// needed.
extern "C" char check_rowstatus_transition(int old_status, int new_status);

namespace {

// ASN.1 universal tags (ITU-T X.680)
constexpr int integer = 2;
constexpr int octet_string = 4;

struct Request {
    int type;
    const void* value;
    size_t length;
    const void* old_value;
    size_t old_length;
};

int32_t number_at(const void* value) {
    int32_t number;
    memcpy(&number, value, sizeof number);
    return number;
}

// A rule: the type that it applies to, and the error that it finds in a value of that type.

struct Any {
    static constexpr int type = integer;
    int operator()(const Request&) const { return no_error; }
};

struct Range {
    static constexpr int type = integer;
    int32_t lowest, highest;

    int operator()(const Request& request) const {
        const int32_t number = number_at(request.value);
        return number >= lowest && number <= highest ? no_error : wrong_value;
    }
};

struct Octets {
    static constexpr int type = octet_string;
    size_t shortest, longest;

    int operator()(const Request& request) const {
        return request.length >= shortest && request.length <= longest ? no_error : wrong_value;
    }
};

struct OneOf {
    static constexpr int type = integer;
    uint32_t members;  // bit n is set if the number n is one of them

    constexpr explicit OneOf(auto... numbers) : members(((uint32_t{1} << numbers) | ...)) {}

    int operator()(const Request& request) const {
        const auto number = static_cast<uint32_t>(number_at(request.value));
        return number < 32 && (members >> number & 1) != 0 ? no_error : inconsistent_value;
    }
};

struct RowStatus {
    static constexpr int type = integer;

    int operator()(const Request& request) const {
        const int32_t status = number_at(request.value);
        if (status < 1 || status > 6) return inconsistent_value;
        const bool exists = request.old_value && request.old_length >= sizeof status;
        return check_rowstatus_transition(exists ? number_at(request.old_value) : 0, status);
    }
};

template <class Rule>
int check(const Request& request, const Rule& rule, Check& local) {
    if (!request.value) return generic_error;
    if (request.type != Rule::type) return wrong_type;
    const int error = rule(request);
    if (error != no_error) return error;
    return local(request.type, request.value, request.length, request.old_value, request.old_length);
}

}  // namespace

#define CHECK(column, ...)                                                                                     \
    int check_##column##_local(int, const void*, size_t, const void*, size_t) {                                \
        return no_error;                                                                                       \
    }                                                                                                          \
    int check_##column(int type, const void* value, size_t length, const void* old_value, size_t old_length) { \
        return check({type, value, length, old_value, old_length}, __VA_ARGS__, check_##column##_local);       \
    }

// clang-format off
CHECK(dot11WEPKeyMappingAddress,           Octets{6, 6})
CHECK(dot11WEPKeyMappingWEPOn,             OneOf{1, 2})
CHECK(dot11WEPKeyMappingValue,             Octets{5, 5})
CHECK(dot11WEPKeyMappingStatus,            RowStatus{})
CHECK(dot11CurrentChannelNumber,           Range{0, 99})
CHECK(dot11CurrentDwellTime,               Range{1, 65535})
CHECK(dot11CurrentSet,                     Range{1, 255})
CHECK(dot11CurrentPattern,                 Range{0, 255})
CHECK(dot11CurrentIndex,                   Range{1, 255})
CHECK(dot11CurrentChannel,                 Range{1, 14})
CHECK(dot11CurrentCCAMode,                 OneOf{1, 2, 4})
CHECK(dot11EDThreshold,                    Any{})
CHECK(dot11CurrentRegDomain,               Any{})
CHECK(dot11StationID,                      Octets{6, 6})
CHECK(dot11MediumOccupancyLimit,           Range{0, 1000})
CHECK(dot11CFPPeriod,                      Range{0, 255})
CHECK(dot11CFPMaxDuration,                 Range{0, 65535})
CHECK(dot11AuthenticationResponseTimeOut,  Range{1, INT32_MAX})
CHECK(dot11PowerManagementMode,            OneOf{1, 2})
CHECK(dot11DesiredSSID,                    Octets{0, 32})
CHECK(dot11DesiredBSSType,                 OneOf{1, 2, 3})
CHECK(dot11OperationalRateSet,             Octets{1, 126})
CHECK(dot11BeaconPeriod,                   Range{1, 65535})
CHECK(dot11DTIMPeriod,                     Range{1, 255})
CHECK(dot11AssociationResponseTimeOut,     Range{1, INT32_MAX})
CHECK(dot11CurrentTxAntenna,               Range{1, 255})
CHECK(dot11CurrentRxAntenna,               Range{1, 255})
CHECK(dot11SupportedTxAntenna,             OneOf{1, 2})
CHECK(dot11SupportedRxAntenna,             OneOf{1, 2})
CHECK(dot11DiversitySelectionRx,           OneOf{1, 2})
CHECK(dot11CurrentTxPowerLevel,            Range{1, 8})
CHECK(dot11Address,                        Octets{6, 6})
CHECK(dot11GroupAddressesStatus,           RowStatus{})
CHECK(dot11AuthenticationAlgorithmsEnable, OneOf{1, 2})
CHECK(dot11CCAWatchdogTimerMax,            Any{})
CHECK(dot11CCAWatchdogCountMax,            Any{})
CHECK(dot11CCAWatchdogTimerMin,            Any{})
CHECK(dot11CCAWatchdogCountMin,            Any{})
CHECK(dot11PrivacyInvoked,                 OneOf{1, 2})
CHECK(dot11WEPDefaultKeyID,                Range{0, 3})
CHECK(dot11WEPKeyMappingLength,            Range{10, INT32_MAX})
CHECK(dot11ExcludeUnencrypted,             OneOf{1, 2})
CHECK(dot11ERPBCCOptionEnabled,            OneOf{1, 2})
CHECK(dot11DSSSOFDMOptionEnabled,          OneOf{1, 2})
CHECK(dot11ShortSlotTimeOptionImplemented, OneOf{1, 2})
CHECK(dot11ShortSlotTimeOptionEnabled,     OneOf{1, 2})
CHECK(dot11WEPDefaultKeyValue,             Octets{5, 5})
CHECK(dot11RTSThreshold,                   Range{0, 2347})
CHECK(dot11ShortRetryLimit,                Range{1, 255})
CHECK(dot11LongRetryLimit,                 Range{1, 255})
CHECK(dot11FragmentationThreshold,         Range{256, 2346})
CHECK(dot11MaxTransmitMSDULifetime,        Range{1, INT32_MAX})
CHECK(dot11MaxReceiveLifetime,             Range{1, INT32_MAX})
// clang-format on

}  // namespace dot11
