#include "tool.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe() { EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0); }
    ~Pipe() {
        close_end(0);
        close_end(1);
    }
    void close_end(int which) {
        if (ends[which] >= 0) close(ends[which]);
        ends[which] = -1;
    }
};

// Only what is safe between fork and exec.
// The program is opened before the rights are given up: another user may have no way into the folder of the build.
[[noreturn]] void become_tool(const std::string& store, const std::vector<char*>& arguments, unsigned user) {
    const int program = open(CFQL_TOOL, O_RDONLY | O_CLOEXEC);
    if (user != 0 && (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0)) _exit(125);
    setenv("CFQL_STORE", store.c_str(), 1);
    fexecve(program, arguments.data(), environ);
    _exit(126);
}

std::vector<char*> pointers(Words& words) {
    words.insert(words.begin(), "cfql");
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return arguments;
}

std::string contents_of(int descriptor) {
    std::string text;
    char block[4096];
    for (ssize_t count = 0; (count = read(descriptor, block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(count));
    return text;
}

int status_of(int pid) {
    int status = 0;
    EXPECT_EQ(waitpid(pid, &status, 0), pid);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// An anonymous file: input and output need no thread of their own to keep them from blocking each other.
int file_with(const std::string& text) {
    const int descriptor = memfd_create("text", MFD_CLOEXEC);
    EXPECT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    lseek(descriptor, 0, SEEK_SET);
    return descriptor;
}

std::string taken(int descriptor) {
    lseek(descriptor, 0, SEEK_SET);
    std::string text = contents_of(descriptor);
    close(descriptor);
    return text;
}

}  // namespace

Tool::Tool() {
    char name[] = "/tmp/cfql-tool-XXXXXX";
    EXPECT_NE(mkdtemp(name), nullptr);
    directory = name;
    store = directory + "/store.db";
}

Tool::~Tool() {
    std::filesystem::remove_all(directory);
}

Outcome Tool::run(const Words& words, const Setting& setting) const {
    Words copy = words;
    const std::vector<char*> arguments = pointers(copy);
    const std::string path = setting.path.empty() ? store : setting.path;
    const int input = file_with(setting.input);
    const int out = file_with("");
    const int err = file_with("");
    const int pid = fork();
    if (pid == 0) {
        const int output = setting.output.empty() ? out : open(setting.output.c_str(), O_WRONLY);
        if (dup2(input, 0) < 0 || dup2(output, 1) < 0 || dup2(err, 2) < 0) _exit(127);
        become_tool(path, arguments, setting.user);
    }
    const int status = status_of(pid);
    close(input);
    return {status, taken(out), taken(err)};
}

// A note is about what a store may well hold.
static std::string without_notes(const std::string& said) {
    std::istringstream lines(said);
    std::string rest;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("cfql: note: ")) rest += line + '\n';
    }
    return rest;
}

Outcome Tool::run_on_terminal(const Words& words) const {
    Words copy = words;
    const std::vector<char*> arguments = pointers(copy);
    int terminal = -1;
    const int pid = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (pid == 0) become_tool(store, arguments, 0);
    std::string out = contents_of(terminal);  // up to the error that means that the other side is closed
    close(terminal);
    std::erase(out, '\r');
    return {status_of(pid), out, ""};
}

std::string Tool::done(const Words& words, const Setting& setting) const {
    const Outcome outcome = run(words, setting);
    EXPECT_EQ(outcome.status, 0) << words.front();
    EXPECT_EQ(without_notes(outcome.err), "") << words.front();
    return outcome.out;
}

std::string Tool::write(const std::string& name, const std::string& text) const {
    const std::string path = directory + '/' + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

Background::Background(const std::string& store, const Words& words) {
    Words copy = words;
    const std::vector<char*> arguments = pointers(copy);
    Pipe both;
    pid_ = fork();
    if (pid_ == 0) {
        if (dup2(both.ends[1], 1) < 0 || dup2(both.ends[1], 2) < 0) _exit(127);
        become_tool(store, arguments, 0);
    }
    output_ = both.ends[0];
    both.ends[0] = -1;
}

Background::~Background() {
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
    close(output_);
}

std::string Background::wait_for(const std::string& text) {
    constexpr int patience_ms = 200'000;
    for (;;) {
        const std::size_t found = said_.find(text);
        if (found != std::string::npos) {
            const std::string answer = said_.substr(0, found + text.size());
            said_.erase(0, answer.size());
            return answer;
        }
        pollfd waiting = {output_, POLLIN, 0};
        char block[4096];
        const ssize_t count = poll(&waiting, 1, patience_ms) == 1 ? read(output_, block, sizeof block) : -1;
        if (count <= 0) {
            ADD_FAILURE() << "never said: " << text << "\nbut: " << said_;
            return {};
        }
        said_.append(block, static_cast<std::size_t>(count));
    }
}
