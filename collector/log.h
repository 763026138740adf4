// The log: standard error, a line for each message with the level in front, as journald and syslog read it; a terminal
// gets none. A lasting condition is logged once, and so is its end; neither more than once a minute.
#pragma once

#include <stdint.h>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace collector {

enum class Level : char { error = '3', warning = '4', notice = '5', info = '6' };

class Log {
  public:
    using Out = std::function<void(const std::string& line)>;
    static constexpr int64_t pause = 60000;  // ms

    Log();  // to standard error
    explicit Log(Out out) : out_(std::move(out)) {}

    // Logs a single message.
    void say(Level level, const std::string& message);

    // The condition `cause` holds at the time `now`, in ms: logged if it is new or its message has changed. `message`
    // is escaped, so it may hold others' data.
    void holds(const std::string& cause, Level level, const std::string& message, int64_t now);

    // The condition has ended: `message` is logged if its beginning was. An empty message just forgets it.
    void ended(const std::string& cause, const std::string& message, int64_t now);

    // Ends the conditions that begin with `prefix` and have not held since the time `since`.
    void end_others(const std::string& prefix, const std::string& message, int64_t since, int64_t now);

    size_t size() const { return causes_.size(); }

  private:
    struct Cause {
        std::string said;                     // the message that was logged; empty: none, or its end was logged
        std::optional<int64_t> began, ended;  // when its beginning and its end were last logged
        int64_t seen = 0;                     // when holds() was last called
    };
    static bool may(const std::optional<int64_t>& last, int64_t now) { return !last || now - *last >= pause; }

    Out out_;
    std::map<std::string, Cause> causes_;
};

}  // namespace collector
