#include "agent.h"

#include <fcntl.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "agent/tables.h"
#include "util/net_snmp.h"
// Needs what the other headers of the agent declare.
#include <net-snmp/agent/agent_callbacks.h>

extern "C" {
int vacm_in_view_callback(int major, int minor, void* server_argument, void* client_argument);

// The address sanitizer's own count, where there is one.
size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));
}

namespace {

std::span<const uint8_t> request;
uint8_t response[65536];
size_t response_length;
int socket_number;

int receive(netsnmp_transport*, void* buffer, int size, void**, int*) {
    const size_t length = std::min(request.size(), static_cast<size_t>(size));
    memcpy(buffer, request.data(), length);
    return static_cast<int>(length);
}

int send(netsnmp_transport*, const void* buffer, int size, void**, int*) {
    response_length = std::min(sizeof response, static_cast<size_t>(size));
    memcpy(response, buffer, response_length);
    return size;
}

int close_nothing(netsnmp_transport*) {
    return 0;
}

// The agent takes a callback's messages without asking the TCP wrappers.
char* address(netsnmp_transport*, const void*, int) {
    return strdup("callback: in memory");
}

netsnmp_transport* make_transport() {
    auto* transport = static_cast<netsnmp_transport*>(calloc(1, sizeof(netsnmp_transport)));
    static const oid domain[] = {1, 3, 6, 1, 4, 1, 8072, 3, 3, 3};
    transport->domain = domain;
    transport->domain_length = static_cast<int>(std::size(domain));
    // The agent asks only for a number that a set of descriptors can hold.
    transport->sock = socket_number = open("/dev/null", O_RDONLY | O_CLOEXEC);
    transport->msgMaxSize = sizeof response;
    transport->f_recv = receive;
    transport->f_send = send;
    transport->f_close = close_nothing;
    transport->f_fmtaddr = address;
    return transport;
}

}  // namespace

void start_agent() {
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_NO_ROOT_ACCESS, 1);
    setenv("MIBS", "", 1);
    snmp_disable_log();
    snmp_disable_stderrlog();
    init_agent("in-process");
    for (const int check :
         {SNMPD_CALLBACK_ACM_CHECK, SNMPD_CALLBACK_ACM_CHECK_INITIAL, SNMPD_CALLBACK_ACM_CHECK_SUBTREE})
        snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, check, vacm_in_view_callback, nullptr, 0);
    init_ieee802dot11();
    init_snmp("in-process");
    netsnmp_register_agent_nsap(make_transport());
}

std::span<const uint8_t> answer_to(std::span<const uint8_t> message) {
    request = message;
    response_length = 0;
    fd_set ready;
    FD_ZERO(&ready);
    FD_SET(socket_number, &ready);
    snmp_read(&ready);
    netsnmp_check_outstanding_agent_requests();
    return {response, response_length};
}

bool live_octets_are_exact() {
    return __sanitizer_get_current_allocated_bytes != nullptr;
}

size_t live_octets() {
    if (live_octets_are_exact()) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}
