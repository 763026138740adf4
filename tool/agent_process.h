// The agent as a process of this system, as /proc shows it, and what its rights allow.
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
    Rights rights;                     // those that it has, which an entry in /etc/group does not change
    bool may_be_examined;              // the rest is known
    std::string module;                // the module's file, when it is loaded
    bool module_was_replaced;          // that file is another by now
    std::optional<std::string> store;  // of its environment

    std::string name() const { return program + " (process " + std::to_string(id) + ')'; }
};

// Those of this network namespace. When this process may examine none of them: all that there are, by name.
std::vector<AgentProcess> agent_processes();

// None when there is no such user.
std::optional<Rights> rights_of_user(const std::string& name);

Rights own_rights();  // of this process

// "Debian-snmp", or the number of a user without a name.
std::string name_of_user(uid_t user);

// What TASK returns in a process of its own with RIGHTS, up to 4096 octets of it. None when this process may not give
// itself these rights, or when the task takes longer than 20 seconds or crashes.
std::optional<std::string> run_as(const Rights& rights, const std::function<std::string()>& task);

}  // namespace cfql::tool
