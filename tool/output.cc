#include "output.h"

#include <unistd.h>

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "failure.h"
#include "text.h"

namespace cfql::tool {

void print(std::string_view text) {
    fwrite(text.data(), 1, text.size(), stdout);
}

void print_line(std::string_view text) {
    print(text);
    print("\n");
}

void flush_output() {
    errno = 0;
    if (fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
    const std::string reason = errno != 0 ? strerror(errno) : "an earlier write failed";
    throw Failure(Exit::output, "standard output: " + reason + "; what was printed is not complete");
}

void report(std::string_view line) {
    print_line(printable_line(line));
}

void complain(std::string_view message) {
    const std::string line = "cfql: " + printable_line(message) + '\n';
    fwrite(line.data(), 1, line.size(), stderr);
}

bool on_terminal() {
    return isatty(STDOUT_FILENO) == 1;
}

std::string shown(std::string_view key, std::string_view value, bool reveal) {
    if (is_secret(key) && !reveal && on_terminal()) return std::string(mask);
    return printable(value);
}

std::string row(const ObjectRef& ref, std::string_view key, std::string_view value, bool reveal) {
    std::string line = printable(ref.table) + '\t' + printable(ref.name);
    if (!key.empty() || ref.nth > 1) line += '\t' + printable(key) + '\t' + shown(key, value, reveal);
    if (ref.nth > 1) line += '\t' + std::to_string(ref.nth);
    return line;
}

}  // namespace cfql::tool
