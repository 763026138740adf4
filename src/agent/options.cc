#include "agent/options.h"

#include <stdlib.h>

#include "access/iterator.h"
#include "agent/handler.h"

namespace dot11 {

namespace {

constexpr char answers_values[] = "standard | complete";
constexpr char max_age_values[] = "SECONDS, 1 to 3600";
constexpr long longest_age = 3600;

// The agent itself logs a line without a value.
void warn(const char* token, const char* line, const char* values) {
    if (*line) netsnmp_config_warn("%s must be %s", token, values);
}

// Copies the line's only word into `word`. False if there is none, or more than one, or if it does not fit.
template <size_t size>
bool only_word(const char* line, char (&word)[size]) {
    return strlen(line) < size && !copy_nword_const(line, word, size) && *word != '\0';
}

void parse_answers(const char* token, char* line) {
    char word[16];
    const bool one = only_word(line, word);
    const bool complete = one && strcmp(word, "complete") == 0;
    if (!complete && !(one && strcmp(word, "standard") == 0)) return warn(token, line, answers_values);
    complete_answers = complete;
}

void parse_max_age(const char* token, char* line) {
    char word[16];
    if (!only_word(line, word)) return warn(token, line, max_age_values);
    char* end = nullptr;
    const long seconds = strtol(word, &end, 10);
    if (*end != '\0' || seconds < 1 || seconds > longest_age) return warn(token, line, max_age_values);
    max_age = static_cast<uint32_t>(seconds);
}

void reset_answers() {
    complete_answers = false;
}

void reset_max_age() {
    max_age = 0;
}

}  // namespace

void register_options() {
    register_app_config_handler("dot11Answers", parse_answers, reset_answers, answers_values);
    register_app_config_handler("dot11MaxAge", parse_max_age, reset_max_age, max_age_values);
}

}  // namespace dot11
