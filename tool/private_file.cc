#include "private_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include "failure.h"

namespace cfql::tool {

namespace {

[[noreturn]] void fail(const std::string& file, const std::string& remedy) {
    throw Failure(Exit::output, file + ": " + strerror(errno) + "; " + remedy);
}

// A new file beside `file`: commit() puts it in its place, otherwise it is removed.
class Replacement {
  public:
    explicit Replacement(const std::string& file) : file_(file), path_(file + ".XXXXXX") {
        descriptor_ = mkostemp(path_.data(), O_CLOEXEC);
        if (descriptor_ < 0) fail(file_, "name a file in a directory that you may write");
    }
    ~Replacement() {
        close(descriptor_);
        if (!committed_) unlink(path_.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t count = ::write(descriptor_, text.data(), text.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) fail(file_, "nothing has been written");
            text.remove_prefix(static_cast<size_t>(count));
        }
    }

    void commit() {
        if (fsync(descriptor_) != 0) fail(file_, "nothing has been written");
        if (rename(path_.c_str(), file_.c_str()) != 0) fail(file_, "nothing has been written");
        committed_ = true;
    }

  private:
    std::string file_;
    std::string path_;
    int descriptor_;
    bool committed_ = false;
};

void require_regular_file(const std::string& file) {
    struct stat entry = {};
    if (lstat(file.c_str(), &entry) != 0 || S_ISREG(entry.st_mode)) return;
    throw Failure(Exit::output, file + ": is not a regular file; name another one");
}

}  // namespace

void write_private_file(const std::string& file, std::string_view text) {
    require_regular_file(file);
    Replacement replacement(file);
    replacement.write(text);
    replacement.commit();
}

}  // namespace cfql::tool
