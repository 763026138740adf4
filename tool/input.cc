#include "input.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <memory>

#include "database.h"
#include "failure.h"

namespace cfql::tool {

namespace {

constexpr size_t longest_file = size_t{64} << 20;

// The rest of `stream`; stops soon after `limit` octets.
std::string rest_of(FILE* stream, size_t limit, const std::string& source) {
    std::string text;
    char block[4096];
    errno = 0;
    while (text.size() <= limit) {
        const size_t count = std::fread(block, 1, sizeof block, stream);
        if (count == 0) break;
        text.append(block, count);
    }
    if (std::ferror(stream) != 0) throw Failure(Exit::input, source + ": " + strerror(errno) + "; nothing has changed");
    return text;
}

std::string bounded(FILE* stream, const std::string& source) {
    std::string text = rest_of(stream, longest_file, source);
    if (text.size() <= longest_file) return text;
    throw Failure(Exit::input, source + ": longer than 64 MiB; import it in several pieces");
}

}  // namespace

std::string value_from_input() {
    std::string value = rest_of(stdin, value_limit + 1, "standard input");
    if (value.ends_with('\n')) value.pop_back();
    return value;
}

std::string text_of(const std::string& file) {
    if (file == "-") return bounded(stdin, "standard input");
    const std::unique_ptr<FILE, int (*)(FILE*)> stream(fopen(file.c_str(), "re"), fclose);
    if (!stream) throw Failure(Exit::input, file + ": " + strerror(errno) + "; name a file that can be read, or \"-\"");
    return bounded(stream.get(), file);
}

}  // namespace cfql::tool
