// Changes of the store while it is being read. The test sits between the library and the file system: before a chosen
// read of the file, another process changes it. The test also sets file times and the clock.
#include <dlfcn.h>
#include <sys/syscall.h>
#include <time.h>

#include "attack.h"

namespace {

// What is done before one of the readings of the store's file.
struct {
    std::string path;  // of the store; empty: nothing is done
    int countdown = 0;
    std::function<void()> act;
} before_reading;

bool is_store(int file) {
    char target[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t size = readlink(link.c_str(), target, sizeof target);
    return size > 0 && before_reading.path == std::string_view(target, static_cast<std::size_t>(size));
}

void note_reading(int file) {
    if (before_reading.path.empty() || !is_store(file)) return;
    if (--before_reading.countdown == 0) before_reading.act();
}

// How file times look to the library: cut to so many nanoseconds, or always the same.
std::int64_t granularity = 1;
std::int64_t fixed_time = 0;  // seconds; 0: the file's own
std::int64_t clock_offset = 0;

timespec as_stamped(timespec time) {
    if (fixed_time != 0) return {fixed_time, 0};
    const std::int64_t nanoseconds = std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    const std::int64_t cut = nanoseconds / granularity * granularity;
    return {cut / 1'000'000'000, cut % 1'000'000'000};
}

int stamp(int result, struct stat* file) {
    if (result == 0) {
        file->st_mtim = as_stamped(file->st_mtim);
        file->st_ctim = as_stamped(file->st_ctim);
    }
    return result;
}

}  // namespace

// With 64-bit files there is one of each; other names lead to these.
extern "C" {

ssize_t pread(int file, void* to, size_t size, off_t place) {
    note_reading(file);
    return syscall(SYS_pread64, file, to, size, place);
}

ssize_t pread64(int file, void* to, size_t size, off64_t place) {
    note_reading(file);
    return syscall(SYS_pread64, file, to, size, place);
}

int stat(const char* path, struct stat* file) noexcept {
    return stamp(fstatat(AT_FDCWD, path, file, 0), file);
}

int fstat(int handle, struct stat* file) noexcept {
    return stamp(fstatat(handle, "", file, AT_EMPTY_PATH), file);
}

int clock_gettime(clockid_t clock, timespec* now) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, now);
    if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) now->tv_sec += clock_offset;
    return static_cast<int>(result);
}
}

namespace {

using namespace store_test;

// Has another process ACT before the reading of the file with that number, and go on with THEN while the reading does.
class Meanwhile {
  public:
    Meanwhile(
        const std::string& path, int which, const std::function<void()>& act,
        const std::function<int()>& then = [] { return 0; })
        : other_([=](auto stop) {
              if (!stop()) return 0;
              act();
              stop();
              return then();
          }) {
        other_.wait_for_stop();
        before_reading = {path, which, [this] {
                              other_.go_on();
                              other_.wait_for_stop();
                          }};
    }
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;
    ~Meanwhile() { before_reading = {}; }

    static bool reached() { return before_reading.countdown <= 0; }
    int finish() const {
        other_.go_on();
        return other_.finish();
    }

  private:
    const SteppedChild other_;
};

// -- pages that change under a load

constexpr std::size_t page_size = 1024;

void scribble_page(const std::string& path, std::size_t page, char octet) {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const std::string octets(page_size, octet);
    if (pwrite(file, octets.data(), page_size, static_cast<off_t>(page * page_size)) != page_size) abort();
    close(file);
}

class DuringALoad : public testing::Test {
  protected:
    DuringALoad() {
        std::vector<Value> values = {ssid_is("office")};
        for (int i = 0; i < 4; ++i)
            values.push_back({"interface", "wlan0", "k" + std::to_string(i), std::string(900, 'a')});
        make_store(place.path(), values);
        office = read_file(place.path());
        done(tool(place.path(), {"set", "interface", "wlan0", "ssid", "home"}));
        home = read_file(place.path());
        overwrite(place.path(), office);
    }

    const Place place;
    std::string office, home;
};

// Whichever page is lost, before whichever reading of the file: what is answered is right, and of one state. The end of
// a long value has a page to itself, which may take that one value with it.
TEST_F(DuringALoad, PagesAreOverwrittenWithGarbage) {
    int loads = 0;
    for (std::size_t page = 0; page < home.size() / page_size; ++page) {
        for (const char octet : {'\0', '\xff', '\x0d'}) {
            bool reached = true;
            for (int reading = 1; reached; reading += 3, ++loads) {
                SCOPED_TRACE(testing::Message() << "page " << page << ", reading " << reading);
                overwrite(place.path(), office);
                const int status = in_child([&] {
                    alarm(20);
                    if (ssid() != "office") return 1;
                    overwrite(place.path(), home);
                    const Meanwhile other(place.path(), reading, [&] { scribble_page(place.path(), page, octet); });
                    const auto answer = ssid();
                    if (answer != "office" && answer != "home") return 2;
                    const auto other_answer = get("interface", "wlan0", "k2");
                    if (other_answer && other_answer != std::string(900, 'a')) return 3;
                    return Meanwhile::reached() ? 0 : 77;
                });
                ASSERT_TRUE(status == 0 || status == 77) << status;
                ASSERT_LT(reading, 1000);
                reached = status == 0;
            }
        }
    }
    EXPECT_GT(loads, 60);
}

TEST_F(DuringALoad, TheFileIsCutOff) {
    for (int reading = 1; reading < 60; reading += 2) {
        overwrite(place.path(), office);
        alone([&] {
            EXPECT_EQ(ssid(), "office");
            overwrite(place.path(), home);
            const Meanwhile other(place.path(), reading, [&] { fs::resize_file(place.path(), 1500); });
            const auto answer = ssid();
            EXPECT_TRUE(answer == "office" || answer == "home") << answer.value_or("nothing");
        });
    }
}

TEST_F(DuringALoad, TheFileIsReplaced) {
    const std::string next = place.directory() + "/next.db";
    for (int reading = 1; reading < 60; reading += 2) {
        overwrite(place.path(), office);
        write_file(next, home);
        alone([&] {
            EXPECT_EQ(ssid(), "office");
            const timespec times[] = {{0, UTIME_OMIT}, {1'600'000'000 + reading, 0}};
            utimensat(AT_FDCWD, place.path().c_str(), times, 0);
            const Meanwhile other(place.path(), reading, [&] { fs::rename(next, place.path()); });
            const auto answer = ssid();
            EXPECT_TRUE(answer == "office" || answer == "home") << answer.value_or("nothing");
            if (!Meanwhile::reached()) return;
            EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
        });
        fs::remove(next);
    }
}

TEST_F(DuringALoad, AnotherProcessWrites) {
    for (int reading = 1; reading < 60; reading += 2) {
        overwrite(place.path(), office);
        alone([&] {
            EXPECT_EQ(ssid(), "office");
            const timespec times[] = {{0, UTIME_OMIT}, {1'600'000'000 + reading, 0}};
            utimensat(AT_FDCWD, place.path().c_str(), times, 0);
            pid_t writer = -1;
            const auto write = [&] {
                writer = start([] { return execl(CFQL, CFQL, "set", "interface", "wlan0", "ssid", "home", nullptr); });
            };
            const Meanwhile other(place.path(), reading, write, [&] { return store_test::finish(writer); });
            const auto answer = ssid();
            EXPECT_TRUE(answer == "office" || answer == "home") << answer.value_or("nothing");
            if (!Meanwhile::reached()) return;
            EXPECT_EQ(other.finish(), 0) << "a reader keeps no writer away";
            EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
        });
    }
}

// -- times that say little

struct Times {
    const char* what;
    std::int64_t granularity;
};

void PrintTo(const Times& times, std::ostream* out) {
    *out << times.what;
}

class CoarseTimes : public testing::TestWithParam<Times> {};

INSTANTIATE_TEST_SUITE_P(FileSystems, CoarseTimes,
                         testing::Values(Times{"OfTheKernelsTick", 10'000'000}, Times{"OfASecond", 1'000'000'000},
                                         Times{"OfTwoSeconds", 2'000'000'000}),
                         [](const auto& test) { return test.param.what; });

// Two changes at the same time, as the file system tells it, and a reading between them.
TEST_P(CoarseTimes, LoseNoChange) {
    granularity = GetParam().granularity;
    const Place place;
    make_store(place.path(), {ssid_is("0")});
    alone([&] {
        for (const std::string value : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
            ASSERT_EQ(in_child([&] { return set("interface", "wlan0", "ssid", value.c_str()); }), 1);
            EXPECT_TRUE(eventually([&] { return ssid() == value; }, std::chrono::seconds(5))) << value;
        }
    });
}

// The same with files that are copied over the old one: their change counters are equal too. The file is read once
// more when its time is three seconds old.
TEST_P(CoarseTimes, LoseNoCopyOfAFile) {
    granularity = GetParam().granularity;
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    const std::string next = place.directory() + "/next.db";
    make_store(next, {ssid_is("lobby!")});
    const std::string octets = read_file(next);
    ASSERT_EQ(octets.substr(24, 4), read_file(place.path()).substr(24, 4));
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        overwrite(place.path(), octets);
        EXPECT_TRUE(eventually([] { return ssid() == "lobby!"; }));
    });
}

// The clock is set back, and a file that changes then has the time of the one that was read before.
TEST(TheClock, SetBackLosesNoChange) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    const std::string next = place.directory() + "/next.db";
    make_store(next, {ssid_is("lobby!")});
    alone([&] {
        fixed_time = time(nullptr);
        clock_offset = 100;
        EXPECT_EQ(ssid(), "office");
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(ssid(), "office");
        clock_offset = 0;
        EXPECT_EQ(ssid(), "office");
        overwrite(place.path(), read_file(next));
        EXPECT_TRUE(eventually([] { return ssid() == "lobby!"; }));
    });
}

// A device that starts without a clock: the file's time is far ahead until somebody sets the clock.
TEST(TheClock, OfNineteenSeventyLosesNoChange) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    alone([&] {
        clock_offset = -time(nullptr);
        EXPECT_EQ(ssid(), "office");
        for (const std::string value : {"1", "2", "3"}) {
            ASSERT_EQ(in_child([&] { return set("interface", "wlan0", "ssid", value.c_str()); }), 1);
            EXPECT_TRUE(eventually([&] { return ssid() == value; })) << value;
        }
        clock_offset = 0;
        ASSERT_EQ(in_child([&] { return set("interface", "wlan0", "ssid", "4"); }), 1);
        EXPECT_TRUE(eventually([] { return ssid() == "4"; }));
    });
}

}  // namespace
