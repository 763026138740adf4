#include "snmp_client.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <errno.h>
#include <stdint.h>
#include <string.h>
#include <time.h>
#include <algorithm>
#include <sstream>

namespace cfql::tool {

namespace {

constexpr int64_t most_ms = 60'000;
constexpr size_t most_output = size_t{1} << 20;  // 128 rows take a few kilobytes

int64_t now_ms() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

// A running program whose standard output and error are read. It is killed after a minute.
class Child {
  public:
    Child(const std::string& program, std::vector<std::string> words) {
        words.insert(words.begin(), program);
        std::vector<char*> arguments(words.size() + 1);
        std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
        if (pipe2(ends_, O_CLOEXEC) != 0) return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, ends_[1], STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, ends_[1], STDERR_FILENO);
        error_ = posix_spawnp(&id_, program.c_str(), &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends_[1]);
        fcntl(ends_[0], F_SETFL, O_NONBLOCK);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (id_ > 0) end();
        if (ends_[0] >= 0) close(ends_[0]);
    }

    int error() const { return error_; }

    std::string output() {
        const int64_t end = now_ms() + most_ms;
        std::string text;
        for (int64_t left = most_ms; left > 0 && text.size() < most_output; left = end - now_ms()) {
            pollfd waiting = {ends_[0], POLLIN, 0};
            if (poll(&waiting, 1, static_cast<int>(left)) <= 0) continue;
            char block[4096];
            const ssize_t count = read(ends_[0], block, sizeof block);
            is_at_end_ = count == 0;
            if (is_at_end_) break;
            if (count > 0) text.append(block, static_cast<size_t>(count));
        }
        return text;
    }

    // Its exit status; -1 if it had to be killed.
    int end() {
        int status = 0;
        if (!is_at_end_) kill(id_, SIGKILL);  // a program that has closed its output ends by itself
        waitpid(id_, &status, 0);
        id_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    int ends_[2] = {-1, -1};
    pid_t id_ = -1;
    int error_ = EMFILE;
    bool is_at_end_ = false;
};

std::vector<std::string> arguments_for(const SnmpAddress& address, int seconds, int tries,
                                       const std::vector<std::string>& oids) {
    std::vector<std::string> all = {"-m", "", "-t", std::to_string(seconds), "-r", std::to_string(tries - 1), "-Onx"};
    if (address.user.empty()) {
        all.insert(all.end(), {"-v", "2c", "-c", address.community});
    } else {
        all.insert(all.end(), {"-v", "3", "-u", address.user});
    }
    all.push_back("--");
    all.push_back(address.host);
    all.insert(all.end(), oids.begin(), oids.end());
    return all;
}

}  // namespace

SnmpAnswer ask(const std::string& program, const SnmpAddress& address, int seconds, int tries,
               const std::vector<std::string>& oids) {
    Child child(program, arguments_for(address, seconds, tries, oids));
    SnmpAnswer answer;
    if (child.error() != 0) {
        if (child.error() == ENOENT) answer.state = SnmpAnswer::State::no_client;
        answer.fault = program + ": " + strerror(child.error());
        return answer;
    }
    std::istringstream output(child.output());
    for (std::string line; std::getline(output, line);) {
        if (line.starts_with(".")) answer.lines.push_back(line);
        if (!line.empty()) answer.fault = line;
    }
    if (child.end() == 0) answer.state = SnmpAnswer::State::answered;
    return answer;
}

}  // namespace cfql::tool
