// A stock snmpd with the built module, in a network namespace of the test's own, and an SNMP client to ask it.
//
// Each test has a namespace of its own (main.cc). An Agent has a folder of its own with its store, which the project's
// tool fills, its configuration and its log. Its destructor stops it; the test fails if it ended in any other way, or
// if its log says that a module was not loaded.
//
// With the environment variable AGENT_LINES set, every agent's configuration has these lines too.
//
// With the environment variable AGENT_VALGRIND set, the agent runs under valgrind, and errors and leaks fail the test.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "control.h"
#include "util/net_snmp.h"

// A value of a varbind, written as a test's table shows it: "INTEGER 100", "Gauge32 1", "Counter32 7", "STRING 00 1a
// 2b", "noSuchInstance", "noSuchObject", "endOfMibView", "NULL".
std::string shown(const netsnmp_variable_list& varbind);
std::string shown_octets(const std::string& octets);  // "STRING 61 62" for "ab"

// A value for a SET.
struct Value {
    u_char type;
    std::string octets;

    static Value integer(int64_t number);
    static Value string(const std::string& octets) { return {ASN_OCTET_STR, octets}; }
    static Value of_type(u_char type, const std::string& octets = {}) { return {type, octets}; }
};

struct Varbind {
    std::string oid;  // dotted, below 1.2.840.10036 where it starts there: "1.1.1.12.11"
    std::string value;

    bool operator==(const Varbind&) const = default;
};
void PrintTo(const Varbind& varbind, std::ostream* out);

struct Response {
    int status = -1;  // SNMP error status; -1: no answer
    int index = 0;    // of the varbind with the error, from 1
    std::vector<Varbind> varbinds;
};

// A request that is sent many times, and the status that its answer must have.
struct Repeated {
    int command;  // SNMP_MSG_GET, SNMP_MSG_GETNEXT, SNMP_MSG_SET
    std::vector<std::pair<std::string, Value>> values;
    int status = 0;
};

// Where the module is: in the agent that the manager asks, or in a subagent behind it (AgentX, RFC 2741).
enum class Role { agent, subagent };
void PrintTo(Role role, std::ostream* out);

// A running snmpd.
class Daemon {
  public:
    // Works in `folder`, with NAME.conf and NAME.log; `options` are added to its own. Returns when its log contains
    // `up`. "master", the master of a subagent, has no module and is neither preloaded nor sanitized.
    Daemon(const std::string& folder, const std::string& name, const std::string& options, const std::string& up);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    pid_t pid() const { return pid_; }
    std::string log() const;
    bool wait_for(const std::string& line, size_t times = 1,
                  std::chrono::seconds most = std::chrono::minutes(5)) const;  // in the log; false after `most`

  private:
    void run() const;
    std::string tool() const;

    std::string folder_, name_, options_;
    pid_t pid_ = -1;
};

class Agent {
  public:
    // `configuration`: the store's contents, in the form that the tool imports. `lines`: added to the agent's
    // configuration. `options`: for the agent's program, unless the agent is a subagent.
    explicit Agent(const std::string& configuration, Role role = Role::agent, const std::string& lines = "",
                   const std::string& options = "");
    ~Agent();
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    // OIDs are dotted and relative to 1.2.840.10036; with a leading "." they are complete.
    Response get(const std::vector<std::string>& oids);
    Response get_next(const std::vector<std::string>& oids);
    Response get_bulk(const std::vector<std::string>& oids, long repetitions);
    Response set(const std::vector<std::pair<std::string, Value>>& values);
    // Sends `count` of the requests in turn, with several outstanding at any time. Returns how many were not answered
    // with their status.
    size_t exchange(const std::vector<Repeated>& requests, size_t count);
    // All varbinds below an OID, by GETNEXT. Ends after `most` of them.
    std::vector<Varbind> walk(const std::string& root, size_t most = 100'000);

    // Runs the store's tool on the agent's store, or on another in its folder: configure("set interface wlan0 ssid
    // lobby").
    void configure(const std::string& arguments, const std::string& store = "store.db") const;
    std::string command(const std::string& arguments, const std::string& store = "store.db") const;  // to run the tool
    std::string printed(const std::string& arguments) const;  // the tool's output for the agent's store
    std::string exported() const;                             // the store's contents

    const std::string& folder() const { return folder_; }  // with its store, "store.db"
    void replace_module() const;                           // by another file with the same contents

    agent_control& control() { return *control_; }
    Daemon& daemon() { return *daemon_; }  // the one that has the module
    void restart_master();                 // only of a subagent
    void restart();                        // only of an agent that is not a subagent
    // Makes the agent load the modules of its "dlmod" lines again. False if it does not within half a minute.
    bool reload(size_t lines = 1);

  private:
    void make_control();
    void start(Role role, const std::string& own_lines, const std::string& options);
    void wait_for_tables();
    void write_file(const std::string& name, const std::string& text) const;
    Response send(netsnmp_pdu* pdu);

    std::string folder_;
    agent_control* control_ = nullptr;
    std::unique_ptr<Daemon> master_, daemon_;
    netsnmp_session* session_ = nullptr;
};

// A wireless-looking interface in the test's namespace, with that index: a veth whose other end is out of the way.
void add_interface(const std::string& name, unsigned index);
void remove_interface(const std::string& name);

int long_bits_of_agent();  // the size of a long where the agent runs: 32 or 64

// Waits until the condition holds, for at most that long, or ten times as long under valgrind. False if it never does.
bool wait_until(const std::function<bool()>& condition, std::chrono::seconds most = std::chrono::minutes(5));

// The path of the built module. The agent loads a copy.
std::string built_module();

// Runs a shell command; the test fails if the command does.
void run(const std::string& command);
