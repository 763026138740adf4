// The library as a guest: it leaves alone what it shares with its host (SQLite's state, descriptors, threads, signals,
// forks).
#include <signal.h>
#include <sys/mman.h>
#include <sys/time.h>

#include <atomic>
#include <sstream>

#include "attack.h"

namespace {

using namespace store_test;

constexpr std::int64_t megabyte = 1024 * 1024;

class Host : public testing::Test {
  protected:
    Host() { make_store(place.path(), {ssid_is("office")}); }

    void change_to(const std::string& value) const {
        done(tool(place.path(), {"set", "interface", "wlan0", "ssid", value}));
    }

    const Place place;
};

// -- SQLite

// A database of the host's own, in memory.
class OwnDatabase {
  public:
    OwnDatabase() {
        EXPECT_EQ(sqlite3_open(":memory:", &connection_), SQLITE_OK);
        EXPECT_TRUE(execute("CREATE TABLE t(x)"));
    }
    OwnDatabase(const OwnDatabase&) = delete;
    OwnDatabase& operator=(const OwnDatabase&) = delete;
    ~OwnDatabase() { sqlite3_close(connection_); }

    bool execute(const std::string& statements) const {
        return sqlite3_exec(connection_, statements.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }

    bool grow(int megabytes) const {
        for (int i = 0; i < megabytes; ++i) {
            if (!execute("INSERT INTO t VALUES(zeroblob(1000000))")) return false;
        }
        return true;
    }

  private:
    sqlite3* connection_ = nullptr;
};

TEST_F(Host, GoesOnWithADatabaseOfItsOwn) {
    alone([&] {
        const OwnDatabase own;
        EXPECT_TRUE(own.grow(6));
        EXPECT_EQ(ssid(), "office");
        EXPECT_TRUE(own.grow(6));
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1);
        EXPECT_TRUE(own.grow(6));
        EXPECT_EQ(ssid(), "home");
        overwrite(place.path(), "scribbled over");
        EXPECT_EQ(ssid(), "home");
        EXPECT_TRUE(own.grow(6));
    });
}

TEST_F(Host, KeepsItsLimitsOfMemory) {
    alone([] {
        sqlite3_soft_heap_limit64(20 * megabyte);
        sqlite3_hard_heap_limit64(30 * megabyte);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1);
        EXPECT_EQ(ssid(), "home");
        EXPECT_EQ(sqlite3_soft_heap_limit64(-1), 20 * megabyte);
        EXPECT_EQ(sqlite3_hard_heap_limit64(-1), 30 * megabyte);
        EXPECT_TRUE(OwnDatabase().grow(10));
    });
}

TEST_F(Host, HasNoLimitsOfMemoryWhenItSetNone) {
    alone([] {
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1);
        EXPECT_EQ(sqlite3_soft_heap_limit64(-1), 0);
        EXPECT_EQ(sqlite3_hard_heap_limit64(-1), 0);
    });
}

TEST_F(Host, WithoutMemoryLeftKeepsTheContentsAndItsOwn) {
    alone([&] {
        const OwnDatabase own;
        EXPECT_EQ(ssid(), "office");
        EXPECT_TRUE(own.grow(6));
        sqlite3_hard_heap_limit64(sqlite3_memory_used() + 1024);
        change_to("home");
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "x"), 0);
        sqlite3_hard_heap_limit64(0);
        EXPECT_TRUE(own.execute("SELECT count(*) FROM t"));
        EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
    });
}

TEST_F(Host, HasTheFileSystemInterfaceThatItHad) {
    alone([] {
        sqlite3_vfs* const before = sqlite3_vfs_find(nullptr);
        const sqlite3_vfs copy = *before;
        const auto open_call = before->xGetSystemCall(before, "open");
        EXPECT_STREQ(before->zName, "unix");
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1);
        EXPECT_EQ(ssid(), "home");
        EXPECT_EQ(sqlite3_vfs_find(nullptr), before);
        EXPECT_EQ(before->xOpen, copy.xOpen);
        EXPECT_EQ(before->xAccess, copy.xAccess);
        EXPECT_EQ(before->pAppData, copy.pAppData);
        EXPECT_EQ(before->xGetSystemCall(before, "open"), open_call);
    });
}

TEST_F(Host, MayShutItsSqliteDownBetweenCalls) {
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(sqlite3_shutdown(), SQLITE_OK);
        EXPECT_EQ(sqlite3_memory_used(), 0) << "nothing of the library's is left there";
        change_to("home");
        EXPECT_EQ(ssid(), "home");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "third"), 1);
        EXPECT_EQ(sqlite3_shutdown(), SQLITE_OK);
        EXPECT_EQ(ssid(), "third");
    });
}

// As programs do that put their code on large pages: the text is copied to memory without a file behind it.
void move_code_to_memory(const std::string& library) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(library) == std::string::npos || line.find(" r-xp ") == std::string::npos) continue;
        const std::uintptr_t begin = std::stoull(line, nullptr, 16);
        const std::size_t size = std::stoull(line.substr(line.find('-') + 1), nullptr, 16) - begin;
        void* const place = reinterpret_cast<void*>(begin);
        void* const copy = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        memcpy(copy, place, size);
        mprotect(copy, size, PROT_READ | PROT_EXEC);
        ASSERT_EQ(mremap(copy, size, size, MREMAP_MAYMOVE | MREMAP_FIXED, place), place);
    }
}

TEST_F(Host, MayMoveTheCodeOfItsLibraries) {
    alone([&] {
        for (const char* library : {"libsqlite3", "libcfqlquery"})
            move_code_to_memory(library);
        EXPECT_EQ(ssid(), "office");
        change_to("home");
        EXPECT_EQ(ssid(), "home");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "third"), 1);
        EXPECT_EQ(ssid(), "third");
    });
}

// -- descriptors

// As a program does that becomes a daemon. What it opens next has the numbers that were free.
TEST_F(Host, MayCloseEveryDescriptorBetweenCalls) {
    alone([&] {
        const std::string precious = place.directory() + "/precious";
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1);
        close_range(3, ~0U, 0);
        for (int i = 0; i < 20; ++i)
            EXPECT_GE(open(precious.c_str(), O_RDWR | O_CREAT, 0600), 3);
        EXPECT_EQ(set("interface", "wlan0", "ssid", "third"), 1);
        EXPECT_EQ(ssid(), "third");
        change_to("fourth");
        EXPECT_EQ(ssid(), "fourth");
        EXPECT_EQ(read_file(precious), "");
    });
}

TEST_F(Host, WithoutStandardDescriptorsWritesNothingIntoTheStore) {
    EXPECT_EQ(in_child([&] {
                  close_range(0, ~0U, 0);
                  if (ssid() != "office" || set("interface", "wlan0", "ssid", "home") != 1) return 1;
                  for (int descriptor = 0; descriptor < 10; ++descriptor) {
                      if (write(descriptor, "host's own words", 16) == 16) return 2;
                  }
                  return ssid() == "home" ? 0 : 3;
              }),
              0);
    EXPECT_EQ(tool(place.path(), {"check"}).status, 0);
}

// -- forks, threads, signals

TEST_F(Host, MayForkBetweenCalls) {
    alone([&] {
        for (int round = 0; round < 20; ++round) {
            const std::string parent = "parent-" + std::to_string(round), child = "child-" + std::to_string(round);
            EXPECT_EQ(set("interface", "wlan0", "ssid", parent.c_str()), 1);
            EXPECT_EQ(ssid(), parent);
            EXPECT_EQ(in_child([&] {
                          if (ssid() != parent) return 1;
                          if (set("interface", "wlan0", "ssid", child.c_str()) != 1) return 2;
                          return ssid() == child ? 0 : 3;
                      }),
                      0);
            EXPECT_TRUE(eventually([&] { return ssid() == child; }));
        }
    });
}

TEST_F(Host, MayCallFromManyThreadsWhileOthersWrite) {
    alone([&] {
        std::atomic<bool> over = false;
        std::atomic<int> no_rows = 0, no_value = 0, refused = 0, not_the_last_written = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&, i] {
                const std::string own = "thread-" + std::to_string(i);
                for (int n = 0; !over; ++n) {
                    const std::string value = std::to_string(n);
                    if (grid("interface").size() != 1) ++no_rows;
                    if (!ssid()) ++no_value;
                    if (n % 200 == 0 && set("thread", own.c_str(), "n", value.c_str()) != 1) ++refused;
                    if (n % 200 == 0 && get("thread", own.c_str(), "n") != value) ++not_the_last_written;
                }
            });
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(tool(place.path(), {"set", "interface", "wlan0", "ssid", "round-" + std::to_string(i)}).text, "");
        over = true;
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(no_rows, 0);
        EXPECT_EQ(no_value, 0);
        EXPECT_EQ(refused, 0);
        EXPECT_EQ(not_the_last_written, 0);
        EXPECT_TRUE(eventually([] { return ssid() == "round-19"; }));
    });
}

volatile sig_atomic_t ticks = 0;

// A timer whose signals interrupt every call that waits.
TEST_F(Host, MayHaveATimerThatTicksAllTheTime) {
    alone([&] {
        struct sigaction action = {};
        action.sa_handler = [](int) { ticks = ticks + 1; };
        sigaction(SIGUSR1, &action, nullptr);
        timer_t timer;
        sigevent event = {};
        event.sigev_notify = SIGEV_SIGNAL;
        event.sigev_signo = SIGUSR1;
        ASSERT_EQ(timer_create(CLOCK_MONOTONIC, &event, &timer), 0);
        const itimerspec each_half_millisecond = {{0, 500000}, {0, 500000}};
        timer_settime(timer, 0, &each_half_millisecond, nullptr);
        for (int i = 0; i < 50; ++i) {
            const std::string value = "tick-" + std::to_string(i);
            EXPECT_EQ(set("interface", "wlan0", "ssid", value.c_str()), 1);
            EXPECT_EQ(ssid(), value);
        }
        EXPECT_GT(ticks, 0);
    });
}

}  // namespace
