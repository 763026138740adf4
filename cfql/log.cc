#include "log.h"

#include <stdio.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>

namespace cfql {

// Sends no time, so that the log uses its own.
void log_error(const char* line) {
    char datagram[1024];
    const int size = snprintf(datagram, sizeof datagram, "<%d>cfqlquery[%ld]: %s", LOG_DAEMON | LOG_ERR,
                              static_cast<long>(getpid()), line);
    // A path may hold any octets, and logs are shown on terminals.
    for (char* octet = datagram; *octet != '\0'; ++octet) {
        if (static_cast<unsigned char>(*octet) < 0x20 || *octet == 0x7f) *octet = '?';
    }
    const int log = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (log < 0) return;
    const struct sockaddr_un place = {AF_UNIX, "/dev/log"};
    sendto(log, datagram, std::min(static_cast<size_t>(size), sizeof datagram - 1), MSG_NOSIGNAL | MSG_DONTWAIT,
           reinterpret_cast<const struct sockaddr*>(&place), sizeof place);
    close(log);
}

}  // namespace cfql
