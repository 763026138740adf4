#include "agent_process.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <limits.h>
#include <stdlib.h>
#include <algorithm>
#include <memory>
#include <sstream>
#include <string_view>

namespace cfql::tool {

namespace {

constexpr std::string_view module_name = "/ieee802dot11.so";
constexpr std::string_view replaced_mark = " (deleted)";
constexpr size_t most_of_a_file = size_t{4} << 20;  // of /proc: maps has some hundred lines
constexpr size_t most_of_a_result = 4096;
constexpr unsigned task_seconds = 20;

std::string rest_of(int descriptor, size_t most) {
    std::string text;
    char block[4096];
    for (ssize_t count = 0; text.size() < most && (count = read(descriptor, block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(count));
    return text;
}

// None if it may not be read.
std::optional<std::string> text_of_process(pid_t id, const char* file) {
    const std::string path = "/proc/" + std::to_string(id) + '/' + file;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    std::string text = rest_of(descriptor, most_of_a_file);
    close(descriptor);
    return text;
}

std::string network_of(const std::string& process) {
    char name[64];
    const ssize_t size = readlink(("/proc/" + process + "/ns/net").c_str(), name, sizeof name);
    return size < 0 ? std::string() : std::string(name, static_cast<size_t>(size));
}

// The numbers behind "Uid:" and the like.
std::vector<unsigned> numbers_of(const std::string& status, const std::string& field) {
    std::vector<unsigned> numbers;
    std::istringstream lines(status);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(field)) continue;
        std::istringstream words(line.substr(field.size()));
        for (unsigned number = 0; words >> number;)
            numbers.push_back(number);
    }
    return numbers;
}

std::optional<Rights> rights_of_process(pid_t id) {
    constexpr size_t effective = 1;
    const std::string status = text_of_process(id, "status").value_or("");
    const std::vector<unsigned> users = numbers_of(status, "Uid:");
    const std::vector<unsigned> groups = numbers_of(status, "Gid:");
    if (users.size() <= effective || groups.size() <= effective) return std::nullopt;
    const std::vector<unsigned> others = numbers_of(status, "Groups:");
    return Rights{users[effective], groups[effective], {others.begin(), others.end()}};
}

// The kernel keeps 15 characters of a program's name.
std::string agent_program(pid_t id) {
    const std::string name = text_of_process(id, "comm").value_or("");
    if (name == "snmpd\n") return "snmpd";
    return name == "ieee802dot11-ag\n" ? "ieee802dot11-agentx" : "";
}

void find_module(const std::string& maps, AgentProcess& process) {
    std::istringstream lines(maps);
    for (std::string line; std::getline(lines, line);) {
        const size_t path = line.find('/');
        if (path == std::string::npos) continue;
        std::string file = line.substr(path);
        const bool is_replaced = file.ends_with(replaced_mark);
        if (is_replaced) file.resize(file.size() - replaced_mark.size());
        if (!file.ends_with(module_name)) continue;
        process.module = file;
        process.module_was_replaced = is_replaced;
    }
}

std::optional<std::string> store_of(const std::string& environment) {
    constexpr std::string_view name = "CFQL_STORE=";
    std::istringstream variables(environment);
    for (std::string variable; std::getline(variables, variable, '\0');) {
        if (variable.starts_with(name)) return variable.substr(name.size());
    }
    return std::nullopt;
}

std::optional<AgentProcess> agent_process(pid_t id) {
    const std::string program = agent_program(id);
    const std::optional<Rights> rights = program.empty() ? std::nullopt : rights_of_process(id);
    const std::string network = network_of(std::to_string(id));
    if (!rights || (!network.empty() && network != network_of("self"))) return std::nullopt;
    AgentProcess process = {id, program, *rights, false, {}, false, {}};
    const std::optional<std::string> maps = text_of_process(id, "maps");
    const std::optional<std::string> environment = text_of_process(id, "environ");
    process.may_be_examined = maps && environment && !maps->empty();
    find_module(maps.value_or(""), process);
    process.store = store_of(environment.value_or(""));
    return process;
}

bool assume(const Rights& rights) {
    const Rights own = own_rights();
    if (own.user == rights.user && own.group == rights.group && own.groups == rights.groups) return true;
    return setgroups(rights.groups.size(), rights.groups.data()) == 0 &&
           setresgid(rights.group, rights.group, rights.group) == 0 &&
           setresuid(rights.user, rights.user, rights.user) == 0;
}

// Runs in the new process.
[[noreturn]] void perform(const Rights& rights, const std::function<std::string()>& task, int output) {
    alarm(task_seconds);
    if (!assume(rights)) _exit(1);
    const std::string result = task().substr(0, most_of_a_result);
    const bool is_written = write(output, result.data(), result.size()) == static_cast<ssize_t>(result.size());
    _exit(is_written ? 0 : 1);
}

}  // namespace

std::vector<AgentProcess> agent_processes() {
    std::vector<AgentProcess> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir("/proc"), closedir);
    while (const dirent* entry = directory ? readdir(directory.get()) : nullptr) {
        const long id = strtol(entry->d_name, nullptr, 10);
        std::optional<AgentProcess> process = id > 0 ? agent_process(static_cast<pid_t>(id)) : std::nullopt;
        if (process) found.push_back(*process);
    }
    // The others may belong to another network namespace.
    if (std::ranges::any_of(found, &AgentProcess::may_be_examined))
        std::erase_if(found, [](const AgentProcess& process) { return !process.may_be_examined; });
    return found;
}

std::optional<Rights> rights_of_user(const std::string& name) {
    constexpr int most_groups = 1024;
    const passwd* entry = getpwnam(name.c_str());
    if (!entry) return std::nullopt;
    Rights rights = {entry->pw_uid, entry->pw_gid, std::vector<gid_t>(most_groups)};
    int count = most_groups;
    if (getgrouplist(name.c_str(), rights.group, rights.groups.data(), &count) < 0) return std::nullopt;
    rights.groups.resize(static_cast<size_t>(count));
    return rights;
}

Rights own_rights() {
    Rights rights = {geteuid(), getegid(), std::vector<gid_t>(NGROUPS_MAX)};
    const int count = getgroups(NGROUPS_MAX, rights.groups.data());
    rights.groups.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return rights;
}

std::string name_of_user(uid_t user) {
    const passwd* entry = getpwuid(user);
    return entry ? entry->pw_name : std::to_string(user);
}

std::optional<std::string> run_as(const Rights& rights, const std::function<std::string()>& task) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    const pid_t child = fork();
    if (child == 0) perform(rights, task, ends[1]);
    close(ends[1]);
    std::string result = rest_of(ends[0], most_of_a_result);
    close(ends[0]);
    int status = 0;
    const bool is_done =
        child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return is_done ? std::optional(result) : std::nullopt;
}

}  // namespace cfql::tool
