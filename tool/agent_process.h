// The agent's processes, as /proc shows them, and tasks run with the rights of another user.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cfql::tool {

struct Rights {
    uid_t user;
    gid_t group;
    std::vector<gid_t> groups;  // supplementary
};

struct AgentProcess {
    pid_t id;
    std::string program;               // "snmpd" or "ieee802dot11-agentx"
    Rights rights;                     // as it was started; later changes of /etc/group do not apply
    bool may_be_examined;              // whether the members below are known
    std::string module;                // the module's file; empty if it is not loaded
    bool module_was_replaced;          // another file has taken its place since
    std::optional<std::string> store;  // CFQL_STORE in its environment

    std::string name() const { return program + " (process " + std::to_string(id) + ')'; }
};

// The agent's processes in this network namespace. If this process may examine none of them: all there are, found by
// their names.
std::vector<AgentProcess> agent_processes();

// None if there is no such user.
std::optional<Rights> rights_of_user(const std::string& name);

Rights own_rights();  // of this process

// "Debian-snmp", or the number of a user without a name.
std::string name_of_user(uid_t user);

// What `task` returns, up to 4096 octets, when it runs in a process of its own with `rights`. None if this process may
// not assume these rights, or if the task takes longer than 20 seconds or crashes.
std::optional<std::string> run_as(const Rights& rights, const std::function<std::string()>& task);

}  // namespace cfql::tool
