// The module's tables in a process of their own, behind any agent that speaks AgentX (RFC 2741).
//
// Loads the same ieee802dot11.so that snmpd loads by `dlmod`, registers its tables with the master agent, and serves
// them until a signal stops it. It has none of snmpd's own tables, not even UCD-DLMOD-MIB.
#include <dlfcn.h>
#include <getopt.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/signalfd.h>
#include <sysexits.h>
#include <unistd.h>

#include <initializer_list>

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
// clang-format on

namespace {

constexpr char program[] = "ieee802dot11-agentx";
constexpr int subagent = 1;         // value of NETSNMP_DS_AGENT_ROLE; 0 is a master
constexpr int ping_interval_s = 5;  // how soon the tables are back after a restart of the master

struct Options {
    const char* socket = nullptr;  // null: the configuration's, or Net-SNMP's default
    const char* configuration = nullptr;
    const char* module = DOT11_MODULE;
    bool foreground = false;
};

bool stopped = false;

void usage(FILE* out) {
    fprintf(out, "Usage: %s [-x SOCKET] [-c FILE] [-m MODULE] [-f]\n\n", program);
    fputs(
        "Serves the IEEE802dot11-MIB behind an SNMP agent, over AgentX.\n\n"
        "  -x SOCKET  the master agent's socket, such as /run/agentx/master or tcp:localhost:705\n"
        "  -c FILE    read this configuration file and no other\n"
        "  -m MODULE  load this file instead of " DOT11_MODULE
        "\n"
        "  -f         stay in the foreground, and log to standard error instead of syslog\n"
        "  -h, -V     print this help, or the version, and exit\n\n"
        "See ieee802dot11-agentx(8).\n",
        out);
}

[[noreturn]] void print_and_exit(int option) {
    if (option == 'V') {
        printf("%s %s\n", program, DOT11_VERSION);
    } else {
        usage(stdout);
    }
    exit(fflush(stdout) == 0 ? EX_OK : EX_IOERR);
}

[[noreturn]] void refuse_usage() {
    usage(stderr);
    exit(EX_USAGE);
}

Options parse_options(int argc, char** argv) {
    static constexpr option names[] = {
        {"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'V'}, {nullptr, 0, nullptr, 0}};
    Options options;
    for (int option = 0; (option = getopt_long(argc, argv, "x:c:m:fhV", names, nullptr)) != -1;) {
        switch (option) {
            case 'x':
                options.socket = optarg;
                break;
            case 'c':
                options.configuration = optarg;
                break;
            case 'm':
                options.module = optarg;
                break;
            case 'f':
                options.foreground = true;
                break;
            case 'h':
            case 'V':
                print_and_exit(option);
            default:
                refuse_usage();
        }
    }
    if (optind != argc) refuse_usage();
    return options;
}

void log_to(bool foreground) {
    if (foreground) {
        snmp_enable_stderrlog();
    } else {
        snmp_enable_syslog_ident(program, LOG_DAEMON);
    }
}

// This process needs no MIB files.
void configure_library(const Options& options) {
    setenv("MIBS", "", 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, subagent);
    if (options.socket) {
        netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, options.socket);
    }
    if (options.configuration) {
        netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, options.configuration);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    }
}

// Call it after init_agent(), which sets 15 s, and before the configuration is read, which may set another interval.
void set_ping_interval() {
    netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_PING_INTERVAL, ping_interval_s);
}

// Registers the tables. Call it before the configuration is read, which may hold the module's own tokens.
void load_module(const char* path) {
    void* const module = dlopen(path, RTLD_NOW);
    auto* const init = module ? reinterpret_cast<void (*)()>(dlsym(module, "init_ieee802dot11")) : nullptr;
    if (!init) {
        fprintf(stderr, "%s: the module cannot be loaded: %s\n", program, dlerror());
        exit(EX_UNAVAILABLE);
    }
    init();
}

void handle_signal(int file, void*) {
    signalfd_siginfo arrived = {};
    if (read(file, &arrived, sizeof arrived) != sizeof arrived) return;
    if (arrived.ssi_signo == SIGHUP) {
        update_config();
    } else {
        stopped = true;
    }
}

// Signals arrive through a file that the agent's loop waits for, so that none is lost between a check and the next
// wait.
bool catch_signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, number);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);
    const int file = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    return file >= 0 && register_readfd(file, handle_signal, nullptr) == FD_REGISTERED_OK;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parse_options(argc, argv);
    configure_library(options);
    log_to(options.foreground);
    init_agent(program);
    set_ping_interval();
    load_module(options.module);
    if (!options.foreground && netsnmp_daemonize(1, 0) != 0) return EX_OSERR;
    if (!catch_signals()) return EX_OSERR;
    init_snmp(program);
    while (!stopped)
        agent_check_and_process(1);
    // No state outlives the process. Set this late because, with it, Net-SNMP reads no configuration file but that of
    // -c.
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
    snmp_shutdown(program);
    return EX_OK;
}
