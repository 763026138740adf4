#include "agent.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <thread>

namespace {

constexpr char subtree[] = "1.2.840.10036.";
constexpr char address[] = "127.0.0.1:1161";
constexpr char community[] = "private";
// For the master of a subagent; the subagent serves UCD-DLMOD-MIB.
constexpr char master_options[] = "-I -dlmod";
constexpr char module_file[] = "ieee802dot11.so";
constexpr size_t most_on_their_way = 16;

using Oid = std::vector<oid>;

Oid parsed(const std::string& text) {
    std::istringstream in(text.starts_with(".") ? text.substr(1) : subtree + text);
    Oid subids;
    for (std::string part; std::getline(in, part, '.');)
        subids.push_back(std::stoul(part));
    return subids;
}

std::string dotted(const oid* subids, size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i)
        text += (i ? "." : "") + std::to_string(subids[i]);
    return text.starts_with(subtree) ? text.substr(strlen(subtree)) : "." + text;
}

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

size_t occurrences(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

bool under_valgrind() {
    return getenv("AGENT_VALGRIND") != nullptr;
}

// The agent is the one that was built with the test, or one of another machine (see ./check-cross).
std::string setting(const char* name, const char* built) {
    const char* value = getenv(name);
    return value ? value : built;
}

void init_client() {
    static const bool done = [] {
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
        setenv("MIBS", "", 1);
        init_snmp("agent-test");
        return true;
    }();
    (void)done;
}

netsnmp_session* open_session() {
    init_client();
    netsnmp_session session;
    snmp_sess_init(&session);
    session.version = SNMP_VERSION_2c;
    session.peername = const_cast<char*>(address);
    session.community = reinterpret_cast<u_char*>(const_cast<char*>(community));
    session.community_len = strlen(community);
    session.timeout = 200'000'000;  // microseconds; no retries, so that each request is sent once
    session.retries = 0;
    return snmp_open(&session);
}

const char* exception_name(u_char type) {
    switch (type) {
        case SNMP_NOSUCHOBJECT:
            return "noSuchObject";
        case SNMP_NOSUCHINSTANCE:
            return "noSuchInstance";
        case SNMP_ENDOFMIBVIEW:
            return "endOfMibView";
        case ASN_NULL:
            return "NULL";
        default:
            return nullptr;
    }
}

const char* number_name(u_char type) {
    switch (type) {
        case ASN_INTEGER:
            return "INTEGER ";
        case ASN_GAUGE:
            return "Gauge32 ";
        case ASN_COUNTER:
            return "Counter32 ";
        case ASN_TIMETICKS:
            return "TimeTicks ";
        default:
            return nullptr;
    }
}

}  // namespace

std::string shown_octets(const std::string& octets) {
    std::ostringstream out;
    out << "STRING" << std::hex << std::setfill('0');
    for (const char octet : octets)
        out << ' ' << std::setw(2) << static_cast<int>(static_cast<u_char>(octet));
    return out.str();
}

std::string shown(const netsnmp_variable_list& varbind) {
    if (const char* name = exception_name(varbind.type)) return name;
    if (const char* name = number_name(varbind.type)) {
        const long number = *varbind.val.integer;
        return name +
               (varbind.type == ASN_INTEGER ? std::to_string(number) : std::to_string(static_cast<uint32_t>(number)));
    }
    if (varbind.type == ASN_OCTET_STR)
        return shown_octets({reinterpret_cast<const char*>(varbind.val.string), varbind.val_len});
    return "type " + std::to_string(varbind.type);
}

void PrintTo(Role role, std::ostream* out) {
    *out << (role == Role::agent ? "agent" : "subagent");
}

void PrintTo(const Varbind& varbind, std::ostream* out) {
    *out << varbind.oid << " = " << varbind.value;
}

Value Value::integer(int64_t number) {
    const long value = static_cast<long>(number);
    return {ASN_INTEGER, {reinterpret_cast<const char*>(&value), sizeof value}};
}

bool wait_until(const std::function<bool()>& condition, std::chrono::seconds most) {
    const auto end = std::chrono::steady_clock::now() + (under_valgrind() ? 10 * most : most);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

void run(const std::string& command) {
    ASSERT_EQ(system(command.c_str()), 0) << command;
}

int long_bits_of_agent() {
    return std::stoi(setting("AGENT_LONG_BITS", std::to_string(8 * sizeof(long)).c_str()));
}

std::string built_module() {
    return setting("AGENT_MODULE", MODULE);
}

void add_interface(const std::string& name, unsigned index) {
    const std::string number = std::to_string(index);
    run("ip link add " + name + " index " + number + " type veth peer name far" + number + " index " +
        std::to_string(index + 100'000));
}

void remove_interface(const std::string& name) {
    run("ip link delete " + name);
}

Daemon::Daemon(const std::string& folder, const std::string& name, const std::string& options, const std::string& up)
    : folder_(folder), name_(name), options_(options) {
    pid_ = fork();
    if (pid_ == 0) run();
    EXPECT_TRUE(wait_for(up)) << log();
}

// The command that runs the agent's program, followed by a blank; empty if it runs by itself.
std::string Daemon::tool() const {
    if (!under_valgrind() || name_ == "master") return "";
    return "valgrind --quiet --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite "
           "--error-exitcode=98 --num-callers=40 --suppressions=" VALGRIND_SUPPRESSIONS " ";
}

// Runs in the new process. The sanitizers report to the log, and end the agent with status 99.
void Daemon::run() const {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setenv("AGENT_CONTROL", (folder_ + "/control").c_str(), 1);
    setenv("CFQL_STORE", (folder_ + "/store.db").c_str(), 1);
    setenv("SNMP_PERSISTENT_DIR", folder_.c_str(), 1);
    setenv("SNMPCONFPATH", folder_.c_str(), 1);
    setenv("MIBS", "", 1);
    setenv("ASAN_OPTIONS", "exitcode=99:detect_odr_violation=0:fast_unwind_on_malloc=0", 1);
    setenv("LSAN_OPTIONS", "suppressions=" LEAK_SUPPRESSIONS, 1);
    setenv("UBSAN_OPTIONS", "halt_on_error=1:print_stacktrace=1", 1);
    const std::string path = folder_ + "/" + name_;
    const int log_file = open((path + ".log").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    dup2(log_file, STDOUT_FILENO);
    dup2(log_file, STDERR_FILENO);
    // Set after the shell, whose machine may differ from the agent's.
    const std::string preload = name_ == "master" ? "" : "env LD_PRELOAD=" + setting("AGENT_PRELOAD", AGENT_PRELOAD);
    const std::string command = "exec " + preload + " " + tool() + setting("AGENT_SNMPD", SNMPD) + " " + options_ +
                                " -f -Lo -C -c " + path + ".conf";
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
}

std::string Daemon::log() const {
    return read_file(folder_ + "/" + name_ + ".log");
}

bool Daemon::wait_for(const std::string& line, size_t times, std::chrono::seconds most) const {
    return wait_until([&] { return occurrences(log(), line) >= times; }, most);
}

// snmpd notices a signal that comes just before it waits for a request only after the request: hence once a second.
Daemon::~Daemon() {
    int status = 0;
    bool ended = false;
    for (int second = 0; second < 300 && !ended; ++second) {
        kill(pid_, SIGTERM);
        ended = wait_until([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, std::chrono::seconds(1));
    }
    EXPECT_TRUE(ended) << name_ << " hangs";
    if (!ended) {
        kill(pid_, SIGKILL);
        waitpid(pid_, &status, 0);
    }
    const std::string text = log();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << name_ << " ended with " << status << "\n" << text;
    EXPECT_EQ(text.find("dlopen("), std::string::npos) << text;
    EXPECT_EQ(text.find("Sanitizer"), std::string::npos) << text;
}

Agent::Agent(const std::string& configuration, Role role, const std::string& lines, const std::string& options) {
    folder_ = (std::filesystem::temp_directory_path() / "agent-XXXXXX").string();
    if (!mkdtemp(folder_.data())) ADD_FAILURE() << "no folder " << folder_;
    make_control();
    write_file("store.toml", configuration);
    configure("init");
    configure("import " + folder_ + "/store.toml");
    replace_module();
    start(role, lines, options);
    session_ = open_session();
    EXPECT_NE(session_, nullptr);
    wait_for_tables();
}

Agent::~Agent() {
    if (session_) snmp_close(session_);
    daemon_.reset();
    master_.reset();
    munmap(control_, sizeof *control_);
    std::filesystem::remove_all(folder_);
}

void Agent::write_file(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ + "/" + name) << text;
}

void Agent::replace_module() const {
    const std::string path = folder_ + "/" + module_file;
    std::filesystem::copy_file(built_module(), path + ".new");
    std::filesystem::rename(path + ".new", path);
}

void Agent::make_control() {
    const int file = open((folder_ + "/control").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (ftruncate(file, sizeof *control_) != 0) ADD_FAILURE() << "no file " << folder_ << "/control";
    control_ =
        static_cast<agent_control*>(mmap(nullptr, sizeof *control_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    close(file);
}

void Agent::start(Role role, const std::string& own_lines, const std::string& options) {
    const std::string lines = own_lines + setting("AGENT_LINES", "");
    const std::string manager = std::string("agentAddress udp:") + address +
                                "\ndontLogTCPWrappersConnects yes\nrwcommunity " + community + " default\n";
    const std::string module = "dlmod ieee802dot11 " + folder_ + "/" + module_file + "\n";
    const std::string agentx = "agentXSocket unix:" + folder_ + "/agentx\n";
    if (role == Role::agent) {
        write_file("agent.conf", manager + module + lines);
        daemon_ = std::make_unique<Daemon>(folder_, "agent", options, "NET-SNMP version");
    } else {
        write_file("master.conf", manager + agentx + "master agentx\n");
        write_file("subagent.conf", agentx + "agentXPingInterval 1\n" + module + lines);
        master_ = std::make_unique<Daemon>(folder_, "master", master_options, "NET-SNMP version");
        daemon_ = std::make_unique<Daemon>(folder_, "subagent", "-X -I dlmod", "AgentX subagent connected");
    }
}

// A subagent's tables are registered one after the other, asynchronously.
void Agent::wait_for_tables() {
    const std::vector<std::string> tables = {"1.1", "1.2", "1.3", "1.4", "1.5", "2.1",  "2.2",  "2.3", "3.1.2",
                                             "4.1", "4.3", "4.5", "4.7", "4.9", "4.10", "4.12", "4.14"};
    std::vector<std::string> cells;
    for (const std::string& table : tables)
        cells.push_back(table + ".1.2.1.1");
    const auto registered = [&] {
        for (const Varbind& varbind : get(cells).varbinds)
            if (varbind.value == "noSuchObject") return false;
        return true;
    };
    EXPECT_TRUE(wait_until(registered)) << daemon_->log();
}

void Agent::restart_master() {
    master_.reset();
    master_ = std::make_unique<Daemon>(folder_, "master", master_options, "NET-SNMP version");
    EXPECT_TRUE(daemon_->wait_for("AgentX subagent connected", 2)) << daemon_->log();
    wait_for_tables();
}

void Agent::restart() {
    daemon_.reset();
    std::filesystem::remove(folder_ + "/agent.log");
    daemon_ = std::make_unique<Daemon>(folder_, "agent", "", "NET-SNMP version");
    wait_for_tables();
}

// The agent notices the signal only while it serves requests, and may go to sleep between the signal and its check.
bool Agent::reload(size_t lines) {
    constexpr char last_refusal[] = "and dot11RegDomainsSupportedTable";
    const size_t before = occurrences(daemon_->log(), last_refusal);
    for (int second = 0; second < 300; ++second) {
        kill(daemon_->pid(), SIGHUP);
        get({"1"});
        if (daemon_->wait_for(last_refusal, before + lines, std::chrono::seconds(1))) return true;
    }
    return false;
}

void Agent::configure(const std::string& arguments, const std::string& store) const {
    run(command(arguments, store) + " >>" + folder_ + "/cfql.log");
}

std::string Agent::command(const std::string& arguments, const std::string& store) const {
    return setting("AGENT_CFQL", CFQL) + " --store " + folder_ + "/" + store + " " + arguments;
}

std::string Agent::printed(const std::string& arguments) const {
    run(command(arguments) + " >" + folder_ + "/printed");
    return read_file(folder_ + "/printed");
}

std::string Agent::exported() const {
    return printed("export");
}

Response Agent::send(netsnmp_pdu* pdu) {
    Response response;
    netsnmp_pdu* answer = nullptr;
    if (snmp_synch_response(session_, pdu, &answer) == STAT_SUCCESS && answer) {
        response.status = static_cast<int>(answer->errstat);
        response.index = static_cast<int>(answer->errindex);
        for (const netsnmp_variable_list* varbind = answer->variables; varbind; varbind = varbind->next_variable)
            response.varbinds.push_back({dotted(varbind->name, varbind->name_length), shown(*varbind)});
    }
    EXPECT_NE(response.status, -1) << "no answer from the agent\n" << daemon_->log();
    if (answer) snmp_free_pdu(answer);
    return response;
}

namespace {

netsnmp_pdu* pdu_of(int command, const std::vector<std::pair<std::string, Value>>& values) {
    netsnmp_pdu* pdu = snmp_pdu_create(command);
    for (const auto& [text, value] : values) {
        const Oid name = parsed(text);
        snmp_pdu_add_variable(pdu, name.data(), name.size(), value.type, value.octets.data(), value.octets.size());
    }
    return pdu;
}

netsnmp_pdu* request(int command, const std::vector<std::string>& oids) {
    std::vector<std::pair<std::string, Value>> values;
    for (const std::string& oid : oids)
        values.emplace_back(oid, Value::of_type(ASN_NULL));
    return pdu_of(command, values);
}

}  // namespace

Response Agent::get(const std::vector<std::string>& oids) {
    return send(request(SNMP_MSG_GET, oids));
}

Response Agent::get_next(const std::vector<std::string>& oids) {
    return send(request(SNMP_MSG_GETNEXT, oids));
}

Response Agent::get_bulk(const std::vector<std::string>& oids, long repetitions) {
    netsnmp_pdu* pdu = request(SNMP_MSG_GETBULK, oids);
    pdu->non_repeaters = 0;
    pdu->max_repetitions = repetitions;
    return send(pdu);
}

Response Agent::set(const std::vector<std::pair<std::string, Value>>& values) {
    return send(pdu_of(SNMP_MSG_SET, values));
}

namespace {

struct Exchange {
    size_t on_their_way = 0;
    size_t wrong = 0;
};

// A request of an exchange, with what its answers are compared with.
struct Sent {
    netsnmp_pdu* pdu;
    int status;
    Exchange* exchange;
};

int received(int operation, netsnmp_session*, int, netsnmp_pdu* answer, void* magic) {
    const auto* sent = static_cast<const Sent*>(magic);
    --sent->exchange->on_their_way;
    const bool right = operation == NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE && answer->errstat == sent->status;
    if (!right) ++sent->exchange->wrong;
    return 1;
}

void receive_some() {
    int files = 0, block = 1;
    fd_set readable;
    FD_ZERO(&readable);
    timeval most = {};
    snmp_select_info(&files, &readable, &most, &block);
    if (select(files, &readable, nullptr, nullptr, block ? nullptr : &most) > 0)
        snmp_read(&readable);
    else
        snmp_timeout();
}

}  // namespace

size_t Agent::exchange(const std::vector<Repeated>& requests, size_t count) {
    Exchange exchange;
    std::vector<Sent> all;
    for (const Repeated& request : requests)
        all.push_back({pdu_of(request.command, request.values), request.status, &exchange});
    for (size_t i = 0; i < count; ++i) {
        while (exchange.on_their_way >= most_on_their_way)
            receive_some();
        Sent& sent = all[i % all.size()];
        netsnmp_pdu* pdu = snmp_clone_pdu(sent.pdu);
        pdu->reqid = snmp_get_next_reqid();
        if (snmp_async_send(session_, pdu, received, &sent))
            ++exchange.on_their_way;
        else
            ++exchange.wrong;
    }
    while (exchange.on_their_way > 0)
        receive_some();
    for (const Sent& sent : all)
        snmp_free_pdu(sent.pdu);
    return exchange.wrong;
}

std::vector<Varbind> Agent::walk(const std::string& root, size_t most) {
    std::vector<Varbind> found;
    std::string at = root;
    while (found.size() < most) {
        const Response next = get_next({at});
        if (next.status != 0 || next.varbinds.size() != 1) break;
        const Varbind& varbind = next.varbinds[0];
        if (!varbind.oid.starts_with(root + ".") || varbind.value == "endOfMibView") break;
        found.push_back(varbind);
        at = varbind.oid;
    }
    return found;
}
