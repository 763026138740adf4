// store-damage STEP: damages every STEP-th page of a store and of the journal of an interrupted write, and the files as
// wholes, in every way of the table below, and lets a child read everything. Exit status 0: no child died, hung or saw
// a value that was never committed.
//
// Each case runs twice: the child reads the damaged store for the first time, or it has read it before the damage and
// is told to check again after another process tried to write.
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <fstream>
#include <iterator>

#include "fixture.h"

namespace {

using namespace store_test;
namespace fs = std::filesystem;

using Bytes = std::string;
constexpr std::size_t page_size = 1024;
constexpr int objects = 60;
constexpr int keys = 6;

std::string name_of(int object) {
    return "wlan" + std::to_string(object);
}
std::string key_of(int key) {
    return "key-" + std::to_string(key);
}

// A value says what it is of, so that a value in the wrong place is known.
std::string value_of(int object, int key, int generation) {
    std::string text = name_of(object) + "/" + key_of(key) + "/" + std::to_string(generation) + "/";
    return text + std::string(static_cast<std::size_t>(object * 7 + key * 13) % 300, 'v');
}

// Generation 0 sets everything, later ones a part.
void write_generation(cfql::Database& store, int generation) {
    require(store.begin_write());
    for (int o = 0; o < objects; ++o) {
        for (int k = 0; k < keys; ++k) {
            if (generation == 0 || (o + k) % 3 == generation)
                require(store.set("interface", name_of(o), key_of(k), value_of(o, k, generation)));
        }
    }
}

// What a reader may see. 0, or the rule that is broken.
int read_all() {
    for (const auto& [tag, name] : grid("interface")) {
        const int object = name.rfind("wlan", 0) == 0 ? atoi(name.c_str() + 4) : -1;
        if (tag != "name" || object < 0 || object >= objects || name != name_of(object)) return 1;
    }
    for (int o = 0; o < objects; ++o) {
        for (int k = 0; k < keys; ++k) {
            const auto value = get("interface", name_of(o).c_str(), key_of(k).c_str());
            if (!value || *value == value_of(o, k, 0) || *value == value_of(o, k, (o + k) % 3)) continue;
            return 2;
        }
    }
    return 0;
}

Bytes load(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// In place: the same file, as a failing medium or a stray program changes it.
void save(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

Bytes noise(std::size_t size, unsigned seed) {
    Bytes bytes(size, '\0');
    for (char& octet : bytes)
        octet = static_cast<char>((seed = seed * 1103515245U + 12345U) >> 16);
    return bytes;
}

// A file in pages behind a header of its own (the journal's; the store has none), and the same file at an earlier time.
struct Target {
    Bytes now;
    Bytes earlier;
    std::size_t at;     // the page's place
    std::size_t size;   // of a page, with what the journal puts around it
    std::size_t other;  // the place of another page
};

struct Damage {
    const char* what;
    void (*apply)(Target& t);
};

const Damage page_damages[] = {
    {"truncated before the page", [](Target& t) { t.now.resize(t.at); }},
    {"truncated within the page", [](Target& t) { t.now.resize(t.at + t.size / 2); }},
    {"zeroes", [](Target& t) { t.now.replace(t.at, t.size, Bytes(t.size, '\0')); }},
    {"ones", [](Target& t) { t.now.replace(t.at, t.size, Bytes(t.size, '\xff')); }},
    {"garbage", [](Target& t) { t.now.replace(t.at, t.size, noise(t.size, 1)); }},
    {"garbage in the second half",
     [](Target& t) { t.now.replace(t.at + t.size / 2, t.size / 2, noise(t.size / 2, 2)); }},
    {"garbage in the page's header", [](Target& t) { t.now.replace(t.at, 12, noise(12, 3)); }},
    {"a wrong count and wrong offsets", [](Target& t) { t.now.replace(t.at + 2, 20, Bytes(20, '\x07')); }},
    {"one bit",
     [](Target& t) { t.now[t.at + t.size * 2 / 3] = static_cast<char>(t.now[t.at + t.size * 2 / 3] ^ 0x10); }},
    {"swapped with another page",
     [](Target& t) {
         const Bytes page = t.now.substr(t.at, t.size);
         const Bytes other = t.now.substr(t.other, t.size);
         t.now.replace(t.at, t.size, other);
         t.now.replace(t.other, t.size, page);
     }},
    {"the same as another page", [](Target& t) { t.now.replace(t.at, t.size, t.now.substr(t.other, t.size)); }},
    {"stale",
     [](Target& t) {
         if (t.at + t.size <= t.earlier.size()) t.now.replace(t.at, t.size, t.earlier.substr(t.at, t.size));
     }},
};

const Damage file_damages[] = {
    {"empty", [](Target& t) { t.now.clear(); }},
    {"a text", [](Target& t) { t.now = "ssid=office\n"; }},
    {"garbage", [](Target& t) { t.now = noise(t.now.size(), 4); }},
    {"garbage in the header", [](Target& t) { t.now.replace(0, 100, noise(100, 5)); }},
    {"one octet short", [](Target& t) { t.now.pop_back(); }},
    {"one octet longer", [](Target& t) { t.now += 'x'; }},
    {"stale", [](Target& t) { t.now = t.earlier; }},
};

struct Images {
    Bytes store, earlier_store;                         // before the damage; one generation before
    Bytes interrupted_store, journal, earlier_journal;  // in the middle of a write
};

class Damager {
  public:
    Damager(const Place& place, Images images, std::size_t step)
        : path_(place.path()), images_(std::move(images)), step_(step) {}

    int run() {
        damage_file("store", images_.store, images_.earlier_store, "", 0, page_size);
        interrupted_ = true;
        damage_file("interrupted store", images_.interrupted_store, images_.earlier_store, "", 0, page_size);
        damage_file("journal", images_.journal, images_.earlier_journal, "-journal", 512, page_size + 8);
        printf("%d damaged stores read, %d failures\n", cases_, failures_);
        return failures_ == 0 ? 0 : 1;
    }

  private:
    void damage_file(const char* file, const Bytes& now, const Bytes& earlier, const char* suffix, std::size_t header,
                     std::size_t size) {
        const std::size_t pages = now.size() < header ? 0 : (now.size() - header) / size;
        for (std::size_t page = 0; page < pages; page += step_) {
            const std::size_t other = header + (page + 1 + page % 3) % pages * size;
            for (const Damage& damage : page_damages) {
                one(file, suffix, damage, {now, earlier, header + page * size, size, other}, static_cast<int>(page));
            }
        }
        for (const Damage& damage : file_damages)
            one(file, suffix, damage, {now, earlier, 0, size, 0}, -1);
    }

    void one(const char* file, const char* suffix, const Damage& damage, Target target, int page) {
        damage.apply(target);
        for (const bool open_before : {false, true}) {
            restore();
            const int result = open_before ? read_across(suffix, target.now) : read_after(suffix, target.now);
            ++cases_;
            if (result == 0) continue;
            ++failures_;
            fprintf(stderr, "%s, page %d, %s, %s: %d\n", file, page, damage.what,
                    open_before ? "open before" : "opened after", result);
        }
    }

    // New files each time: no lock of the case before has a part in the next.
    void restore() {
        for (const char* suffix : {"", "-journal"})
            fs::remove(path_ + suffix);
        save(path_, interrupted_ ? images_.interrupted_store : images_.store);
        if (interrupted_) save(path_ + "-journal", images_.journal);
    }

    int read_after(const char* suffix, const Bytes& damaged) {
        save(path_ + suffix, damaged);
        return in_child([this] {
            alarm(200);
            const int result = read_all();
            if (result != 0 || !interrupted_) return result;
            // What an interrupted write left is undone by whoever may write.
            cfql::Database().open(path_.c_str(), cfql::Access::recover);
            return in_child(read_all);
        });
    }

    int read_across(const char* suffix, const Bytes& damaged) {
        // A child that reads before the damage needs a store that can be read.
        fs::remove(path_ + "-journal");
        save(path_, images_.store);
        const SteppedChild child([](auto stop) {
            alarm(200);
            if (read_all() != 0 || !get("interface", "wlan0", "key-0")) return 10;
            if (!stop()) return 11;
            return read_all();
        });
        if (child.wait_for_stop()) {
            restore();
            save(path_ + suffix, damaged);
            // A write, if the store still allows one, makes the reader look at the pages again.
            in_child([] { return set("other", "o", "k", "v"); });
            child.go_on();
        }
        return child.finish();
    }

    std::string path_;
    Images images_;
    std::size_t step_;
    bool interrupted_ = false;
    int cases_ = 0;
    int failures_ = 0;
};

// The third generation is caught in the middle: it is larger than SQLite's cache, so that pages of it are in the store
// before it is committed.
Images prepare(const Place& place) {
    Images images;
    make(place.path());
    cfql::Database store;
    require(store.open(place.path().c_str(), cfql::Access::write));
    write_generation(store, 0);
    require(store.commit());
    images.earlier_store = load(place.path());
    write_generation(store, 1);
    images.earlier_journal = load(place.path() + "-journal");
    require(store.commit());
    images.store = load(place.path());
    write_generation(store, 2);
    images.interrupted_store = load(place.path());
    images.journal = load(place.path() + "-journal");
    store.rollback();
    if (images.interrupted_store == images.store) throw std::runtime_error("the write was too small");
    return images;
}

}  // namespace

int main(int count, char** arguments) {
    const int step = count == 2 ? atoi(arguments[1]) : 0;
    if (step <= 0) {
        fprintf(stderr, "usage: store-damage STEP\n");
        return 2;
    }
    const Place place;
    Images images = prepare(place);
    printf("%zu octets of store, %zu of journal\n", images.store.size(), images.journal.size());
    return Damager(place, std::move(images), static_cast<std::size_t>(step)).run();
}
