#include "notify.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <charconv>

namespace collector {

Notify::Notify() {
    if (const char* name = getenv("NOTIFY_SOCKET")) socket_ = name;
    const char* time = getenv("WATCHDOG_USEC");
    const char* process = getenv("WATCHDOG_PID");
    if (!time || (process && std::to_string(getpid()) != process)) return;
    int64_t microseconds = 0;
    std::from_chars(time, time + strlen(time), microseconds);
    if (microseconds > 0) watchdog_ = microseconds / 2000 + 1;
}

void Notify::send(const std::string& message) const {
    sockaddr_un manager = {};
    manager.sun_family = AF_UNIX;
    if (socket_.empty() || socket_.size() >= sizeof manager.sun_path) return;
    socket_.copy(manager.sun_path, socket_.size());
    if (socket_.front() == '@') manager.sun_path[0] = '\0';
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (sender < 0) return;
    const size_t length = offsetof(sockaddr_un, sun_path) + socket_.size();
    sendto(sender, message.data(), message.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&manager),
           static_cast<socklen_t>(length));
    close(sender);
}

}  // namespace collector
