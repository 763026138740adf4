// Many objects, many writes, one state.
#include <gtest/gtest.h>
#include <signal.h>
#include <string.h>

#include <fstream>

#include "fixture.h"

// Stands in for the C library's: counts the overwritten blocks that held `secret`.
static const char* secret = nullptr;
static int wiped = 0;

extern "C" void explicit_bzero(void* memory, size_t size) {
    // Volatile: the compiler holds that this function only writes, and that nobody looks at the result.
    void* volatile block = memory;
    if (secret != nullptr && memmem(block, size, secret, strlen(secret)) != nullptr) ++wiped;
    static void* (*volatile fill)(void*, int, size_t) = memset;
    fill(block, 0, size);
}

namespace {

using namespace store_test;
using cfql::Status;

// Writes `count` objects with a value of `size` octets each, in one transaction, the first of them with a mark.
Status fill(const std::string& path, int count, std::size_t size) {
    cfql::Database store;
    const std::string padding(size, 'p');
    std::int64_t id = 0;
    require(store.create(path.c_str()));
    require(store.open(path.c_str(), cfql::Access::write));
    require(store.begin_write());
    Status status = Status::ok;
    for (int i = 0; i < count && status == Status::ok; ++i) {
        const std::string name = "o" + std::to_string(i);
        status = store.insert_object("interface", name, id);
        if (status == Status::ok) status = store.set_attribute(id, "interface", name, "k", std::to_string(i) + padding);
    }
    if (status == Status::ok) status = store.set("interface", "o77", "mark", "yes");
    return status == Status::ok ? store.commit() : status;
}

TEST(ManyObjects, AreAllThereInOrder) {
    constexpr int many = 30000;
    const Place place;
    ASSERT_EQ(fill(place.path(), many, 0), Status::ok);
    const Pairs rows = grid("interface");
    ASSERT_EQ(rows.size(), std::size_t{many});
    for (int i = 0; i < many; ++i)
        ASSERT_EQ(rows[static_cast<std::size_t>(i)].second, "o" + std::to_string(i));
    for (int i = 0; i < many; i += 97) {
        const std::string name = "o" + std::to_string(i);
        ASSERT_EQ(get("interface", name.c_str(), "k"), std::to_string(i));
    }
    EXPECT_EQ(get("interface", "o30000", "k"), std::nullopt);
    const cfqlquery_node filter = {"mark", "yes", nullptr, 0};
    EXPECT_EQ(grid("interface", &filter), (Pairs{{"name", "o77"}, {"mark", "yes"}}));
    EXPECT_EQ(set("interface", "o77", "mark", "no"), 1);
    EXPECT_EQ(grid("interface", &filter), Pairs());
    EXPECT_EQ(get("interface", "o77", "mark"), "no");
}

TEST(Bound, AWriteBeyondItFailsAsOnAFullDiskAndChangesNothing) {
    const Place place;
    EXPECT_EQ(fill(place.path(), 5000, 1000), Status::full);
    EXPECT_EQ(grid("interface"), Pairs());
    EXPECT_EQ(set("system", "", "model", "x"), 1);
    EXPECT_EQ(get("system", nullptr, "model"), "x");
    EXPECT_LE(std::filesystem::file_size(place.path()), std::size_t{4} << 20);
}

TEST(Bound, AFileBeyondItIsNotRead) {
    const Place place;
    make(place.path(), {{"system", "", "model", "x"}});
    std::filesystem::resize_file(place.path(), (4 << 20) + 1);
    cfql::Database store;
    EXPECT_EQ(store.open(place.path().c_str(), cfql::Access::read), Status::too_large);
    EXPECT_EQ(get("system", nullptr, "model"), std::nullopt);
}

// A sanitizer's allocator takes more, and keeps what was released.
#ifndef ADDRESS_SANITIZER
// kB of /proc/self/status.
int memory(const char* line) {
    std::ifstream file("/proc/self/status");
    std::string word;
    while (file >> word && word != line) {
    }
    int kilobytes = -1;
    file >> kilobytes;
    return kilobytes;
}

// Runs while another process changes the store: a load of new contents takes, besides the old ones, as much as they do,
// a quarter more, and what SQLite needs.
int peak_of_a_load() {
    const int before = memory("RssAnon:");
    if (grid("interface").empty()) return 1;
    const int contents = memory("RssAnon:") - before;
    if (in_child([] { return set("system", nullptr, "model", "y") == 1 ? 0 : 1; }) != 0) return 2;
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins anew
    const int resident = memory("VmRSS:");
    if (memory("VmHWM:") > resident + 64) return 77;
    if (!eventually([] { return grid("interface"), get("system", nullptr, "model") == "y"; })) return 3;
    const int grown = memory("VmHWM:") - resident;
    fprintf(stderr, "contents %d kB, peak of a load %d kB more\n", contents, grown);
    return grown <= contents + contents / 4 + 300 ? 0 : 4;
}

TEST(Memory, OfALoadIsBounded) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{900}}) {
        const Place place;
        ASSERT_EQ(fill(place.path(), 3000, size), Status::ok);
        put(place.path(), {{"system", "", "model", "x"}});
        const int result = in_child([] { return peak_of_a_load(); });
        if (result == 77) GTEST_SKIP() << "the kernel does not reset the peak";
        EXPECT_EQ(result, 0);
    }
}
#endif

TEST(Writer, AtFullSpeedDoesNotDisturbAReader) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "n", "0"}});
    constexpr int writes = 1000;
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = start([] {
        for (int i = 1; i <= writes; ++i) {
            if (set("interface", "wlan0", "n", std::to_string(i).c_str()) != 1) return 1;
        }
        return 0;
    });
    int last = 0;
    int states = 0;
    EXPECT_TRUE(eventually([&] {
        EXPECT_EQ(grid("interface").size(), 1U);
        const int now = std::stoi(get("interface", "wlan0", "n").value_or("-1"));
        EXPECT_GE(now, last);
        states += now != last ? 1 : 0;
        last = now;
        return last == writes || testing::Test::HasFailure();
    }));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(finish(child), 0);
    EXPECT_EQ(last, writes);
    RecordProperty("writes-per-second", static_cast<int>(writes / took.count()));
    RecordProperty("states-seen", states);
}

TEST(Writer, ChangesStateBetweenTheReadsOfATableAtNoTime) {
    const Place place;
    make(place.path(), {{"pair", "o", "a", "0"}, {"pair", "o", "b", "0"}});
    const pid_t child = start([&place] {
        for (int i = 1; i <= 300; ++i) {
            const std::string text = std::to_string(i);
            put(place.path(), {{"pair", "o", "a", text}, {"pair", "o", "b", text}});
        }
        return 0;
    });
    EXPECT_TRUE(eventually([] {
        const auto before = std::chrono::steady_clock::now();
        grid("pair");
        const auto a = get("pair", "o", "a");
        const auto b = get("pair", "o", "b");
        // The state holds for 50 ms; a longer interruption proves nothing.
        if (std::chrono::steady_clock::now() - before < std::chrono::milliseconds(30)) {
            EXPECT_EQ(a, b);
        }
        return a == "300" || testing::Test::HasFailure();
    }));
    EXPECT_EQ(finish(child), 0);
}

TEST(Writer, AtFullSpeedDoesNotMakeALargeStoreLoadAtEveryRead) {
    const Place place;
    ASSERT_EQ(fill(place.path(), 30000, 0), Status::ok);
    put(place.path(), {{"interface", "o1", "k", "5ecre7-5ecre7"}});
    EXPECT_EQ(get("interface", "o1", "k"), "5ecre7-5ecre7");
    const pid_t child = start([] {
        while (set("load", "o", "k", "v") == 1) {
        }
        return 1;
    });
    secret = "5ecre7-5ecre7";
    wiped = 0;
    constexpr int reads = 1000;
    for (int i = 0; i < reads; ++i)
        cfqlquery_destroy_pv(cfqlquery_get_pv("interface", "o2", "k"));
    secret = nullptr;
    kill(child, SIGKILL);
    finish(child);
    EXPECT_LE(wiped, reads / 10) << "replaced contents";
}

TEST(Wiping, OverwritesAnswersAndReplacedContents) {
    const Place place;
    make(place.path(), {{"interface", "wlan0", "wep-key-1", "5ecre7-5ecre7"}});
    cfqlquery_node* const answer = cfqlquery_get_pv("interface", "wlan0", "wep-key-1");
    ASSERT_NE(answer, nullptr);
    secret = "5ecre7-5ecre7";
    cfqlquery_destroy_pv(answer);
    EXPECT_EQ(wiped, 1) << "the answer";
    EXPECT_EQ(set("interface", "wlan0", "wep-key-1", "other"), 1);
    wiped = 0;
    EXPECT_EQ(get("interface", "wlan0", "wep-key-1"), "other");
    EXPECT_EQ(wiped, 1) << "the replaced contents";
    secret = nullptr;
}

}  // namespace
