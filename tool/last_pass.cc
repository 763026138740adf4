#include "last_pass.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <limits.h>
#include <time.h>
#include <charconv>
#include <string_view>

#include "descriptor.h"

namespace cfql::tool {

namespace {

constexpr int most_links = 8;
constexpr size_t last_digits = 20, interval_digits = 5, line_size = last_digits + 1 + interval_digits + 1;

bool read_number(std::string_view text, int64_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= 0;
}

int64_t seconds_since_boot() {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec;
}

// False if `line` is not of the collector's form.
bool read_line(std::string_view line, LastPass& pass) {
    int64_t last = 0;
    int64_t interval = 0;
    if (line.size() != line_size || line[last_digits] != ' ' || line.back() != '\n') return false;
    if (!read_number(line.substr(0, last_digits), last)) return false;
    if (!read_number(line.substr(last_digits + 1, interval_digits), interval)) return false;
    const int64_t now = seconds_since_boot();
    if (last <= now) pass.age = now - last;
    pass.interval = interval;
    return true;
}

// 0, or an errno value.
int read_file(int descriptor, LastPass& pass) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return EBADMSG;
    struct flock lock = {};
    lock.l_type = F_RDLCK;
    lock.l_whence = SEEK_SET;
    if (fcntl(descriptor, F_OFD_GETLK, &lock) != 0) return errno;
    pass.state = lock.l_type == F_UNLCK ? LastPass::State::stopped : LastPass::State::running;
    char line[line_size + 1];
    const ssize_t size = pread(descriptor, line, sizeof line, 0);
    if (size < 0) return errno;
    // A collector creates the file before its first pass ends; until then it is empty.
    return size == 0 || read_line({line, static_cast<size_t>(size)}, pass) ? 0 : EBADMSG;
}

}  // namespace

std::string collector_file(const std::string& store) {
    std::string path = store;
    char target[PATH_MAX];
    for (int i = 0; i < most_links; ++i) {
        const ssize_t size = readlink(path.c_str(), target, sizeof target);
        if (size <= 0 || static_cast<size_t>(size) == sizeof target) break;
        const std::string_view next(target, static_cast<size_t>(size));
        path = next.front() == '/' ? std::string(next) : path.substr(0, path.rfind('/') + 1).append(next);
    }
    return path + ".collector";
}

LastPass last_pass(const std::string& store) {
    LastPass pass;
    const Descriptor file(open(collector_file(store).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.get() < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return pass;
        pass.error = errno;
    } else {
        pass.error = read_file(file.get(), pass);
    }
    if (pass.error != 0) pass.state = LastPass::State::unknown;
    return pass;
}

}  // namespace cfql::tool
