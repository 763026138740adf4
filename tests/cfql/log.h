// Stands in for syslog: a program that includes this collects the library's log lines in log_lines.
#ifndef TESTS_CFQL_LIBRARY_LOG_H
#define TESTS_CFQL_LIBRARY_LOG_H

#include <stdarg.h>
#include <stdio.h>
#include <syslog.h>

#include <string>
#include <vector>

inline std::vector<std::string> log_lines;

inline void collect_log_line(int priority, const char* format, va_list arguments) {
    char line[1024];
    vsnprintf(line, sizeof line, format, arguments);
    log_lines.push_back("<" + std::to_string(priority) + ">" + line);
}

extern "C" void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    collect_log_line(priority, format, arguments);
    va_end(arguments);
}

// What a build with _FORTIFY_SOURCE calls instead.
extern "C" void __syslog_chk(int priority, int, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    collect_log_line(priority, format, arguments);
    va_end(arguments);
}

#endif
