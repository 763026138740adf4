// Many objects, many writes, one state.
#include <gtest/gtest.h>
#include <signal.h>
#include <string.h>

#include "fixture.h"
#include "snapshot.h"

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

constexpr int many = 100000;

// MANY objects with one value of SIZE octets, in one transaction.
void fill(const std::string& path, std::size_t size) {
    cfql::Database store;
    const std::string padding(size, 'p');
    std::int64_t id = 0;
    require(store.create(path.c_str()));
    require(store.open(path.c_str(), cfql::Access::write));
    require(store.begin_write());
    for (int i = 0; i < many; ++i) {
        const std::string name = "o" + std::to_string(i);
        require(store.insert_object("interface", name, id));
        require(store.set_attribute(id, "interface", name, "k", std::to_string(i) + padding));
    }
    require(store.set("interface", "o77", "mark", "yes"));
    require(store.commit());
}

bool fits_a_snapshot(const std::string& path) {
    cfql::Database store;
    cfql::Snapshot snapshot;
    bool fits = false;
    require(store.open(path.c_str(), cfql::Access::read));
    require(snapshot.load(store, fits));
    return fits;
}

struct Size {
    std::size_t padding;  // of each value
    bool fits;            // a snapshot
};

void PrintTo(const Size& size, std::ostream* out) {
    *out << size.padding;
}

class ManyObjects : public testing::TestWithParam<Size> {};

TEST_P(ManyObjects, AreAllThereInOrder) {
    const Place place;
    fill(place.path(), GetParam().padding);
    EXPECT_EQ(fits_a_snapshot(place.path()), GetParam().fits);
    const Pairs rows = grid("interface");
    ASSERT_EQ(rows.size(), std::size_t{many});
    for (int i = 0; i < many; ++i)
        ASSERT_EQ(rows[static_cast<std::size_t>(i)].second, "o" + std::to_string(i));
    for (int i = 0; i < many; i += 97) {
        const std::string name = "o" + std::to_string(i);
        ASSERT_EQ(get("interface", name.c_str(), "k"), std::to_string(i) + std::string(GetParam().padding, 'p'));
    }
    EXPECT_EQ(get("interface", "o100000", "k"), std::nullopt);
    const cfqlquery_node filter = {"mark", "yes", nullptr, 0};
    EXPECT_EQ(grid("interface", &filter), (Pairs{{"name", "o77"}, {"mark", "yes"}}));
    EXPECT_EQ(set("interface", "o77", "mark", "no"), 1);
    EXPECT_EQ(grid("interface", &filter), Pairs());
    EXPECT_EQ(get("interface", "o77", "mark"), "no");
}

INSTANTIATE_TEST_SUITE_P(Sizes, ManyObjects, testing::Values(Size{0, true}, Size{200, false}),
                         [](const auto& test) { return test.param.fits ? "InASnapshot" : "BeyondTheBound"; });

// Keys of system whose hashes (FNV-1a over "system", NUL, no name, NUL, key) fall on the first slot of 4096.
std::vector<Value> colliding_keys(std::size_t count) {
    std::vector<Value> values;
    for (unsigned n = 0; values.size() < count; ++n) {
        const std::string key = std::to_string(n);
        std::uint32_t hash = 2166136261U;
        for (const char c : std::string("system\0\0", 8) + key)
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
        if (hash % 4096 == 0) values.push_back({"system", "", key, "v" + key});
    }
    return values;
}

TEST(Index, IsNotDefeatedByKeysWithEqualHashes) {
    const Place place;
    const std::vector<Value> values = colliding_keys(1500);  // 1501 entries have 4096 slots
    make(place.path(), {values.begin(), values.begin() + 1000});
    EXPECT_TRUE(fits_a_snapshot(place.path()));
    put(place.path(), values);
    EXPECT_FALSE(fits_a_snapshot(place.path()));
    for (const Value& v : values)
        ASSERT_EQ(get("system", nullptr, v.key.c_str()), v.value);
}

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
    fill(place.path(), 0);
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
