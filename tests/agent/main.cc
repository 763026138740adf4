// Gives each test a network namespace of its own, so that it can make interfaces and use any port.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "agent.h"

namespace {

bool write_file(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    const bool done = file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file >= 0) close(file);
    return done;
}

// Without root the program becomes root of a user namespace of its own.
bool become_root() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user == 0) return true;
    return unshare(CLONE_NEWUSER) == 0 && write_file("/proc/self/setgroups", "deny") &&
           write_file("/proc/self/uid_map", "0 " + std::to_string(user) + " 1") &&
           write_file("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

class OwnNetwork : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        ASSERT_EQ(unshare(CLONE_NEWNET), 0) << strerror(errno);
        run("ip link set lo up");
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    if (!become_root()) {
        perror("run the agent's tests as root, or with user namespaces allowed");
        return 1;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new OwnNetwork);
    return RUN_ALL_TESTS();
}
