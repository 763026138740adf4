#include "presence.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <inttypes.h>
#include <stdio.h>

namespace collector {

Presence::~Presence() {
    if (descriptor_ >= 0) close(descriptor_);
}

// Readers of the file query the lock without taking it, so that they never keep a collector from starting.
int Presence::claim() {
    descriptor_ =
        open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, cfql::tool::collector_file_mode);
    if (descriptor_ < 0) return errno;
    struct stat status = {};
    if (fstat(descriptor_, &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return EINVAL;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    if (fcntl(descriptor_, F_OFD_SETLK, &lock) == 0) return 0;
    return errno == EACCES ? EWOULDBLOCK : errno;
}

void Presence::stamp(int64_t seconds, int64_t interval) const {
    char line[40];
    const int size = snprintf(line, sizeof line, "%020" PRId64 " %05" PRId64 "\n", seconds, interval);
    // If this fails, readers find an old time and report it.
    [[maybe_unused]] const ssize_t written = pwrite(descriptor_, line, static_cast<size_t>(size), 0);
}

}  // namespace collector
