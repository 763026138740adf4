// Replaces the system log: a program that includes this collects the library's log lines in log_lines, each without the
// process number.
#ifndef TESTS_CFQL_LIBRARY_LOG_H
#define TESTS_CFQL_LIBRARY_LOG_H

#include <dlfcn.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <string>
#include <vector>

inline std::vector<std::string> log_lines;

extern "C" ssize_t sendto(int socket, const void* octets, size_t size, int flags, const sockaddr* to,
                          socklen_t length) {
    static const auto real = reinterpret_cast<decltype(&sendto)>(dlsym(RTLD_NEXT, "sendto"));
    const bool to_log = to != nullptr && to->sa_family == AF_UNIX &&
                        strcmp(reinterpret_cast<const sockaddr_un*>(to)->sun_path, "/dev/log") == 0;
    if (!to_log) return real(socket, octets, size, flags, to, length);
    std::string line(static_cast<const char*>(octets), size);
    const std::size_t number = line.find('[');
    line.erase(number, line.find(']') + 1 - number);
    log_lines.push_back(line);
    return static_cast<ssize_t>(size);
}

#endif
