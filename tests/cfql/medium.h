// What is on stable storage and what is not yet, by the calls that SQLite makes.
#ifndef TESTS_CFQL_LIBRARY_MEDIUM_H
#define TESTS_CFQL_LIBRARY_MEDIUM_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "disk.h"

namespace store_test {

using Image = std::map<std::string, std::string>;  // a file's name: what it holds

// A store's files.
inline Image read_all(const std::filesystem::path& directory) {
    Image image;
    for (const char* name : {"store.db", "store.db-journal"}) {
        if (!std::filesystem::exists(directory / name)) continue;
        std::ostringstream contents;
        contents << std::ifstream(directory / name).rdbuf();
        image[name] = contents.str();
    }
    return image;
}

inline void write_all(const std::filesystem::path& directory, const Image& image) {
    std::filesystem::remove_all(directory);
    std::filesystem::create_directory(directory);
    for (const auto& [name, contents] : image)
        std::ofstream(directory / name) << contents;
}

// A call that may change the disk.
struct Step {
    Call call;
    std::string file, octets;
    std::size_t place;

    Step(Call which, const Change& change)
        : call(which),
          file(change.path != nullptr ? std::filesystem::path(change.path).filename().string() : ""),
          octets(change.octets),
          place(static_cast<std::size_t>(change.place)) {}

    // Of a write, at most `limit` octets.
    void apply(std::string& contents, std::size_t limit) const {
        if (call == Call::truncate) return contents.resize(place);
        const std::string written = octets.substr(0, limit);
        contents.resize(std::max(contents.size(), place + written.size()));
        contents.replace(place, written.size(), written);
    }
};

// Which of the changes that are not synced a power cut leaves.
struct Cut {
    bool (*keeps)(std::size_t nth);  // of a file's writes and truncations
    bool torn;                       // the last of them that is kept ends after 512 octets
    bool entries;                    // those of the directory
};
inline constexpr Cut no_cut = {[](std::size_t) { return true; }, false, true};

// Nothing, everything, every other change. A page of the log is two writes: its header and itself.
inline constexpr bool (*survivors[])(std::size_t nth) = {
    [](std::size_t) { return false; },
    no_cut.keeps,
    [](std::size_t nth) { return nth % 2 == 0; },
    [](std::size_t nth) { return nth % 2 == 1; },
    [](std::size_t nth) { return nth / 2 % 2 == 1; },
};

class Medium {
  public:
    explicit Medium(const Image& stable) {
        for (const auto& [name, contents] : stable)
            now_[name] = std::make_shared<File>(File{contents, {}});
        synced_ = now_;
    }

    void take(const Step& step) {
        if (step.call == Call::sync_directory) {
            synced_ = now_;
        } else if (step.call == Call::remove) {
            now_.erase(step.file);
        } else if (step.call == Call::sync) {
            *now_.at(step.file) = {now_.at(step.file)->after(no_cut), {}};
        } else if (step.call == Call::write || step.call == Call::truncate) {
            now_.at(step.file)->unsynced.push_back(step);
        } else if (step.call == Call::open || step.call == Call::open_store) {
            now_.try_emplace(step.file, std::make_shared<File>());
        }
    }

    Image after(const Cut& cut) const {
        Image image;
        for (const auto& [name, file] : cut.entries ? now_ : synced_)
            image[name] = file->after(cut);
        return image;
    }

  private:
    struct File {
        std::string stable;
        std::vector<Step> unsynced;

        std::string after(const Cut& cut) const {
            std::string contents = stable;
            std::size_t end = unsynced.size();
            while (end > 0 && !cut.keeps(end - 1))
                --end;
            for (std::size_t nth = 0; nth < end; ++nth) {
                const bool torn = cut.torn && nth + 1 == end;
                if (cut.keeps(nth)) unsynced[nth].apply(contents, torn ? 512 : std::string::npos);
            }
            return contents;
        }
    };
    std::map<std::string, std::shared_ptr<File>> now_, synced_;  // the directory
};

}  // namespace store_test

#endif
