// The log: standard error, one line a message with the level in front, as journald and syslog read it. A cause that
// goes on is said once, its end too; neither more than once a minute.
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

    // Once, without a cause that goes on.
    void say(Level level, const std::string& message);

    // `cause` holds at the time `now`, ms: said when it is new or its message another. `message` may hold what others
    // chose.
    void holds(const std::string& cause, Level level, const std::string& message, int64_t now);

    // It holds no more; `message` is said if its beginning was. Without a message it is just forgotten.
    void ended(const std::string& cause, const std::string& message, int64_t now);

    // Ends those that begin with `prefix` and were not said to hold since the time `since`.
    void end_others(const std::string& prefix, const std::string& message, int64_t since, int64_t now);

    size_t size() const { return causes_.size(); }

  private:
    struct Cause {
        std::string said;                     // the message; empty: nothing that holds has been said
        std::optional<int64_t> began, ended;  // when it was said last
        int64_t seen = 0;                     // when holds() was called last
    };
    static bool may(const std::optional<int64_t>& last, int64_t now) { return !last || now - *last >= pause; }

    Out out_;
    std::map<std::string, Cause> causes_;
};

}  // namespace collector
