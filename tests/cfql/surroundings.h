// The surroundings of the store and its readers: files, mounts, the system log, /proc.
#ifndef TESTS_CFQL_LIBRARY_SURROUNDINGS_H
#define TESTS_CFQL_LIBRARY_SURROUNDINGS_H

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace store_test {

namespace fs = std::filesystem;

// A sanitizer has memory and needs of its own.
#ifdef ADDRESS_SANITIZER
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

// -- files

inline std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A new file.
inline void write_file(const std::string& path, const std::string& octets) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << octets;
}

// In place: the file stays the same, and so does its size if it was as long.
inline void overwrite(const std::string& path, const std::string& octets) {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const auto size = static_cast<off_t>(octets.size());
    const bool done = pwrite(file, octets.data(), octets.size(), 0) == size && ftruncate(file, size) == 0;
    close(file);
    if (!done) throw std::runtime_error("overwrite " + path);
}

// A number of a file of /proc, behind its label.
inline std::int64_t number_of(const std::string& path, const std::string& label) {
    const std::string text = "\n" + read_file(path);
    const std::size_t at = text.find("\n" + label);
    if (at == std::string::npos) throw std::runtime_error("no " + label + " in " + path);
    return std::stoll(text.substr(at + 1 + label.size()));
}

// Of memory, in kB; 0 where that would say nothing.
inline std::int64_t memory_of(const std::string& process, const std::string& label) {
    return sanitized ? 0 : number_of("/proc/" + process + "/status", label);
}

// -- mounts

inline void map_ids() {
    const std::string uid = std::to_string(getuid());
    const std::string gid = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER) != 0) return;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " + uid + " 1";
    std::ofstream("/proc/self/gid_map") << "0 " + gid + " 1";
}

// Mounts from here on are this process's and its children's alone.
inline void have_own_mounts() {
    if (getuid() != 0) map_ids();
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        throw std::runtime_error("no mounts of its own");
}

inline void mount_tmpfs(const std::string& directory, const char* options = "size=16m") {
    if (mount("tmpfs", directory.c_str(), "tmpfs", 0, options) != 0) throw std::runtime_error("tmpfs");
}

inline void bind_mount(const std::string& what, const std::string& at, unsigned long flags = 0) {
    if (mount(what.c_str(), at.c_str(), nullptr, MS_BIND, nullptr) != 0) throw std::runtime_error("bind " + what);
    if (flags != 0 && mount("none", at.c_str(), nullptr, MS_REMOUNT | MS_BIND | flags, nullptr) != 0)
        throw std::runtime_error("remount " + at);
}

// -- the log

// The system's log as this process and its children see it: a socket at /dev/log, in mounts of their own.
class SystemLog {
  public:
    // `directory` is one that goes with the test.
    explicit SystemLog(const std::string& directory) {
        have_own_mounts();
        const std::string devices = directory + "/dev";
        fs::create_directory(devices);
        mount_tmpfs(devices, "size=64k");
        for (const char* device : {"null", "zero", "full", "random", "urandom", "ptmx"}) {
            write_file(devices + "/" + device, "");
            bind_mount(std::string("/dev/") + device, devices + "/" + device);
        }
        if (mount(devices.c_str(), "/dev", nullptr, MS_BIND | MS_REC, nullptr) != 0) throw std::runtime_error("/dev");
        listen();
    }

    // What has been logged since the last call.
    std::vector<std::string> lines() const {
        std::vector<std::string> all;
        char line[2048];
        for (ssize_t size; (size = recv(socket_, line, sizeof line, MSG_DONTWAIT)) >= 0;)
            all.emplace_back(line, static_cast<std::size_t>(size));
        return all;
    }

    // So that a blocking sender waits for as long as nobody reads.
    static void fill() {
        const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const sockaddr_un at = address();
        if (connect(sender, reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0) throw std::runtime_error("log");
        while (send(sender, "<11>full", 8, MSG_DONTWAIT) == 8) {
        }
        close(sender);
    }

  private:
    static sockaddr_un address() { return {AF_UNIX, "/dev/log"}; }

    void listen() {
        const sockaddr_un at = address();
        socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0) throw std::runtime_error("bind");
    }

    int socket_ = -1;
};

}  // namespace store_test

#endif
