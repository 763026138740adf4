#include "access/station_config.h"

#include "access/accessors.h"
#include "access/iterator.h"
#include "backend/smt/station_config.h"

namespace {

using Row = StationConfigRow;

LoopContext<Row> loop;
LastPass last_pass;

constexpr ReloadingTable table = {
    .entries = GetStationConfigEntries,
    .table_data = GetStationConfigTableData,
    .index_count = GetStationConfigTableIndexCount,
    .entry_by_index = GetStationConfigEntryByIndex,
    .rows_per_interface = 1,
    .records = max_interfaces,
    .indexes = 1,
};

}  // namespace

netsnmp_variable_list* dot11StationConfigTable_get_first_data_point(void** loop_context, void** data_context,
                                                                    netsnmp_variable_list* put_index_data,
                                                                    netsnmp_iterator_info* info) {
    rewind_walk(loop, loop_context);
    return dot11StationConfigTable_get_next_data_point(loop_context, data_context, put_index_data, info);
}

netsnmp_variable_list* dot11StationConfigTable_get_next_data_point(void** loop_context, void**,
                                                                   netsnmp_variable_list* put_index_data,
                                                                   netsnmp_iterator_info*) {
    return next_row<Row>(table, last_pass, loop_context, put_index_data);
}

void* dot11StationConfigTable_context_convert_function(void* loop_context, netsnmp_iterator_info*) {
    return copy_of_row<Row>(loop_context);
}

void dot11StationConfigTable_data_free(void* row, netsnmp_iterator_info*) {
    free(row);
}

void* dot11StationConfigTable_create_data_context(netsnmp_variable_list*) {
    return nullptr;
}

int dot11StationConfigTable_commit_row(void**, int) {
    return 0;
}

// clang-format off
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

// An access point never sleeps: the row itself becomes active (1) before it is answered. Meant.
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
// clang-format on
