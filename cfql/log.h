// A line to the system's log that never makes the caller wait.
#pragma once

namespace cfql {

// Sends `line` to /dev/log as an error. It is lost when nobody takes it at once: a full log must not stop an agent, as
// it would with syslog().
void log_error(const char* line);

}  // namespace cfql
