#include "agent/catalogue.h"

#include "access/station_config.h"
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
constexpr oid station_config_oid[] = {1, 2, 840, 10036, 1, 1};
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
// clang-format on

}  // namespace

const Table catalogue::dot11StationConfigTable = {
    "dot11StationConfigTable", station_config_oid, station_config_columns,   1,
    MissingRow::refused,       Undo::strict,       sizeof(StationConfigRow), ROUTINES(dot11StationConfigTable)};
