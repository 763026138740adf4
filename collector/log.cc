#include "log.h"

#include <unistd.h>

#include "text.h"

namespace collector {

namespace {

constexpr size_t most_causes = 1024;

// A single write, so that lines of several processes do not mix. If it fails, there is nobody to tell. The level is for
// the journal; a terminal gets none.
void write_line(const std::string& line) {
    const size_t start = isatty(STDERR_FILENO) ? line.find('>') + 1 : 0;
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data() + start, line.size() - start);
}

}  // namespace

Log::Log() : Log(write_line) {}

void Log::say(Level level, const std::string& message) {
    out_(std::string("<") + static_cast<char>(level) + '>' + "cfql-collector: " + cfql::tool::printable_line(message) +
         '\n');
}

void Log::holds(const std::string& cause, Level level, const std::string& message, int64_t now) {
    if (!causes_.contains(cause) && causes_.size() >= most_causes) return;
    Cause& entry = causes_[cause];
    entry.seen = now;
    if (entry.said == message || !may(entry.began, now)) return;
    entry.said = message;
    entry.began = now;
    say(level, message);
}

void Log::ended(const std::string& cause, const std::string& message, int64_t now) {
    const auto found = causes_.find(cause);
    if (found == causes_.end()) return;
    Cause& entry = found->second;
    if (!entry.said.empty() && !message.empty() && may(entry.ended, now)) {
        say(Level::notice, message);
        entry.said.clear();
        entry.ended = now;
    }
    if (message.empty()) entry.said.clear();
    if (entry.said.empty() && may(entry.began, now) && may(entry.ended, now)) causes_.erase(found);
}

void Log::end_others(const std::string& prefix, const std::string& message, int64_t since, int64_t now) {
    for (auto next = causes_.lower_bound(prefix); next != causes_.end() && next->first.starts_with(prefix);) {
        const auto entry = next++;
        if (entry->second.seen >= since) continue;
        ended(std::string(entry->first), message.empty() ? "" : entry->first.substr(prefix.size()) + message, now);
    }
}

}  // namespace collector
