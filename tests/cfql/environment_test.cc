// The store on file systems and under users that do not allow everything. Needs root or unprivileged user namespaces
// for the mounts and root for the other users; what the machine does not allow is skipped.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>

#include <fstream>

#include "fixture.h"

namespace {

using namespace store_test;
namespace fs = std::filesystem;

constexpr int not_allowed = 77;
constexpr uid_t nobody = 65534;

void map_ids() {
    const auto write_to = [](const char* path, const std::string& text) { std::ofstream(path) << text; };
    const uid_t uid = getuid();
    const gid_t gid = getgid();
    if (unshare(CLONE_NEWUSER) != 0) return;
    write_to("/proc/self/setgroups", "deny");
    write_to("/proc/self/uid_map", "0 " + std::to_string(uid) + " 1");
    write_to("/proc/self/gid_map", "0 " + std::to_string(gid) + " 1");
}

// Mounts a small file system at `directory` for this process and its children alone.
bool mount_small(const std::string& directory, const char* options) {
    if (getuid() != 0) map_ids();
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", directory.c_str(), "tmpfs", 0, options) == 0;
}

std::string value_of(int number) {
    return std::string(2000, static_cast<char>('a' + number % 26)) + std::to_string(number);
}

int check(const std::string& path) {
    cfql::Database store;
    int faults = 0;
    if (store.open(path.c_str(), cfql::Access::read) != cfql::Status::ok) return 1000;
    const auto count = [](void* context, const char*) { ++*static_cast<int*>(context); };
    return store.check(count, &faults) == cfql::Status::ok ? faults : 1000;
}

int fill_disk(const Place& place) {
    if (!mount_small(place.directory(), "size=512k")) return not_allowed;
    make(place.path());
    int written = 0;
    while (written < 1000 && set("load", "o", std::to_string(written).c_str(), value_of(written).c_str()) == 1)
        ++written;
    if (written < 50 || written == 1000) return 1;
    const std::string refused = std::to_string(written);
    if (in_child([&] { return get("load", "o", refused.c_str()) ? 1 : 0; }) != 0) return 3;
    const int lost = in_child([written] {
        for (int i = 0; i < written; ++i) {
            if (get("load", "o", std::to_string(i).c_str()) != value_of(i)) return 1;
        }
        return 0;
    });
    if (lost != 0 || get("load", "o", "0") != value_of(0)) return 4;
    return check(place.path()) == 0 ? 0 : 5;
}

TEST(Environment, AFullDiskRefusesWritesAndLosesNothing) {
    const Place place;
    const int result = in_child([&] { return fill_disk(place); });
    if (result == not_allowed) GTEST_SKIP() << "no mount namespace";
    EXPECT_EQ(result, 0);
}

int read_only(const Place& place) {
    if (!mount_small(place.directory(), "size=4m")) return not_allowed;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    if (mount("none", place.directory().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) return not_allowed;
    if (get("interface", "wlan0", "ssid") != "office" || grid("interface").size() != 1) return 1;
    if (set("interface", "wlan0", "ssid", "x") != 0) return 2;
    cfql::Database store;
    if (store.open(place.path().c_str(), cfql::Access::write) != cfql::Status::read_only) return 3;
    if (store.create((place.path() + "2").c_str()) != cfql::Status::read_only) return 4;
    return get("interface", "wlan0", "ssid") == "office" ? 0 : 5;
}

TEST(Environment, AReadOnlyFileSystemIsRead) {
    const Place place;
    const int result = in_child([&] { return read_only(place); });
    if (result == not_allowed) GTEST_SKIP() << "no mount namespace";
    EXPECT_EQ(result, 0);
}

// A socket where the system's log is, which nobody empties.
int log_socket() {
    const int log = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    const sockaddr_un place = {AF_UNIX, "/dev/log"};
    return bind(log, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0 ? log : -1;
}

int full_log(const Place& place) {
    if (!mount_small("/dev", "size=64k")) return not_allowed;
    std::ofstream(place.path()) << "no store";
    const int log = log_socket();
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    const sockaddr_un to = {AF_UNIX, "/dev/log"};
    if (log < 0 || connect(sender, reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0) return 1;
    while (send(sender, "x", 1, 0) == 1) {
    }
    if (errno != EAGAIN) return 2;
    alarm(20);
    if (in_child([] { return get("interface", "wlan0", "ssid") ? 1 : 0; }) != 0) return 3;
    char line[1024];
    while (recv(log, line, sizeof line, 0) == 1) {
    }
    if (get("interface", "wlan0", "ssid")) return 4;
    const ssize_t size = recv(log, line, sizeof line, 0);
    const std::string expected =
        "<27>cfqlquery[" + std::to_string(getpid()) + "]: " + place.path() + ": the file is not a configuration store";
    return std::string(line, static_cast<std::size_t>(std::max<ssize_t>(size, 0))) == expected ? 0 : 5;
}

TEST(Environment, AFullSystemLogStopsNobody) {
    const Place place;
    const int result = in_child([&] { return full_log(place); });
    if (result == not_allowed) GTEST_SKIP() << "no mount namespace";
    EXPECT_EQ(result, 0);
}

// A directory as it is installed, 2750 of root and a group, here the group of `nobody`.
class OtherUser : public testing::Test {
  protected:
    void SetUp() override {
        if (getuid() != 0) GTEST_SKIP() << "not root";
        ASSERT_EQ(chown(place.directory().c_str(), 0, nobody), 0);
        ASSERT_EQ(chmod(place.directory().c_str(), 02750), 0);
        make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    }
    template <class Body>
    int as(uid_t user, gid_t group, Body body) {
        return in_child([&] { return become(user, group) ? body() : 99; });
    }
    static bool become(uid_t user, gid_t group) { return setgid(group) == 0 && setuid(user) == 0; }
    Place place;
};

TEST_F(OtherUser, TheFilesAreOfTheGroupAndNotOfTheWorld) {
    for (const char* suffix : {"", "-journal"}) {
        struct stat file;
        ASSERT_EQ(stat((place.path() + suffix).c_str(), &file), 0) << suffix;
        EXPECT_EQ(file.st_mode & 07777, 0640U) << suffix;
        EXPECT_EQ(file.st_gid, nobody) << suffix;
    }
}

TEST_F(OtherUser, AMemberOfTheGroupReadsAndDoesNotWrite) {
    EXPECT_EQ(as(nobody, nobody,
                 [] {
                     if (get("interface", "wlan0", "ssid") != "office" || grid("interface").size() != 1) return 1;
                     if (set("interface", "wlan0", "ssid", "x") != 0) return 2;
                     return get("interface", "wlan0", "ssid") == "office" ? 0 : 3;
                 }),
              0);
}

TEST_F(OtherUser, AMemberOfTheGroupSeesWhatRootWrites) {
    const SteppedChild child([](auto stop) {
        if (!become(nobody, nobody)) return 99;
        for (const char* expected : {"office", "second", "third"}) {
            const auto sees = [&] {
                return grid("interface").size() == 1 && get("interface", "wlan0", "ssid") == expected;
            };
            if (!eventually(sees)) return 1;
            if (!stop()) return 2;
        }
        return 0;
    });
    for (const char* next : {"second", "third", "last"}) {
        ASSERT_TRUE(child.wait_for_stop());
        EXPECT_EQ(set("interface", "wlan0", "ssid", next), 1);
        ASSERT_TRUE(child.go_on());
    }
    EXPECT_EQ(child.finish(), 0);
}

TEST_F(OtherUser, AStrangerReadsNothing) {
    EXPECT_EQ(as(nobody, 12345, [] { return get("interface", "wlan0", "ssid") || !grid("interface").empty() ? 1 : 0; }),
              0);
}

TEST_F(OtherUser, RightsThatAreTakenAwayLeaveTheLastGoodContents) {
    const SteppedChild child([](auto stop) {
        if (!become(nobody, nobody)) return 99;
        if (get("interface", "wlan0", "ssid") != "office") return 1;
        if (!stop()) return 2;
        return grid("interface").size() == 1 && get("interface", "wlan0", "ssid") == "office" ? 0 : 3;
    });
    ASSERT_TRUE(child.wait_for_stop());
    ASSERT_EQ(chmod(place.directory().c_str(), 0700), 0);
    ASSERT_TRUE(child.go_on());
    EXPECT_EQ(child.finish(), 0);
}

TEST_F(OtherUser, TheEnvironmentIsIgnoredUnderRaisedRights) {
    const std::string program = place.directory() + "/print-path";
    fs::copy_file(PRINT_PATH, program);
    const auto says = [&](const std::string& path) {
        return in_child([&] { return execl(program.c_str(), program.c_str(), path.c_str(), nullptr); });
    };
    EXPECT_EQ(says(place.path()), 0);
    ASSERT_EQ(chown(program.c_str(), nobody, nobody), 0);
    ASSERT_EQ(chmod(program.c_str(), 04755), 0);
    EXPECT_EQ(says("/var/lib/cfql/store.db"), 0);
}

}  // namespace
