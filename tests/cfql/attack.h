// What the attacks on the store share. They know the library by its header, the store by its documented format, and
// the tool by its command line.
#ifndef TESTS_CFQL_LIBRARY_ATTACK_H
#define TESTS_CFQL_LIBRARY_ATTACK_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <iterator>

#include "calls.h"
#include "surroundings.h"

namespace store_test {

// -- processes

// Runs `body` in a process that has not asked the library yet. Expectations that fail there are printed, and fail the
// test; so does a process that has not ended after `seconds`.
template <class Body>
void alone(Body body, unsigned seconds = 120) {
    const int status = in_child([&] {
        alarm(seconds);
        try {
            body();
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
        fflush(nullptr);
        return testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_NE(status, 1000 + SIGALRM) << "hangs";
    EXPECT_EQ(status, 0);
}

struct Outcome {
    int status;  // 1000 + the signal that ended it
    std::string text;
    std::int64_t milliseconds;  // of the processor
    std::int64_t kilobytes;     // of memory, at the most; 0 with a sanitizer
};

// The result of the store's tool, or of another program, with both outputs.
inline Outcome run(const std::vector<std::string>& words) {
    char name[] = "/tmp/cfql-output-XXXXXX";
    const int output = mkstemp(name);
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = start([&] {
        alarm(120);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        return 127;
    });
    rusage usage;
    int status = 0;
    wait4(child, &status, 0, &usage);
    close(output);
    const std::string text = read_file(name);
    unlink(name);
    return {WIFSIGNALED(status) ? 1000 + WTERMSIG(status) : WEXITSTATUS(status), text,
            usage.ru_utime.tv_sec * 1000 + usage.ru_utime.tv_usec / 1000, sanitized ? 0 : usage.ru_maxrss};
}

inline Outcome tool(const std::string& path, std::vector<std::string> words) {
    words.insert(words.begin(), {CFQL, "--store", path});
    return run(words);
}

inline void done(const Outcome& outcome) {
    if (outcome.status != 0) throw std::runtime_error(outcome.text);
}

// -- stores

// Runs any statements, in a process of their own: what an attacker could do to a store.
inline void sql(const std::string& path, const std::string& statements) {
    const int code = in_child([&] {
        sqlite3* connection = nullptr;
        char* message = nullptr;
        sqlite3_open(path.c_str(), &connection);
        sqlite3_busy_timeout(connection, 20000);
        const int result = sqlite3_exec(connection, statements.c_str(), nullptr, nullptr, &message);
        if (message != nullptr) fprintf(stderr, "%s: %s\n", statements.c_str(), message);
        sqlite3_close(connection);
        return result & 0xff;
    });
    if (code != SQLITE_OK) throw std::runtime_error(statements);
}

// A store that holds `values`, made by the tool.
inline void make_store(const std::string& path, const std::vector<Value>& values) {
    done(tool(path, {"init"}));
    for (const Value& v : values)
        done(tool(path, {"set", v.table, v.object, v.key, v.value}));
}

inline Value ssid_is(const std::string& value) {
    return {"interface", "wlan0", "ssid", value};
}

// The ssid in the latest state of the store: a grid asks for it.
inline std::optional<std::string> ssid() {
    grid("interface");
    return get("interface", "wlan0", "ssid");
}

// -- what a call costs

inline std::int64_t processor_microseconds() {
    timespec used;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return std::int64_t{used.tv_sec} * 1000000 + used.tv_nsec / 1000;
}

inline std::int64_t sleeps_so_far() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw;
}

struct Cost {
    std::int64_t microseconds;  // of the processor
    std::int64_t kilobytes;     // of memory, at the most; 0 with a sanitizer
    std::int64_t octets;        // read from files
    std::int64_t sleeps;        // times that the process waited for something
};

template <class Body>
Cost cost_of(Body body) {
    std::ofstream("/proc/self/clear_refs") << "5";  // resets the peak
    const std::int64_t memory = memory_of("self", "VmRSS:");
    const std::int64_t nothing = number_of("/proc/self/io", "rchar:");
    const std::int64_t read = number_of("/proc/self/io", "rchar:");
    const std::int64_t slept = sleeps_so_far();
    const std::int64_t begin = processor_microseconds();
    body();
    const std::int64_t end = processor_microseconds();
    const std::int64_t woken = sleeps_so_far();
    const std::int64_t octets = number_of("/proc/self/io", "rchar:") - read - (read - nothing);
    return {end - begin, memory_of("self", "VmHWM:") - memory, octets, woken - slept};
}

}  // namespace store_test

#endif
