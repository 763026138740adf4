// What a watch finds, on a file system whose time stamps have steps of two seconds.
#include "watch.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <time.h>

#include <fstream>
#include <sstream>

#include "fixture.h"

static bool coarse_stamps = false;
static time_t later = 0;  // seconds that the clock is ahead

extern "C" int stat(const char* path, struct stat* file) noexcept {
    static const auto real = reinterpret_cast<decltype(&stat)>(dlsym(RTLD_NEXT, "stat"));
    const int result = real(path, file);
    if (!coarse_stamps) return result;
    file->st_mtim = {file->st_mtim.tv_sec / 2 * 2, 0};
    file->st_ctim = {file->st_ctim.tv_sec / 2 * 2, 0};
    return result;
}

extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept {
    static const auto real = reinterpret_cast<decltype(&clock_gettime)>(dlsym(RTLD_NEXT, "clock_gettime"));
    const int result = real(clock, now);
    if (clock == CLOCK_REALTIME_COARSE) now->tv_sec += later;
    return result;
}

namespace {

using namespace store_test;
using Finding = cfql::Watch::Finding;
namespace fs = std::filesystem;

// Whether a load was due, which is then made.
bool changed(cfql::Watch& watch, const std::string& path) {
    if (watch.check(path.c_str()) != Finding::changed) return false;
    cfql::Database store;
    require(store.open(path.c_str(), cfql::Access::read));
    watch.loaded(store.change_counter());
    return true;
}

class WatchTest : public testing::Test {
  protected:
    WatchTest() {
        coarse_stamps = false;
        later = 0;
        make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
        changed(watch, place.path());
    }
    bool changed_now() { return changed(watch, place.path()); }
    void settle() {
        later += 4;
        EXPECT_TRUE(changed_now()) << "the last load";
        EXPECT_FALSE(changed_now());
    }

    Place place;
    cfql::Watch watch;
};

TEST_F(WatchTest, AStoreIsLoadedOnceMoreWhenItsStampsAreOld) {
    EXPECT_FALSE(changed_now());
    later = 2;
    EXPECT_FALSE(changed_now());
    settle();
    later += 1000000;
    EXPECT_FALSE(changed_now());
}

TEST_F(WatchTest, AChangeWithinOneStampIsFoundByTheCounter) {
    coarse_stamps = true;
    changed_now();
    for (int i = 0; i < 20; ++i) {
        put(place.path(), {{"interface", "wlan0", "ssid", "off" + std::to_string(100 + i)}});
        EXPECT_TRUE(changed_now()) << i;
        EXPECT_FALSE(changed_now()) << i;
    }
}

TEST_F(WatchTest, OctetsWrittenInPlaceWithinOneStampAreFoundByTheLastLoad) {
    coarse_stamps = true;
    changed_now();
    {
        std::fstream file(place.path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(-1, std::ios::end);
        file << 'x';
    }
    changed_now();  // unless the stamp was another after all
    EXPECT_FALSE(changed_now());
    settle();
}

TEST_F(WatchTest, AStoreThatHasSettledIsWatchedByItsStamps) {
    settle();
    put(place.path(), {{"interface", "wlan0", "ssid", "other"}});
    EXPECT_TRUE(changed_now());
}

TEST_F(WatchTest, AClockThatIsSetBackUnsettles) {
    settle();
    later = 0;
    EXPECT_FALSE(changed_now()) << "the counter is read again, and is as it was";
    settle();
}

TEST_F(WatchTest, AnAbsentStoreComesBackAsAnotherFile) {
    fs::remove(place.path());
    EXPECT_EQ(watch.check(place.path().c_str()), Finding::absent);
    make(place.path());
    EXPECT_TRUE(changed_now());
}

// The inode of a file that was removed is used again at once on many file systems.
TEST_F(WatchTest, AFileThatTakesThePlaceOfAnotherIsFound) {
    settle();
    for (int i = 0; i < 10; ++i) {
        std::ostringstream contents;
        contents << std::ifstream(place.path()).rdbuf();
        fs::remove(place.path());
        std::ofstream(place.path()) << contents.str();
        EXPECT_TRUE(changed_now()) << "an equal file, perhaps of the same inode";
        std::ofstream(place.path() + "2") << contents.str();
        fs::rename(place.path() + "2", place.path());
        EXPECT_TRUE(changed_now()) << "a rename";
    }
}

TEST_F(WatchTest, AMountOverTheDirectoryIsFound) {
    settle();
    const int result = in_child([this] {
        const bool allowed = unshare(CLONE_NEWNS) == 0 &&
                             mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             mount("tmpfs", place.directory().c_str(), "tmpfs", 0, "size=4m") == 0;
        if (!allowed) return 77;
        if (watch.check(place.path().c_str()) != Finding::absent) return 1;
        make(place.path());
        return changed_now() ? 0 : 2;
    });
    if (result == 77) GTEST_SKIP() << "no mount namespace";
    EXPECT_EQ(result, 0);
}

// The calls to the system that a child makes in `body`, between two that mark its begin and end.
template <class Body>
std::vector<long> calls_of(Body body) {
    const pid_t child = start([&] {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        body([] { syscall(SYS_getppid); });
        return 0;
    });
    int status = 0;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    std::vector<long> calls;
    for (int marks = 0; ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0;) {
        if (waitpid(child, &status, 0) < 0 || !WIFSTOPPED(status)) break;
        __ptrace_syscall_info info = {};
        ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY) continue;
        const auto number = static_cast<long>(info.entry.nr);
        if (number == SYS_getppid) ++marks;
        if (marks == 1 && number != SYS_getppid) calls.push_back(number);
    }
    EXPECT_EQ(status, 0);
    return calls;
}

// A grid and the values after it: the check is the grid's, and the answers need no call but for memory, which is there.
template <class Mark>
void ask_twice(Mark mark) {
    const auto ask = [] {
        cfqlquery_destroy_pv(cfqlquery_get_grid("interface", nullptr, nullptr, nullptr, 0));
        for (int i = 0; i < 100; ++i)
            cfqlquery_destroy_pv(cfqlquery_get_pv("interface", "wlan0", "ssid"));
    };
    ask();
    ask();
    mark();
    ask();
    mark();
}

TEST_F(WatchTest, ACheckOfASettledStoreIsOneCall) {
    later = 10;
    EXPECT_EQ(calls_of([](auto mark) { ask_twice(mark); }).size(), 1U);
}

TEST_F(WatchTest, ACheckOfAStoreThatHasJustChangedIsFourCalls) {
    later = -100;  // it never settles
    EXPECT_EQ(calls_of([](auto mark) { ask_twice(mark); }).size(), 4U);
}

// A sanitizer touches memory of its own with every call.
#ifndef ADDRESS_SANITIZER
TEST_F(WatchTest, ACheckOfASettledStoreFaultsNoPage) {
    later = 10;
    long faults = -1;
    const auto count = [] {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_minflt + usage.ru_majflt;
    };
    ask_twice([&] { faults = faults < 0 ? count() : count() - faults; });
    EXPECT_EQ(faults, 0);
}
#endif

}  // namespace
