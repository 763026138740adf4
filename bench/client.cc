// bench-client: asks the agent at 127.0.0.1:1161.
//
//   bench-client mark TEXT                     SETs the scalar of bench-floor.so to the text
//   bench-client count OID                     prints the number of varbinds below it
//   bench-client walk OID VARBINDS TIMES       walks so many of them by GETBULK of 50, and prints how many came in all
//   bench-client ask OID REPETITIONS TIMES PID prints requests per second, and microseconds of CPU time that the
//   process
//                                              took for each: GET if REPETITIONS is 0, otherwise GETBULK
//   bench-client quiet CONTROL TIMES OID...    moves the agent's clock (see tests/agent/shim.cc) and asks for the OIDs
//                                              by GETNEXT, again and again; prints the median and the 99th percentile
//                                              of the microseconds to the answer
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "control.h"
#include "util/net_snmp.h"

namespace {

using Oid = std::vector<oid>;
using Clock = std::chrono::steady_clock;

constexpr long bulk = 50;
constexpr char mark_oid[] = "1.3.6.1.4.1.8072.9999.9999.1.0";

[[noreturn]] void fail(const std::string& what) {
    fprintf(stderr, "bench-client: %s\n", what.c_str());
    exit(2);
}

Oid parsed(const std::string& text) {
    Oid subids;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, '.');)
        subids.push_back(std::stoul(part));
    return subids;
}

double microseconds(Clock::duration time) {
    return std::chrono::duration<double, std::micro>(time).count();
}

class Client {
  public:
    Client() {
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
        setenv("MIBS", "", 1);
        init_snmp("bench-client");
        netsnmp_session session;
        snmp_sess_init(&session);
        session.version = SNMP_VERSION_2c;
        session.peername = const_cast<char*>("127.0.0.1:1161");
        session.community = reinterpret_cast<u_char*>(const_cast<char*>("private"));
        session.community_len = strlen("private");
        session.timeout = 120'000'000;  // microseconds: an agent under valgrind is slow
        session.retries = 0;
        session_ = snmp_open(&session);
        if (!session_) fail("no session");
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { snmp_close(session_); }

    // Sends the PDU, which it takes over. Returns the names in the answer; a walk continues at the last one.
    std::vector<Oid> ask(netsnmp_pdu* pdu) {
        netsnmp_pdu* answer = nullptr;
        if (snmp_synch_response(session_, pdu, &answer) != STAT_SUCCESS || !answer) fail("no answer");
        if (answer->errstat != 0) fail(std::string("refused: ") + snmp_errstring(static_cast<int>(answer->errstat)));
        std::vector<Oid> names;
        for (const netsnmp_variable_list* value = answer->variables; value; value = value->next_variable) {
            if (value->type == SNMP_NOSUCHINSTANCE || value->type == SNMP_NOSUCHOBJECT) fail("no such value");
            names.emplace_back(value->name, value->name + value->name_length);
        }
        snmp_free_pdu(answer);
        return names;
    }

  private:
    netsnmp_session* session_;
};

netsnmp_pdu* request(int command, const std::vector<Oid>& names, long repetitions = 0) {
    netsnmp_pdu* pdu = snmp_pdu_create(command);
    if (command == SNMP_MSG_GETBULK) {
        pdu->non_repeaters = 0;
        pdu->max_repetitions = repetitions;
    }
    for (const Oid& name : names)
        snmp_add_null_var(pdu, name.data(), name.size());
    return pdu;
}

bool below(const Oid& root, const Oid& name) {
    return name.size() > root.size() && std::equal(root.begin(), root.end(), name.begin());
}

size_t count(Client& client, const Oid& root) {
    size_t found = 0;
    for (Oid at = root;;) {
        for (const Oid& name : client.ask(request(SNMP_MSG_GETBULK, {at}, bulk))) {
            if (!below(root, name)) return found;
            at = name;
            ++found;
        }
    }
}

// Asks for no row after the last, so that the figure includes no other table.
void walk(Client& client, const Oid& root, size_t varbinds) {
    Oid at = root;
    for (size_t left = varbinds; left > 0;) {
        const std::vector<Oid> names =
            client.ask(request(SNMP_MSG_GETBULK, {at}, static_cast<long>(std::min<size_t>(bulk, left))));
        if (names.empty() || names.size() > left || !below(root, names.back())) fail("the table is smaller than asked");
        at = names.back();
        left -= names.size();
    }
}

void mark(Client& client, const char* text) {
    netsnmp_pdu* pdu = snmp_pdu_create(SNMP_MSG_SET);
    const Oid name = parsed(mark_oid);
    snmp_pdu_add_variable(pdu, name.data(), name.size(), ASN_OCTET_STR, text, strlen(text));
    client.ask(pdu);
}

double cpu_microseconds(const std::string& pid) {
    double nanoseconds = 0;
    if (!(std::ifstream("/proc/" + pid + "/schedstat") >> nanoseconds)) fail("no process " + pid);
    return nanoseconds / 1e3;
}

void ask(Client& client, const Oid& name, long repetitions, int times, const std::string& pid) {
    const int command = repetitions == 0 ? SNMP_MSG_GET : SNMP_MSG_GETBULK;
    client.ask(request(command, {name}, repetitions));
    const double cpu = cpu_microseconds(pid);
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < times; ++i)
        client.ask(request(command, {name}, repetitions));
    const double wall = microseconds(Clock::now() - start);
    printf("%.1f %.1f\n", times * 1e6 / wall, (cpu_microseconds(pid) - cpu) / times);
}

agent_control& control_at(const char* path) {
    const int file = open(path, O_RDWR | O_CLOEXEC);
    void* mapped = mmap(nullptr, sizeof(agent_control), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped == MAP_FAILED) fail(std::string("cannot map ") + path);
    close(file);
    return *static_cast<agent_control*>(mapped);
}

// Each answer reloads every table: none keeps its rows for 60 seconds.
void quiet(Client& client, agent_control& control, int times, const std::vector<Oid>& names) {
    std::vector<double> latencies;
    if (control.now == 0) control.now = time(nullptr);
    for (int i = 0; i < times; ++i) {
        control.now = control.now + 60;
        const Clock::time_point start = Clock::now();
        client.ask(request(SNMP_MSG_GETNEXT, names));
        latencies.push_back(microseconds(Clock::now() - start));
    }
    std::sort(latencies.begin(), latencies.end());
    const size_t last = latencies.size() - 1;
    printf("%.0f %.0f\n", latencies[last / 2], latencies[last * 99 / 100]);
}

int usage() {
    fprintf(stderr, "usage: bench-client mark|count|walk|ask|quiet ARGUMENT...    (see bench/client.cc)\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const std::string command = arguments.empty() ? "" : arguments[0];
    Client client;
    if (command == "mark" && arguments.size() == 2) {
        mark(client, argv[2]);
    } else if (command == "walk" && arguments.size() == 4) {
        const size_t varbinds = std::stoul(arguments[2]);
        const size_t times = std::stoul(arguments[3]);
        for (size_t i = 0; i < times; ++i)
            walk(client, parsed(arguments[1]), varbinds);
        printf("%zu\n", varbinds * times);
    } else if (command == "count" && arguments.size() == 2) {
        printf("%zu\n", count(client, parsed(arguments[1])));
    } else if (command == "ask" && arguments.size() == 5) {
        ask(client, parsed(arguments[1]), std::stol(arguments[2]), std::stoi(arguments[3]), arguments[4]);
    } else if (command == "quiet" && arguments.size() > 3) {
        std::vector<Oid> names;
        for (size_t i = 3; i < arguments.size(); ++i)
            names.push_back(parsed(arguments[i]));
        quiet(client, control_at(argv[2]), std::stoi(arguments[2]), names);
    } else {
        return usage();
    }
    return 0;
}
