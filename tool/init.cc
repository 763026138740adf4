// The command init: the store's directory, its file, and who may use them.
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>

#include "commands.h"
#include "output.h"
#include "store.h"
#include "text.h"

namespace cfql::tool {

namespace {

// The set-group-ID bit hands the directory's group to every file made in it, the write-ahead log among them.
constexpr mode_t directory_mode = 02750;
constexpr mode_t file_mode = 0640;
constexpr const char* group_name = "cfql";

[[noreturn]] void fail_at(const std::string& path, const std::string& remedy) {
    throw Failure(Exit::store, path + ": " + std::strerror(errno) + "; " + remedy);
}

// The group that is to read the store; none when only root could set it, or when the system has no such group.
std::optional<gid_t> readers() {
    if (geteuid() != 0) return std::nullopt;
    const group* entry = getgrnam(group_name);
    if (entry == nullptr) return std::nullopt;
    return entry->gr_gid;
}

void own(const std::string& path, mode_t mode, std::optional<gid_t> group) {
    if (group && chown(path.c_str(), 0, *group) != 0) fail_at(path, "see that the file system keeps owners");
    if (chmod(path.c_str(), mode) != 0) fail_at(path, "see that the file system keeps modes");
}

// True when the directory had to be made.
bool make_directory(const std::string& directory, std::optional<gid_t> group) {
    if (mkdir(directory.c_str(), 0750) == 0) {
        own(directory, directory_mode, group);
        return true;
    }
    if (errno != EEXIST) fail_at(directory, "make the directory above it, or become root");
    return false;
}

std::string octal(mode_t mode) {
    return {static_cast<char>('0' + (mode >> 9 & 7)), static_cast<char>('0' + (mode >> 6 & 7)),
            static_cast<char>('0' + (mode >> 3 & 7)), static_cast<char>('0' + (mode & 7))};
}

void say_made(const std::string& what, const std::string& path, mode_t mode, std::optional<gid_t> group) {
    print_line("made the " + what + ' ' + path + ", mode " + octal(mode) + (group ? ", root:cfql" : ""));
}

void say_readers(std::optional<gid_t> group) {
    if (group) return;
    if (geteuid() != 0) {
        print_line("not run as root: the files belong to you, and the group stays as it is");
    } else {
        print_line(
            "there is no group \"cfql\": make it with \"addgroup --system cfql\", then \"chgrp -R cfql\" the "
            "directory");
    }
}

}  // namespace

Exit init(const Request& request) {
    const std::string& path = request.store;
    const std::filesystem::path above = std::filesystem::path(path).parent_path();
    const std::string directory = above.empty() ? "." : above.string();
    const std::optional<gid_t> group = readers();
    if (make_directory(directory, group)) say_made("directory", directory, directory_mode, group);
    Database database;
    const Status status = database.create(path.c_str());
    if (status != Status::ok) fail(path, status, "");
    own(path, file_mode, group);
    say_made("store", path, file_mode, group);
    say_readers(group);
    return Exit::done;
}

}  // namespace cfql::tool
