// What the database's code takes of the memory of a process that has asked the store.
#include "code_pages.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "fixture.h"

namespace {

using namespace store_test;

// kB. What a mapping ends with may be part of a page, which stays.
const int page = static_cast<int>(sysconf(_SC_PAGESIZE) / 1024);

// kB of the mapping that ADDRESS lies in which are in memory.
int resident(const void* address) {
    std::ifstream file("/proc/self/smaps");
    std::string line;
    bool here = false;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::uintptr_t first = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        if (words >> std::hex >> first >> dash >> end && dash == '-') {
            here = reinterpret_cast<std::uintptr_t>(address) - first < end - first;
        }
        if (here && line.starts_with("Rss:")) return std::stoi(line.substr(4));
    }
    return -1;
}

int database_code() {
    return resident(reinterpret_cast<const void*>(&sqlite3_open_v2));
}

TEST(TheDatabasesCode, IsInMemoryWhileItRuns) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    EXPECT_GT(database_code(), page);
}

TEST(TheDatabasesCode, IsReleasedAfterTheFirstRead) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    EXPECT_EQ(get("interface", "wlan0", "ssid"), "office");
    EXPECT_LE(database_code(), page);
}

TEST(TheDatabasesCode, IsReleasedAfterALookAtAStoreThatIsAsItWas) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    for (int look = 1; look <= 3; ++look) {
        EXPECT_EQ(grid("interface"), (Pairs{{"name", "wlan0"}}));
        EXPECT_LE(database_code(), page) << look;
    }
}

TEST(TheDatabasesCode, IsReleasedAfterALookAtAStoreThatChanged) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    EXPECT_EQ(grid("interface"), (Pairs{{"name", "wlan0"}}));
    put(place.path(), {{"interface", "wlan1", "ssid", "guests"}});
    EXPECT_GT(database_code(), page);
    EXPECT_EQ(grid("interface"), (Pairs{{"name", "wlan0"}, {"name", "wlan1"}}));
    EXPECT_LE(database_code(), page);
}

TEST(TheDatabasesCode, IsReleasedAfterAWriteAndAfterARefusedOne) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
    EXPECT_EQ(set("interface", "wlan0", "ssid", "lobby"), 1);
    EXPECT_LE(database_code(), page);
    EXPECT_EQ(set("interface", "wlan0", "name", "wlan1"), 0);
    EXPECT_LE(database_code(), page);
    EXPECT_EQ(get("interface", "wlan0", "ssid"), "lobby");
}

TEST(TheDatabasesCode, IsReleasedWhenThereIsNoStore) {
    const Place place;
    EXPECT_EQ(grid("interface"), Pairs());
    EXPECT_LE(database_code(), page);
}

// A library beside the test, closed with the object.
class Library {
  public:
    explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) throw std::runtime_error(dlerror());
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { dlclose(handle_); }

    template <class Type>
    Type* the(const char* name) const {
        return reinterpret_cast<Type*>(dlsym(handle_, name));
    }

  private:
    void* handle_;
};

TEST(CodePages, AreReleasedWithTheConstantsAndWithoutTheVariables) {
    const Library library(CODE_PAGES_PLAIN);
    auto* const sum = library.the<int(int)>("sum");
    const auto* const constants = library.the<const char>("constants");
    auto* const variables = library.the<char>("variables");
    variables[0] = 40;
    EXPECT_EQ(sum(0), 41);
    EXPECT_GT(resident(constants), page);
    EXPECT_GT(resident(reinterpret_cast<const void*>(sum)), page);
    cfql::release_code_pages(constants);
    EXPECT_LE(resident(constants), page);
    EXPECT_LE(resident(reinterpret_cast<const void*>(sum)), page);
    EXPECT_EQ(sum(0), 41);
}

TEST(CodePages, StayWhereTheLoaderWroteIntoThem) {
    const Library library(CODE_PAGES_RELOCATED);
    const auto* const constants = library.the<const char>("constants");
    auto* const word = library.the<const void*()>("word");
    EXPECT_EQ(word(), constants);
    cfql::release_code_pages(reinterpret_cast<const void*>(word));
    EXPECT_EQ(word(), constants);
}

TEST(CodePages, OfAnAddressInNoLibraryAreNone) {
    std::vector<char> heap(1 << 20, 'h');
    cfql::release_code_pages(heap.data());
    cfql::release_code_pages(nullptr);
    EXPECT_EQ(heap, std::vector<char>(1 << 20, 'h'));
}

}  // namespace
