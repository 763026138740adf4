// What all tests of the store share: a place for it, the four calls, child processes, bounded waiting. Knows only the
// library's header.
#ifndef TESTS_CFQL_LIBRARY_CALLS_H
#define TESTS_CFQL_LIBRARY_CALLS_H

#include <cfqlquery.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace store_test {

// A directory that is removed with the object; CFQL_STORE names store.db in it. One for each process, because the
// library expects the store at one path.
class Place {
  public:
    Place() {
        char name[] = "/tmp/cfql-test-XXXXXX";
        if (mkdtemp(name) == nullptr) throw std::runtime_error("mkdtemp");
        directory_ = name;
        setenv("CFQL_STORE", path().c_str(), 1);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
        if (owner_ == getpid()) std::filesystem::remove_all(directory_);
    }

    const std::string& directory() const { return directory_; }
    std::string path() const { return directory_ + "/store.db"; }

  private:
    pid_t owner_ = getpid();
    std::string directory_;
};

struct Value {
    std::string table, object, key, value;
};

inline std::optional<std::string> get(const char* table, const char* object, const char* key) {
    cfqlquery_node* const answer = cfqlquery_get_pv(table, object, key);
    std::optional<std::string> value;
    if (answer != nullptr) value = answer->value;
    cfqlquery_destroy_pv(answer);
    return value;
}

inline int set(const char* table, const char* object, const char* key, const char* value) {
    const cfqlquery_node pair = {key, value, nullptr, 0};
    return cfqlquery_set_pv(table, object, &pair, 0);
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

inline Pairs grid(const char* table, const cfqlquery_node* filter = nullptr, int count = 1) {
    cfqlquery_node* const answer = cfqlquery_get_grid(table, nullptr, nullptr, filter, count);
    Pairs pairs;
    for (const cfqlquery_node* node = answer; node != nullptr; node = node->next)
        pairs.emplace_back(node->name, node->value);
    cfqlquery_destroy_pv(answer);
    return pairs;
}

template <class Condition>
bool eventually(Condition condition, std::chrono::seconds bound = std::chrono::minutes(5)) {
    const auto end = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Starts `body` in a child, whose exit status is what `body` returns.
template <class Body>
pid_t start(Body body) {
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork");
    if (child == 0) _exit(body());
    return child;
}

// The exit status, or 1000 + the signal that ended the child.
inline int finish(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
    }
    return WIFSIGNALED(status) ? 1000 + WTERMSIG(status) : WEXITSTATUS(status);
}

template <class Body>
int in_child(Body body) {
    return finish(start(body));
}

// A child that stops where its BODY calls the function passed to it, until the parent lets it continue. Waiting for a
// side that has ended returns false.
class SteppedChild {
  public:
    template <class Body>
    explicit SteppedChild(Body body) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) throw std::runtime_error("socketpair");
        child_ = start([&] {
            close(ends[0]);
            return body([parent = ends[1]] { return tell(parent) && hear(parent); });
        });
        close(ends[1]);
        end_ = ends[0];
    }
    SteppedChild(const SteppedChild&) = delete;
    SteppedChild& operator=(const SteppedChild&) = delete;
    ~SteppedChild() { close(end_); }

    bool wait_for_stop() const { return hear(end_); }
    bool go_on() const { return tell(end_); }
    int finish() const { return store_test::finish(child_); }

  private:
    static bool tell(int end) { return send(end, "x", 1, MSG_NOSIGNAL) == 1; }
    static bool hear(int end) {
        char octet = 0;
        return read(end, &octet, 1) == 1;
    }

    pid_t child_ = -1;
    int end_ = -1;
};

}  // namespace store_test

#endif
