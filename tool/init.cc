// The command init: the store's directory, its file, and who may use them.
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <stdint.h>
#include <string.h>
#include <filesystem>
#include <fstream>
#include <optional>

#include "commands.h"
#include "output.h"
#include "store.h"
#include "text.h"

namespace cfql::tool {

namespace {

// The set-group-ID bit hands the directory's group to every file made in it, the journal among them.
constexpr mode_t directory_mode = 02750;
constexpr mode_t file_mode = 0640;
constexpr const char* group_name = "cfql";

[[noreturn]] void fail_at(const std::string& path, const std::string& remedy) {
    const bool ask_root = geteuid() != 0 && (errno == EACCES || errno == EPERM);
    throw Failure(Exit::store,
                  path + ": " + strerror(errno) + "; " + (ask_root ? "ask root to run this command" : remedy));
}

// Whether this user namespace has the group: root of a namespace that an ordinary user made has only that user's.
bool is_mapped(gid_t group) {
    std::ifstream map("/proc/self/gid_map");
    if (!map) return true;
    for (uint64_t first = 0, outside = 0, count = 0; map >> first >> outside >> count;) {
        if (group >= first && group - first < count) return true;
    }
    return false;
}

// The group that is to read the store; none if this process is not root or there is no such group.
std::optional<gid_t> readers() {
    if (geteuid() != 0) return std::nullopt;
    const group* entry = getgrnam(group_name);
    if (!entry || !is_mapped(entry->gr_gid)) return std::nullopt;
    return entry->gr_gid;
}

// The directory or file at `path` itself, never what a link leads to: owner and mode are changed only of what is held
// open, so that nobody can swap the path in between.
class Handle {
  public:
    Handle(const std::string& path, int flags, mode_t kind) : path_(path) {
        descriptor_ = open(path.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
        if (descriptor_ < 0 && errno == ELOOP)
            throw Failure(Exit::store,
                          path_ +
                              ": is a link, perhaps to the store of cfql-collector; remove the link to create a "
                              "store here");
        if (descriptor_ < 0) fail_at(path_, "name a path in an existing directory");
        struct stat entry = {};
        const bool is_ours = fstat(descriptor_, &entry) == 0 && (entry.st_mode & S_IFMT) == kind &&
                             entry.st_uid == geteuid() && (kind == S_IFDIR || entry.st_nlink == 1);
        if (is_ours) return;
        close(descriptor_);
        throw Failure(Exit::store,
                      path_ + ": belongs to another user, or is not a plain file; name another with --store");
    }
    ~Handle() { close(descriptor_); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    void give(mode_t mode, std::optional<gid_t> group) const {
        if (group && fchown(descriptor_, 0, *group) != 0) fail_at(path_, "use a file system that keeps owners");
        if (fchmod(descriptor_, mode) != 0) fail_at(path_, "use a file system that keeps modes");
    }

  private:
    std::string path_;
    int descriptor_;
};

// Whether the directory had to be created.
bool make_directory(const std::string& directory, std::optional<gid_t> group) {
    if (mkdir(directory.c_str(), 0700) == 0) {
        Handle(directory, O_RDONLY | O_DIRECTORY, S_IFDIR).give(directory_mode, group);
        return true;
    }
    if (errno != EEXIST) fail_at(directory, "create its parent directory first");
    return false;
}

std::string octal(mode_t mode) {
    return {static_cast<char>('0' + (mode >> 9 & 7)), static_cast<char>('0' + (mode >> 6 & 7)),
            static_cast<char>('0' + (mode >> 3 & 7)), static_cast<char>('0' + (mode & 7))};
}

void report_created(const std::string& what, const std::string& path, mode_t mode, std::optional<gid_t> group) {
    report("created the " + what + ' ' + path + ", mode " + octal(mode) + (group ? ", root:cfql" : ""));
}

void report_readers(std::optional<gid_t> group) {
    if (group) return;
    if (geteuid() != 0) {
        print_line("not run as root: the files belong to you, and the group stays as it is");
    } else {
        print_line(
            "there is no group \"cfql\": create it with \"addgroup --system cfql\", then \"chgrp -R cfql\" the "
            "directory");
    }
}

}  // namespace

Exit init(const Request& request) {
    const std::string& path = request.store;
    const std::filesystem::path above = std::filesystem::path(path).parent_path();
    const std::string directory = above.empty() ? "." : above.string();
    const std::optional<gid_t> group = readers();
    if (make_directory(directory, group)) report_created("directory", directory, directory_mode, group);
    const Handle file(path, O_RDWR | O_CREAT, S_IFREG);
    Database database;
    const Status status = database.create(path.c_str());
    if (status != Status::ok) fail(path, status, "");
    file.give(file_mode, group);
    report_created("store", path, file_mode, group);
    report_readers(group);
    return Exit::done;
}

}  // namespace cfql::tool
