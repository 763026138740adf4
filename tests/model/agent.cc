#include "agent.h"

#include <fcntl.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "access/iterator.h"
#include "agent/handler.h"
#include "agent/module.h"
#include "util/net_snmp.h"
// Needs what the other headers of the agent declare.
#include <net-snmp/agent/agent_callbacks.h>

using namespace dot11;

extern "C" {
// The agent's own, which its headers do not declare.
int vacm_in_view_callback(int major, int minor, void* server_argument, void* client_argument);
extern netsnmp_session* main_session;

// The address sanitizer's own count, where there is one.
size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));
}

namespace {

std::span<const uint8_t> incoming;
uint8_t response[65536];
size_t response_length;
int socket_number;

int receive(netsnmp_transport*, void* buffer, int size, void**, int*) {
    const size_t length = std::min(incoming.size(), static_cast<size_t>(size));
    std::copy_n(incoming.begin(), length, static_cast<uint8_t*>(buffer));
    return static_cast<int>(length);
}

int send(netsnmp_transport*, const void* buffer, int size, void**, int*) {
    response_length = std::min(sizeof response, static_cast<size_t>(size));
    memcpy(response, buffer, response_length);
    return size;
}

netsnmp_pdu* parsed(std::string message) {
    auto* octets = reinterpret_cast<u_char*>(message.data());
    size_t length = message.size();
    long version = 0;
    u_char community[64];
    size_t community_length = sizeof community;
    netsnmp_pdu* pdu = snmp_pdu_create(SNMP_MSG_SET);
    octets = snmp_comstr_parse(octets, &length, community, &community_length, &version);
    snmp_pdu_parse(pdu, octets, &length);
    pdu->version = version;
    pdu->community = static_cast<u_char*>(netsnmp_memdup(community, community_length));
    pdu->community_len = community_length;
    return pdu;
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

bool has_options() {
    return getenv("DOT11_OPTIONS") != nullptr;
}

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
    complete_answers = has_options();
    max_age = has_options() ? 1 : 0;
    netsnmp_register_agent_nsap(make_transport());
}

std::span<const uint8_t> answer_to(std::span<const uint8_t> message) {
    incoming = message;
    response_length = 0;
    fd_set ready;
    FD_ZERO(&ready);
    FD_SET(socket_number, &ready);
    snmp_read(&ready);
    netsnmp_check_outstanding_agent_requests();
    return {response, response_length};
}

std::optional<Pdu> answer_to(const Pdu& request) {
    const std::string message = encoded(request);
    return decoded(answer_to(octets_of(message)));
}

// The agent decodes the message as it does every other; only then the PDU is made into one of a master.
std::optional<Pdu> answer_to(Phase phase, long transaction, const std::vector<Varbind>& varbinds) {
    static constexpr int commands[] = {SNMP_MSG_INTERNAL_SET_RESERVE1, SNMP_MSG_INTERNAL_SET_RESERVE2,
                                       SNMP_MSG_INTERNAL_SET_ACTION,   SNMP_MSG_INTERNAL_SET_COMMIT,
                                       SNMP_MSG_INTERNAL_SET_FREE,     SNMP_MSG_INTERNAL_SET_UNDO};
    response_length = 0;
    netsnmp_pdu* pdu = parsed(encoded({set_request, 1, 0, 0, varbinds}));
    pdu->command = commands[static_cast<int>(phase)];
    pdu->transid = transaction;
    handle_snmp_packet(NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE, main_session, 1, pdu, nullptr);
    snmp_free_pdu(pdu);
    return decoded(std::span(response, response_length));
}

bool live_octets_are_exact() {
    return __sanitizer_get_current_allocated_bytes != nullptr;
}

size_t live_octets() {
    if (live_octets_are_exact()) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}
