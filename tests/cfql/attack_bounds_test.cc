// Bounds on what a call costs, whoever writes, locks or fills the log; and that nothing is left behind between calls.
#include <sys/time.h>

#include "attack.h"

namespace {

using namespace store_test;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

std::int64_t now() {
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

void pause_a_little() {
    std::this_thread::sleep_for(milliseconds(5));
}

// Something that makes a reader look at the file again.
void touch(const std::string& path) {
    static int second = 1'600'000'000;
    const timespec times[] = {{0, UTIME_OMIT}, {++second, 0}};
    if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) throw std::runtime_error("utimensat");
}

// CRC-32 of IEEE 802.3.
std::uint32_t checksum(const std::string& octets) {
    std::uint32_t crc = 0xffffffff;
    for (const char octet : octets) {
        crc ^= static_cast<unsigned char>(octet);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320 : 0);
    }
    return ~crc;
}

// A statement that gives the ssid of object 1 a value.
std::string update_to(const std::string& value) {
    const std::string octets =
        std::string(7, '\0') + '\1' + "interface" + '\0' + "wlan0" + '\0' + "ssid" + '\0' + value;
    return "UPDATE attribute SET value = CAST('" + value +
           "' AS BLOB), crc = " + std::to_string(checksum(octets + '\0')) +
           " WHERE object = 1 AND key = CAST('ssid' AS BLOB)";
}

sqlite3* open_to_write(const std::string& path) {
    sqlite3* connection = nullptr;
    sqlite3_open(path.c_str(), &connection);
    sqlite3_busy_timeout(connection, 20000);
    sqlite3_exec(connection, "PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL", nullptr, nullptr, nullptr);
    return connection;
}

bool execute(sqlite3* connection, const std::string& statements) {
    return sqlite3_exec(connection, statements.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

// So many objects of 1,000 octets each beside the ssid.
void make_large(const std::string& path, int objects) {
    make_store(path, {ssid_is("0")});
    sql(path,
        "PRAGMA journal_mode=TRUNCATE; BEGIN; WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n "
        "WHERE i <= " +
            std::to_string(objects) +
            ") INSERT INTO object SELECT i, CAST('load' AS BLOB), CAST(i AS BLOB), 0 FROM n;"
            "INSERT INTO attribute SELECT id, CAST('k' AS BLOB), zeroblob(900), 0 FROM object WHERE id > 1;"
            "COMMIT");
}

// -- waiting for a lock

class Locked : public testing::Test {
  protected:
    Locked() {
        make_store(place.path(), {ssid_is("office")});
        for (int i = 0; i < 8; ++i)
            sql(place.path(),
                "INSERT INTO attribute VALUES(1, CAST('" + std::to_string(i) + "' AS BLOB), zeroblob(3000), 0)");
    }

    // A writer in the middle of its transaction, with some of its pages written already.
    int hold(const std::function<bool()>& stop) const {
        sqlite3* const writer = open_to_write(place.path());
        execute(writer, "PRAGMA cache_size=1; BEGIN IMMEDIATE; UPDATE attribute SET crc = 1 WHERE length(value) > 100");
        execute(writer, update_to("home"));
        execute(writer, "UPDATE attribute SET crc = 2 WHERE length(value) > 100");
        if (!stop()) return 1;
        return execute(writer, "COMMIT") && sqlite3_close(writer) == SQLITE_OK ? 0 : 2;
    }

    const Place place;
};

TEST_F(Locked, AReaderWithContentsAnswersFromThemWithoutWaiting) {
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        const SteppedChild writer([&](auto stop) { return hold(stop); });
        ASSERT_TRUE(writer.wait_for_stop());
        std::int64_t sleeps = 0, longest = 0;
        for (const std::int64_t begin = now(); now() < begin + 8000; pause_a_little()) {
            const std::int64_t called = now(), slept = sleeps_so_far();
            ASSERT_EQ(ssid(), "office");
            sleeps += sleeps_so_far() - slept;
            longest = std::max(longest, now() - called);
        }
        EXPECT_LE(sleeps, 20) << "a wait of 200 ms sleeps a hundred times";
        EXPECT_LE(longest, 1000);
        ASSERT_TRUE(writer.go_on());
        EXPECT_EQ(writer.finish(), 0);
        EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
    });
}

TEST_F(Locked, AReaderWithoutContentsWaitsAFifthOfTheTimeAtMost) {
    alone([&] {
        const SteppedChild writer([&](auto stop) { return hold(stop); });
        ASSERT_TRUE(writer.wait_for_stop());
        int waits = 0;
        std::int64_t longest = 0;
        for (const std::int64_t begin = now(); now() < begin + 5000; pause_a_little()) {
            const std::int64_t called = now(), slept = sleeps_so_far();
            ASSERT_EQ(ssid(), std::nullopt);
            if (sleeps_so_far() - slept > 3) ++waits;
            longest = std::max(longest, now() - called);
        }
        EXPECT_GE(waits, 1);
        EXPECT_LE(waits, 6) << "once a second";
        EXPECT_LE(longest, 1000);
        ASSERT_TRUE(writer.go_on());
        EXPECT_EQ(writer.finish(), 0);
        EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
    });
}

struct Busy {
    const char* what;
    int seconds;
    bool on_disk;  // or in memory, where nothing is ever synced
};

void PrintTo(const Busy& busy, std::ostream* out) {
    *out << busy.what;
}

class WriterWithoutPause : public testing::TestWithParam<Busy> {};

INSTANTIATE_TEST_SUITE_P(Short, WriterWithoutPause, testing::Values(Busy{"InMemory", 16, false}),
                         [](const auto& test) { return test.param.what; });
INSTANTIATE_TEST_SUITE_P(Long, WriterWithoutPause,
                         testing::Values(Busy{"InMemory", 60, false}, Busy{"OnDisk", 60, true}),
                         [](const auto& test) { return test.param.what; });

// Each commit says when it was made.
int write_on(const std::string& path, milliseconds pause = milliseconds(0)) {
    sqlite3* const writer = open_to_write(path);
    while (execute(writer, update_to(std::to_string(now()))))
        std::this_thread::sleep_for(pause);
    return 1;
}

TEST_P(WriterWithoutPause, LeavesNoContentsOlderThanFifteenSeconds) {
    const Place place;
    alone(
        [&] {
            if (!GetParam().on_disk) {
                have_own_mounts();
                mount_tmpfs(place.directory());
            }
            make_large(place.path(), 200);
            const pid_t writer = start([&] { return write_on(place.path()); });
            EXPECT_TRUE(eventually([] { return ssid().value_or("0") != "0"; })) << "without contents it waits";
            std::int64_t oldest = 0, longest = 0;
            for (const std::int64_t begin = now(); now() < begin + GetParam().seconds * 1000; pause_a_little()) {
                const std::int64_t called = now();
                const std::int64_t written = std::stoll(ssid().value_or("0"));
                longest = std::max(longest, now() - called);
                oldest = std::max(oldest, now() - written);
            }
            EXPECT_LE(oldest, 15000);
            EXPECT_LE(longest, 2000);
            std::cout << "oldest contents " << oldest << " ms, longest call " << longest << " ms\n";
            kill(writer, SIGKILL);
            EXPECT_EQ(finish(writer), 1000 + SIGKILL);
        },
        100);
}

// -- loads

// Those that cost more than five milliseconds of the processor, which no answer does.
TEST(Loads, OfALargeStoreTakeAFifthOfTheTimeAtMost) {
    const Place place;
    make_large(place.path(), 3000);
    alone([&] {
        EXPECT_EQ(ssid(), "0");
        const pid_t writer = start([&] { return write_on(place.path(), milliseconds(5)); });
        std::int64_t loading = 0, longest = 0;
        int calls = 0, loads = 0;
        const std::int64_t begin = now();
        for (; now() < begin + 8000; ++calls) {
            const std::int64_t before = processor_microseconds();
            cfqlquery_destroy_pv(cfqlquery_get_grid("interface", nullptr, nullptr, nullptr, 0));
            const std::int64_t took = processor_microseconds() - before;
            if (took < 5000) continue;
            ++loads;
            loading += took;
            longest = std::max(longest, took);
        }
        kill(writer, SIGKILL);
        finish(writer);
        std::cout << calls << " calls, " << loads << " loads, " << loading / 1000 << " ms\n";
        EXPECT_GE(loads, 1);
        EXPECT_LE(loading, 8'000'000 / 5 + longest);
    });
}

// -- the log

struct Logging {
    const char* what;
    void (*arrange)();
};

void PrintTo(const Logging& logging, std::ostream* out) {
    *out << logging.what;
}

void put_another_socket(int type) {
    fs::remove("/dev/log");
    const sockaddr_un at = {AF_UNIX, "/dev/log"};
    const int other = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    if (::bind(other, reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0) throw std::runtime_error("bind");
    if (type == SOCK_STREAM) listen(other, 0);
    if (type == SOCK_DGRAM) close(other);
}

const Logging loggings[] = {
    {"Full", SystemLog::fill},
    {"OfNobody", [] { put_another_socket(SOCK_DGRAM); }},
    {"Absent", [] { fs::remove("/dev/log"); }},
    {"AStream", [] { put_another_socket(SOCK_STREAM); }},
    {"AFifo",
     [] {
         fs::remove("/dev/log");
         mkfifo("/dev/log", 0666);
     }},
};

class ALog : public testing::TestWithParam<Logging> {};

INSTANTIATE_TEST_SUITE_P(Kinds, ALog, testing::ValuesIn(loggings), [](const auto& test) { return test.param.what; });

TEST_P(ALog, ThatTakesNothingHoldsNobodyUp) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    alone([&] {
        const SystemLog log(place.directory());
        GetParam().arrange();
        EXPECT_EQ(ssid(), "office");
        overwrite(place.path(), "scribbled over");
        touch(place.path());
        for (int i = 0; i < 100; ++i)
            ASSERT_EQ(ssid(), "office");
    });
}

TEST(TheLog, IsToldOnceAMinuteAndInOneLine) {
    const Place place;
    const std::string path = place.directory() + "/a\nb\x1b[31m%n%s";
    setenv("CFQL_STORE", path.c_str(), 1);
    write_file(path, "no store");
    alone([&] {
        const SystemLog log(place.directory());
        for (int i = 0; i < 300; ++i, pause_a_little())
            ASSERT_EQ(ssid(), std::nullopt);
        const std::vector<std::string> lines = log.lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(lines[0].find("cfqlquery["), std::string::npos) << lines[0];
        for (const char octet : {'\n', '\x1b'})
            EXPECT_EQ(lines[0].find(octet), std::string::npos) << lines[0];
    });
}

// -- between calls

// What the process has open or mapped of the store, its journal and its directory.
std::vector<std::string> open_of(const Place& place) {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::string target = fs::read_symlink(entry.path(), gone).string();
        if (target.starts_with(place.directory())) found.push_back(target);
    }
    if (read_file("/proc/self/maps").find(place.directory()) != std::string::npos) found.emplace_back("mapped");
    return found;
}

std::size_t descriptors() {
    const fs::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST(BetweenCalls, NothingOfTheStoreIsOpen) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    const std::vector<std::string> none;
    alone([&] {
        EXPECT_EQ(get("interface", "wlan0", "ssid"), "office");
        EXPECT_EQ(open_of(place), none) << "a value";
        EXPECT_EQ(grid("interface").size(), 1U);
        EXPECT_EQ(open_of(place), none) << "a grid";
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1);
        EXPECT_EQ(open_of(place), none) << "a write";
        EXPECT_EQ(set("interface", "wlan0", "name", "x"), 0);
        EXPECT_EQ(open_of(place), none) << "a write that is refused";
        EXPECT_EQ(ssid(), "home");
        EXPECT_EQ(open_of(place), none) << "a read after a write";
        overwrite(place.path(), "scribbled over");
        touch(place.path());
        EXPECT_EQ(ssid(), "home");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "x"), 0);
        EXPECT_EQ(open_of(place), none) << "a failure";
    });
}

TEST(BetweenCalls, NothingGrowsInAThousandLoads) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    const auto size = static_cast<std::int64_t>(fs::file_size(place.path()));
    alone([&] {
        const auto load = [&](std::int64_t times) {
            // What a process has written it reads back at once.
            const auto once = [] { EXPECT_EQ(ssid(), "office"); };
            for (std::int64_t octets = 0; octets < times * size; octets += cost_of(once).octets)
                ASSERT_EQ(set("interface", "wlan0", "ssid", "office"), 1);
        };
        load(100);
        const std::int64_t memory = memory_of("self", "RssAnon:");
        const std::size_t files = descriptors();
        load(1000);
        EXPECT_LE(memory_of("self", "RssAnon:"), memory + 64);
        EXPECT_EQ(descriptors(), files);
    });
}

TEST(BetweenCalls, ACheckOfASettledStoreIsCheap) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    alone([&] {
        const std::int64_t begin = now();
        while (now() < begin + 4500) {
            EXPECT_EQ(ssid(), "office");
            pause_a_little();
        }
        const Cost cost = cost_of([] {
            for (int i = 0; i < 10'000; ++i)
                cfqlquery_destroy_pv(cfqlquery_get_grid("interface", nullptr, nullptr, nullptr, 0));
        });
        EXPECT_LE(cost.octets, 0) << "nothing is read";
        EXPECT_LE(cost.microseconds, 10'000 * 50);
        EXPECT_LE(cost.kilobytes, 256);
    });
}

TEST(BetweenCalls, AFileThatCannotBeOpenedLeavesTheContents) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        sql(place.path(), update_to("home"));
        rlimit before;
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none = {3, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "x"), 0);
        setrlimit(RLIMIT_NOFILE, &before);
        EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
    });
}

}  // namespace
