#include "salvage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdlib.h>
#include <filesystem>

#include "format.h"
#include "private_file.h"

namespace cfql::tool {

namespace {

// Where the header has the file's number of pages (https://sqlite.org/fileformat2.html).
constexpr size_t size_offset = 28;

// A regular file's contents, cut off at the largest size of a store; empty if it cannot be read. Takes no locks: nobody
// writes a damaged store.
std::string octets_of(const std::string& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return {};
    std::string octets;
    struct stat entry = {};
    if (fstat(descriptor, &entry) == 0 && S_ISREG(entry.st_mode)) {
        octets.resize(file_limit);
        const ssize_t count = pread(descriptor, octets.data(), octets.size(), 0);
        octets.resize(count < 0 ? 0 : static_cast<size_t>(count));
    }
    close(descriptor);
    return octets;
}

}  // namespace

PaddedCopy::PaddedCopy(const std::string& store) {
    std::string octets = octets_of(store);
    if (octets.size() < page_size) return;
    const size_t pages = number_at(reinterpret_cast<const unsigned char*>(octets.data()) + size_offset, 4);
    if (pages > page_limit) return;
    octets.resize(pages * page_size);
    directory_ = std::filesystem::temp_directory_path() / "cfql-salvage-XXXXXX";
    if (!mkdtemp(directory_.data())) {
        directory_.clear();
        return;
    }
    path_ = directory_ + "/store.db";
    write_private_file(path_, octets);
}

PaddedCopy::~PaddedCopy() {
    std::error_code ignored;
    if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
}

}  // namespace cfql::tool
