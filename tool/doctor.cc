// The command doctor: finds out why a table is empty, by checking the store, the agent's process, the collector and the
// system, and by asking the agent.
#include <dlfcn.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <algorithm>
#include <optional>

#include "agent_process.h"
#include "agent_run.h"
#include "commands.h"
#include "last_pass.h"
#include "output.h"
#include "snmp_client.h"
#include "store.h"
#include "store/interfaces.h"
#include "text.h"

namespace cfql::tool {

namespace {

constexpr const char* group_name = "cfql";
constexpr const char* log_hint = "see its log: journalctl -u snmpd";
constexpr const char* station_id = "1.2.840.10036.1.1.1.1";
constexpr const char* wep_key = "1.2.840.10036.1.3.1.2";

using State = SnmpAnswer::State;

// Prints a line for each finding, and counts those that need action.
class Findings {
  public:
    static void good(const std::string& what, const std::string& text) { report("ok: " + what + ": " + text); }
    static void unknown(const std::string& what, const std::string& text) { report("note: " + what + ": " + text); }
    void fix(const std::string& what, const std::string& text) {
        report("fix: " + what + ": " + text);
        ++count_;
    }

    Exit conclude() const {
        report(count_ == 0 ? "nothing to fix" : counted(count_, "thing") + " to fix");
        return count_ == 0 ? Exit::done : Exit::no;
    }

  private:
    size_t count_ = 0;
};

bool is_member(const std::vector<gid_t>& groups, gid_t group) {
    return std::ranges::find(groups, group) != groups.end();
}

bool is_same_file(const std::string& path, const std::string& other) {
    struct stat first = {};
    struct stat second = {};
    return path == other || (stat(path.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
                             first.st_dev == second.st_dev && first.st_ino == second.st_ino);
}

std::string directory_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, std::max<size_t>(slash, 1));
}

class Doctor {
  public:
    explicit Doctor(const Request& request) : request_(request), processes_(agent_processes()) {
        const std::optional<Rights> wanted = rights_of_user(request.agent_user);
        for (const AgentProcess& process : processes_) {
            if (wanted && process.rights.user != wanted->user) continue;
            if (!agent_ || (agent_->module.empty() && !process.module.empty())) agent_ = &process;
        }
    }

    Exit run() {
        examine_store();
        examine_user();
        examine_clock();
        examine_collector();
        examine_module();
        examine_agent();
        return findings_.conclude();
    }

  private:
    // ---- the store and its interfaces

    void examine_store() {
        try {
            Store store(request_.store, Access::read);
            const Reading reading = store.read();
            for (const std::string& line : reading.damage)
                findings_.fix("store", line + "; set it again, or import your last export");
            examine_interfaces(reading.contents);
        } catch (const Failure& failure) {
            findings_.fix("store", failure.what());
        }
    }

    void examine_interfaces(const Contents& contents) {
        const AgentRun run(contents, numbers_of_system());
        size_t rows = 0;
        for (const Object& object : contents) {
            const auto type = object.attributes.find(run.chosen_by());
            if (object.table != "interface" || type == object.attributes.end() || type->second != run.chosen_value())
                continue;
            const std::string obstacle = run.obstacle(object.name);
            if (obstacle.empty()) {
                ++rows;
            } else {
                findings_.fix("interface " + quoted(object.name), obstacle + ", so that it has no rows");
            }
        }
        conclude_interfaces(rows, run);
    }

    void conclude_interfaces(size_t rows, const AgentRun& run) {
        expected_rows_ = rows;
        if (rows > dot11::max_interfaces) {
            expected_rows_ = 0;
            findings_.fix("interfaces", std::to_string(rows) + " are more than " +
                                            std::to_string(dot11::max_interfaces) + ": no table has rows");
        } else if (rows == 0) {
            findings_.fix("interfaces", request_.store + " has none with " + run.chosen_by() + ' ' +
                                            quoted(run.chosen_value()) + " that can be served: no table has rows; " +
                                            way_to_rows());
        } else {
            Findings::good("store", request_.store + " has " + counted(rows, "interface") + " to serve");
        }
    }

    std::string way_to_rows() const {
        return last_pass(request_.store).state == LastPass::State::running
                   ? "cfql-collector --list says why its collector serves none"
                   : "fill it (cfql import), then ask cfql lint";
    }

    // ---- whether the agent may read it

    void examine_user() {
        const std::string user = agent_user();
        const std::optional<Rights> now = rights_of_user(user);
        if (!now && (!agent_ || !request_.agent_user.empty())) {
            findings_.fix("user", "there is no user " + quoted(user) + ": name the agent's with --as");
            return;
        }
        const bool is_running = agent_ && (!now || agent_->rights.user == now->user);
        const Rights& rights = is_running ? agent_->rights : *now;
        const std::string who = user + (is_running ? ", as whom " + agent_->name() + " runs," : "");
        const std::optional<Status> status = opens_for(rights);
        if (!status) {
            Findings::unknown("user", "run this as root to find out whether " + user + " may read the store");
        } else if (*status == Status::ok) {
            Findings::good("user", who + " may read the store");
        } else if (*status == Status::denied) {
            findings_.fix("user", who + " may not read the store: " + way_to_read(user, now, is_running));
        }
        if (is_running) examine_environment();
    }

    std::string agent_user() const {
        if (!request_.agent_user.empty()) return request_.agent_user;
        if (agent_) return name_of_user(agent_->rights.user);
        for (const char* name : {"Debian-snmp", "snmp"}) {
            if (getpwnam(name)) return name;
        }
        return "root";
    }

    // None if this process cannot find out.
    std::optional<Status> opens_for(const Rights& rights) const {
        const std::optional<std::string> result = run_as(rights, [this] {
            Database database;
            return std::to_string(static_cast<int>(database.open(request_.store.c_str(), Access::read)));
        });
        if (!result) return std::nullopt;
        return static_cast<Status>(strtol(result->c_str(), nullptr, 10));
    }

    // `now`: the user's present rights, which a process that was started earlier need not have.
    std::string way_to_read(const std::string& user, const std::optional<Rights>& now, bool is_running) const {
        const group* entry = getgrnam(group_name);
        if (!entry) return "there is no group \"cfql\": addgroup --system cfql; adduser " + user + " cfql; " + modes();
        if (now && is_running && opens_for(*now) == Status::ok)
            return "it was started before its user joined the group: restart it";
        if (!now) return "add SupplementaryGroups=cfql to its unit";
        if (!is_member(now->groups, entry->gr_gid)) return "adduser " + user + " cfql, and restart it";
        return modes();
    }

    std::string modes() const {
        const std::string directory = directory_of(request_.store);
        return "chgrp cfql " + quoted(directory) + ' ' + quoted(request_.store) + "; chmod 2750 " + quoted(directory) +
               "; chmod 640 " + quoted(request_.store);
    }

    void examine_environment() {
        if (!agent_->may_be_examined) return;
        const std::string named = agent_->store.value_or("");
        const std::string path = named.empty() ? default_store_path : named;
        if (is_same_file(path, request_.store)) return;
        findings_.fix("user", agent_->name() + " reads the store " + path + ", not " + request_.store +
                                  ": name it with --store, or change CFQL_STORE in the agent's environment");
    }

    // ---- the system

    void examine_clock() {
        constexpr time_t first_load = 15;  // seconds after the epoch; before that the agent reads no table
        constexpr time_t tolerance = 2;    // file systems and the clock need not agree to the second
        const time_t now = time(nullptr);
        struct stat entry = {};
        const bool is_there = stat(request_.store.c_str(), &entry) == 0;
        if (now <= first_load) {
            findings_.fix("clock", "it stands at the beginning of 1970, and no table is read: set it");
        } else if (is_there && entry.st_mtim.tv_sec > now + tolerance) {
            findings_.fix("clock", "the store was last written " + std::to_string(entry.st_mtim.tv_sec - now) +
                                       " s from now: the clock was set back; restart the agent, which reloads no "
                                       "table until the clock has caught up");
        } else {
            char text[40] = "";
            struct tm parts = {};
            strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", gmtime_r(&now, &parts));
            Findings::good("clock", text);
        }
    }

    void examine_collector() {
        const LastPass pass = last_pass(request_.store);
        const std::string ago = pass.age ? std::to_string(*pass.age) + " s ago" : "none since the system started";
        switch (pass.state) {
            case LastPass::State::never:
                Findings::unknown("collector", "none fills this store");
                return;
            case LastPass::State::unknown:
                Findings::unknown("collector", collector_file(request_.store) + ": " + strerror(pass.error));
                return;
            case LastPass::State::stopped:
                findings_.fix("collector", "it has stopped; last pass: " + ago +
                                               ": systemctl start cfql-collector, or remove " +
                                               collector_file(request_.store) + " where it is not to run any more");
                return;
            case LastPass::State::running:
                break;
        }
        if (pass.is_overdue()) {
            findings_.fix("collector", "last pass " + ago + ", though one is due every " +
                                           std::to_string(pass.interval) + " s: journalctl -u cfql-collector");
        } else {
            Findings::good("collector", "it runs; last pass: " + ago);
        }
    }

    // ---- the module

    void examine_module() {
        const auto loaded =
            std::ranges::count_if(processes_, [](const AgentProcess& process) { return !process.module.empty(); });
        if (loaded == 0) {
            examine_module_file();
        } else if (agent_ && agent_->module_was_replaced) {
            findings_.fix("module",
                          agent_->module + " is newer than what " + agent_->name() + " has loaded: restart it");
        } else if (loaded > 1) {
            findings_.fix("module", std::to_string(loaded) +
                                        " processes have loaded it, and all but one serve nothing: take the line "
                                        "\"dlmod\" out of snmpd's configuration, or stop ieee802dot11-agentx");
        } else {
            const auto process = std::ranges::find_if_not(processes_, &std::string::empty, &AgentProcess::module);
            Findings::good("module", process->name() + " has loaded " + process->module);
        }
    }

    void examine_module_file() {
        const std::string fault = fault_of_module();
        if (!fault.empty()) {
            findings_.fix("module", fault);
        } else if (agent_ && agent_->may_be_examined) {
            findings_.fix("module", agent_->name() + " has not loaded " + request_.module +
                                        ": add the line \"dlmod ieee802dot11\" to its configuration and restart it; " +
                                        log_hint);
        } else {
            Findings::good("module", request_.module + " can be loaded");
        }
    }

    // Why no agent can load the file; empty if one can.
    std::string fault_of_module() const {
        if (access(request_.module.c_str(), R_OK) != 0)
            return request_.module + ": " + strerror(errno) + "; install it, or name it with --module";
        const std::optional<std::string> result = run_as(own_rights(), [this] {
            const char* text = dlopen(request_.module.c_str(), RTLD_LAZY | RTLD_LOCAL) ? nullptr : dlerror();
            return std::string(text ? text : "");
        });
        if (!result) return request_.module + ": loading it crashes; reinstall it";
        // Names that the agent provides are missing here. The loader gets that far only if all else is well.
        if (result->empty() || result->find("undefined symbol") != std::string::npos) return {};
        return *result + "; install what is missing (\"ldconfig\" after \"cmake --install\")";
    }

    // ---- what it answers

    void examine_agent() {
        const SnmpAnswer answer = ask("snmpget", address(), 4, 2, {"1.3.6.1.2.1.1.3.0"});
        if (answer.state == State::no_client) {
            Findings::unknown("agent", "snmpget is not installed (Debian: snmp), so it was not asked");
        } else if (answer.state == State::answered) {
            Findings::good("agent", request_.host + " answers " + asker());
            examine_tables();
        } else if (processes_.empty()) {
            findings_.fix("agent", answer.fault + "; no snmpd runs here: systemctl start snmpd");
        } else {
            findings_.fix("agent", answer.fault + "; name the address that it listens on and " +
                                       "a reader that it admits " + "with --host, --community or --user; " + log_hint);
        }
    }

    SnmpAddress address() const { return {request_.host, request_.community, request_.snmp_user}; }

    std::string asker() const {
        return request_.snmp_user.empty() ? "community " + quoted(request_.community)
                                          : "user " + quoted(request_.snmp_user);
    }

    // Asks for instances that never exist: the error tells whether the column does.
    void examine_tables() {
        const SnmpAnswer answer =
            ask("snmpget", address(), 8, 1, {station_id + std::string(".0"), wep_key + std::string(".0.0")});
        if (answer.state != State::answered || answer.lines.size() != 2) {
            findings_.fix("tables", answer.fault + "; a subagent that serves them hangs: restart it");
            return;
        }
        const auto is_there = [](const std::string& line) {
            return line.ends_with("No Such Instance currently exists at this OID");
        };
        const bool are_there = is_there(answer.lines[0]);
        if (are_there) {
            examine_rows();
        } else {
            findings_.fix("tables", "none is shown to " + asker() + ": " + reason_without_tables());
        }
        if (is_there(answer.lines[1])) {
            findings_.fix("keys", "the WEP keys (dot11WEPDefaultKeyValue) are shown to " + asker() +
                                      ": exclude .1.2.840.10036.1.3 and .1.2.840.10036.1.4.1.4 from its view, as "
                                      "the example snmpd.conf does");
        } else if (are_there) {
            Findings::good("keys", "the WEP keys are not shown to " + asker());
        }
    }

    std::string reason_without_tables() const {
        const std::string view = "include .1.2.840.10036 in its view, as the example snmpd.conf does";
        const std::string load = "load the module (\"dlmod ieee802dot11\")";
        if (!agent_ || !agent_->may_be_examined) return load + ", or " + view;
        return agent_->module.empty() ? load : view;
    }

    void examine_rows() {
        const SnmpAnswer answer = ask("snmpbulkwalk", address(), 8, 1, {station_id});
        const std::string begin = std::string(".") + station_id + '.';
        const auto rows = static_cast<size_t>(std::ranges::count_if(answer.lines, [&](const std::string& line) {
            return line.starts_with(begin) && line.find(" = No ") == std::string::npos;
        }));
        if (answer.state != State::answered) {
            findings_.fix("rows", answer.fault + "; " + log_hint);
        } else if (expected_rows_ && rows != *expected_rows_) {
            findings_.fix("rows", "the agent has " + std::to_string(rows) + ", the store " +
                                      std::to_string(*expected_rows_) + ": " + reason_for_other_rows(rows));
        } else if (rows == 0) {
            findings_.fix("rows", "the agent has none");
        } else {
            Findings::good("rows", "the agent has " + std::to_string(rows));
        }
    }

    static std::string reason_for_other_rows(size_t rows) {
        if (rows == 0) return std::string("it does not read the store; ") + log_hint;
        return "it keeps its rows while it is asked more often than every 15 seconds: ask again in 20 s, or set "
               "dot11MaxAge";
    }

    const Request& request_;
    const std::vector<AgentProcess> processes_;
    const AgentProcess* agent_ = nullptr;  // the one that serves the tables, or would
    std::optional<size_t> expected_rows_;  // absent if the store could not be read
    Findings findings_;
};

}  // namespace

Exit doctor(const Request& request) {
    return Doctor(request).run();
}

}  // namespace cfql::tool
