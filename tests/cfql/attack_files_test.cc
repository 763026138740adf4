// What may be found at the store's path or beside it, and how it may be swapped. Anything but a store is refused at
// once, with a line that says so; a new store is noticed.
#include <sys/sysmacros.h>

#include <limits>

#include "attack.h"

namespace {

using namespace store_test;

constexpr char convert[] = "PRAGMA journal_mode=TRUNCATE";

// -- at the store's place

constexpr std::int64_t limit = 4 * 1024 * 1024;  // octets of a store

// So many objects with a value of 1,000 octets, which takes a page and a little.
void fill(const std::string& path, int objects) {
    sql(path, "BEGIN; WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 99 + " +
                  std::to_string(objects) +
                  ") INSERT INTO object SELECT i, CAST('load' AS BLOB), CAST(i AS BLOB), 0 FROM n;"
                  "INSERT INTO attribute SELECT id, CAST('k' AS BLOB), zeroblob(1000), 0 FROM object WHERE id >= 100;"
                  "COMMIT");
}

void remove_what_is_beside(const std::string& path) {
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        fs::remove(path + suffix);
}

void make_office(const std::string& path) {
    make_store(path, {ssid_is("office")});
    remove_what_is_beside(path);
}

struct NoStore {
    const char* what;
    void (*put)(const std::string& path);
    const char* reason;  // a part of the line in the log
};

void PrintTo(const NoStore& no_store, std::ostream* out) {
    *out << no_store.what;
}

template <const char* const& target>
void link_to(const std::string& path) {
    fs::create_symlink(target, path);
}
constexpr const char* kernel_log = "/proc/kmsg";
constexpr const char* pages_of_memory = "/proc/self/pagemap";
constexpr const char* memory = "/proc/self/mem";
constexpr const char* zeros = "/dev/zero";
constexpr const char* terminal = "/dev/ptmx";
constexpr const char* itself = "store.db";

void make_sparse(const std::string& path) {
    make_office(path);
    if (truncate(path.c_str(), 1LL << 40) != 0) throw std::runtime_error("truncate");
}

void make_too_large(const std::string& path) {
    make_office(path);
    fill(path, 4000);
}

void make_with_log(const std::string& path) {
    make_office(path);
    sql(path, "PRAGMA journal_mode=WAL");
}

const NoStore no_stores[] = {
    {"Fifo", [](const std::string& path) { mkfifo(path.c_str(), 0666); }, ""},
    {"Directory", [](const std::string& path) { fs::create_directory(path); }, ""},
    {"Socket", [](const std::string& path) { mknod(path.c_str(), S_IFSOCK | 0666, 0); }, ""},
    {"KernelLog", link_to<kernel_log>, ""},
    {"PageMap", link_to<pages_of_memory>, ""},
    {"Memory", link_to<memory>, ""},
    {"Zeros", link_to<zeros>, ""},
    {"Terminal", link_to<terminal>, ""},
    {"LinkToItself", link_to<itself>, ""},
    {"Nothing", [](const std::string& path) { write_file(path, ""); }, ""},
    {"Text", [](const std::string& path) { write_file(path, "ssid = office\n"); }, ""},
    {"SparseTerabyte", make_sparse, ""},
    {"BeyondTheLimit", make_too_large, ""},
    {"WriteAheadLog", make_with_log, convert},
};

class NoStoreHere : public testing::TestWithParam<NoStore> {
  protected:
    const Place place;
};

INSTANTIATE_TEST_SUITE_P(Kinds, NoStoreHere, testing::ValuesIn(no_stores),
                         [](const auto& test) { return test.param.what; });

TEST_P(NoStoreHere, IsRefusedSoonAndTheLogSaysSo) {
    GetParam().put(place.path());
    alone([&] {
        const SystemLog log(place.directory());
        const Cost cost = cost_of([] {
            EXPECT_EQ(ssid(), std::nullopt);
            EXPECT_EQ(grid("interface"), Pairs());
            EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 0);
        });
        EXPECT_LE(cost.microseconds, 100'000);
        EXPECT_LE(cost.octets, 64 * 1024);
        EXPECT_LE(cost.kilobytes, 4096);
        const std::vector<std::string> lines = log.lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(lines[0].find(place.path()), std::string::npos) << lines[0];
        EXPECT_NE(lines[0].find(GetParam().reason), std::string::npos) << lines[0];
    });
}

TEST_P(NoStoreHere, EndsTheToolSoon) {
    GetParam().put(place.path());
    for (const std::string command : {"check", "list", "export"}) {
        const Outcome outcome = tool(place.path(), {command});
        EXPECT_EQ(outcome.status, 3) << command << ": " << outcome.text;
        EXPECT_NE(outcome.text.find(GetParam().reason), std::string::npos) << outcome.text;
    }
}

// A file without octets becomes a store.
TEST_P(NoStoreHere, IsMadeNoStoreOf) {
    GetParam().put(place.path());
    const int expected = std::string_view(GetParam().what) == "Nothing" ? 0 : 3;
    const Outcome outcome = tool(place.path(), {"init"});
    EXPECT_TRUE(outcome.status == expected || outcome.status == 4) << outcome.status << ": " << outcome.text;
}

TEST_P(NoStoreHere, MakesNothingBesideIt) {
    GetParam().put(place.path());
    alone([] { EXPECT_EQ(ssid(), std::nullopt); });
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        EXPECT_FALSE(fs::exists(place.path() + suffix)) << suffix;
}

TEST(Limit, IsReachedByNoWrite) {
    const Place place;
    make_office(place.path());
    fill(place.path(), 3400);
    ASSERT_LT(fs::file_size(place.path()), limit);
    alone([] {
        EXPECT_EQ(ssid(), "office");
        const std::string value(4000, 'v');
        int written = 0;
        while (written < 300 && set("load", "more", std::to_string(written).c_str(), value.c_str()) == 1)
            ++written;
        EXPECT_GT(written, 10);
        EXPECT_LT(written, 300);
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 1) << "what needs no more room goes on";
        EXPECT_EQ(ssid(), "home");
        for (int i = 0; i < written; ++i)
            EXPECT_EQ(get("load", "more", std::to_string(i).c_str()), value) << i;
    });
    EXPECT_LE(fs::file_size(place.path()), limit);
}

// -- beside the store

struct Beside {
    const char* what;
    const char* suffix;
    void (*put)(const std::string& path);  // of what lies beside it
};

void PrintTo(const Beside& beside, std::ostream* out) {
    *out << beside.what;
}

template <mode_t kind>
void make_node(const std::string& path) {
    if (mknod(path.c_str(), kind | 0666, makedev(1, 3)) != 0) throw std::runtime_error("mknod");
}

// The log of another store, in which the ssid is "stolen".
void put_foreign_log(const std::string& log) {
    const std::string other = fs::path(log).parent_path() / "other.db";
    make_store(other, {ssid_is("office")});
    sql(other, "PRAGMA journal_mode=WAL");
    const int status = in_child([&] {
        sqlite3* writer = nullptr;
        sqlite3_open(other.c_str(), &writer);
        sqlite3_exec(writer, "PRAGMA wal_autocheckpoint=0", nullptr, nullptr, nullptr);
        setenv("CFQL_STORE", other.c_str(), 1);
        // The same row, with a checksum that is right: CRC-32 over id, table, object, key and value.
        const int code = sqlite3_exec(writer, "UPDATE attribute SET value = CAST('stolen' AS BLOB), crc = 2858051798",
                                      nullptr, nullptr, nullptr);
        fs::copy_file(other + "-wal", log);
        return code;  // without closing: a log goes with its last connection
    });
    if (status != 0 || fs::file_size(log) == 0) throw std::runtime_error("no log");
}

const Beside besides[] = {
    {"FifoAsJournal", "-journal", make_node<S_IFIFO>},
    {"DirectoryAsJournal", "-journal", [](const std::string& path) { fs::create_directory(path); }},
    {"LinkAsJournal", "-journal", [](const std::string& path) { fs::create_symlink("/proc/kmsg", path); }},
    {"LinkToAFifoAsJournal", "-journal",
     [](const std::string& path) {
         make_node<S_IFIFO>(path + "-target");
         fs::create_symlink(path + "-target", path);
     }},
    {"SocketAsJournal", "-journal", make_node<S_IFSOCK>},
    {"DeviceAsJournal", "-journal", make_node<S_IFCHR>},
    {"FifoAsLog", "-wal", make_node<S_IFIFO>},
    {"RubbishAsLog", "-wal", [](const std::string& path) { write_file(path, std::string(5000, 'x')); }},
    {"ForeignLog", "-wal", put_foreign_log},
};

class BesideTheStore : public testing::TestWithParam<Beside> {
  protected:
    BesideTheStore() {
        make_office(place.path());
        remove_what_is_beside(place.path());
    }

    void SetUp() override {
        if (GetParam().what == std::string("DeviceAsJournal") && getuid() != 0)
            GTEST_SKIP() << "only root makes devices";
    }

    void put() const { GetParam().put(place.path() + GetParam().suffix); }

    // Another process's change, if the store allows one: a reader that has looked at the store looks again.
    void touch() const {
        const timespec times[] = {{0, UTIME_OMIT}, {1'700'000'000, 0}};
        utimensat(AT_FDCWD, place.path().c_str(), times, 0);
    }

    const Place place;
};

INSTANTIATE_TEST_SUITE_P(Kinds, BesideTheStore, testing::ValuesIn(besides),
                         [](const auto& test) { return test.param.what; });

TEST_P(BesideTheStore, IsRefusedAndNotTouched) {
    put();
    const std::string before = read_file(place.path());
    alone([&] {
        const SystemLog log(place.directory());
        EXPECT_EQ(ssid(), std::nullopt);
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 0);
        const std::vector<std::string> lines = log.lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(lines[0].find(place.path()), std::string::npos) << lines[0];
    });
    EXPECT_EQ(read_file(place.path()), before);
    EXPECT_TRUE(fs::exists(fs::symlink_status(place.path() + GetParam().suffix)));
    EXPECT_FALSE(fs::exists(place.path() + "-shm"));
}

TEST_P(BesideTheStore, LeavesTheContentsThatWereThereBefore) {
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        put();
        touch();
        for (int i = 0; i < 100; ++i)
            ASSERT_EQ(ssid(), "office");
        fs::remove(place.path() + GetParam().suffix);
        done(tool(place.path(), {"set", "interface", "wlan0", "ssid", "home"}));
        EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
    });
}

TEST_P(BesideTheStore, EndsTheToolSoonAndIsNamedByIt) {
    put();
    const Outcome outcome = tool(place.path(), {"check"});
    EXPECT_TRUE(outcome.status == 1 || outcome.status == 3) << outcome.status << outcome.text;
    EXPECT_NE(outcome.text.find(GetParam().suffix), std::string::npos) << outcome.text;
}

// -- interrupted writes

class Interrupted : public testing::Test {
  protected:
    Interrupted() {
        std::vector<Value> values = {ssid_is("office")};
        for (int i = 0; i < 6; ++i)
            values.push_back({"load", "o", std::to_string(i), std::string(3000, 'a')});
        make_store(place.path(), values);
        intact = read_file(place.path());
    }

    // A writer that dies between writing pages and telling that they are written: more changes than its cache holds
    // make it write them before the commit.
    void interrupt() const {
        const int status = in_child([&] {
            sqlite3* writer = nullptr;
            sqlite3_open(place.path().c_str(), &writer);
            sqlite3_exec(writer,
                         "PRAGMA journal_mode=TRUNCATE; PRAGMA cache_size=1; BEGIN IMMEDIATE;"
                         "UPDATE attribute SET value = CAST('wrong' AS BLOB) WHERE value = CAST('office' AS BLOB);"
                         "UPDATE attribute SET value = zeroblob(length(value)) WHERE length(value) > 100",
                         nullptr, nullptr, nullptr);
            kill(getpid(), SIGKILL);
            return 0;
        });
        ASSERT_EQ(status, 1000 + SIGKILL);
        ASSERT_NE(read_file(place.path()), intact);
        ASSERT_GT(fs::file_size(place.path() + "-journal"), 0U);
    }

    static constexpr char advice[] = "run cfql check as root";
    const Place place;
    std::string intact;
};

TEST_F(Interrupted, LeavesTheLastGoodContentsUntilTheToolHasUndoneIt) {
    alone([&] {
        const SystemLog log(place.directory());
        EXPECT_EQ(ssid(), "office");
        interrupt();
        for (int i = 0; i < 100; ++i)
            ASSERT_EQ(ssid(), "office");
        const std::vector<std::string> lines = log.lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(lines[0].find(advice), std::string::npos) << lines[0];
        done(tool(place.path(), {"check"}));
        done(tool(place.path(), {"set", "interface", "wlan0", "ssid", "home"}));
        EXPECT_TRUE(eventually([] { return ssid() == "home"; }));
        EXPECT_EQ(get("load", "o", "3"), std::string(3000, 'a'));
    });
}

TEST_F(Interrupted, LeavesNothingToAReaderWithoutContentsUntilTheToolHasUndoneIt) {
    interrupt();
    alone([&] {
        const SystemLog log(place.directory());
        EXPECT_EQ(ssid(), std::nullopt);
        const std::vector<std::string> lines = log.lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(lines[0].find(advice), std::string::npos) << lines[0];
        done(tool(place.path(), {"check"}));
        EXPECT_TRUE(eventually([] { return ssid() == "office"; }));
    });
    EXPECT_TRUE(read_file(place.path()) == intact);
}

TEST_F(Interrupted, IsUndoneByEachCommandOfTheTool) {
    for (const std::string command : {"check", "list", "export", "lint"}) {
        interrupt();
        const Outcome outcome = tool(place.path(), {command});
        EXPECT_LE(outcome.status, 1) << command << outcome.text;
        EXPECT_TRUE(read_file(place.path()) == intact) << command;
    }
}

TEST_F(Interrupted, IsUndoneByAWriteOfTheLibrary) {
    interrupt();
    alone([] {
        EXPECT_EQ(set("interface", "wlan1", "ssid", "new"), 1);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(get("interface", "wlan1", "ssid"), "new");
        EXPECT_EQ(get("load", "o", "3"), std::string(3000, 'a'));
    });
}

// A journal belongs to a path, not to a file: whoever puts another store there removes it.
TEST_F(Interrupted, LeavesAJournalThatARestoreMustRemove) {
    const std::string copy = place.directory() + "/copy.db";
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        make_store(copy, {ssid_is("restored")});
        interrupt();
        fs::rename(copy, place.path());
        for (int i = 0; i < 100; ++i) {
            const auto answer = ssid();
            EXPECT_TRUE(answer == "office" || answer == std::nullopt) << *answer;
        }
        fs::remove(place.path() + "-journal");
        EXPECT_TRUE(eventually([] { return ssid() == "restored"; }));
        EXPECT_EQ(get("load", "o", "3"), std::nullopt);
    });
}

// What happens otherwise: the old journal's pages go into the new store, which is then either the old one or damaged,
// and never something between.
TEST_F(Interrupted, LeavesAJournalThatOverwritesARestoredStore) {
    const std::string copy = place.directory() + "/copy.db";
    make_store(copy, {ssid_is("restored")});
    interrupt();
    fs::rename(copy, place.path());
    EXPECT_NE(tool(place.path(), {"check"}).status, 127);
    alone([] {
        const auto answer = ssid();
        EXPECT_TRUE(answer == "office" || answer == std::nullopt) << *answer;
    });
}

// -- exchanged

timespec changed_at(const std::string& path) {
    struct stat file;
    if (stat(path.c_str(), &file) != 0) throw std::runtime_error("stat");
    return file.st_mtim;
}

void set_changed_at(const std::string& path, timespec time) {
    const timespec times[] = {{0, UTIME_OMIT}, time};
    if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) throw std::runtime_error("utimensat");
}

ino_t inode_of(const std::string& path) {
    struct stat file;
    return stat(path.c_str(), &file) == 0 ? file.st_ino : 0;
}

// NEW is a store like that at PATH, of the same size and the same number of changes, with another value.
struct Exchange {
    const char* what;
    void (*apply)(const std::string& path, const std::string& next);
};

void PrintTo(const Exchange& exchange, std::ostream* out) {
    *out << exchange.what;
}

void rename_over(const std::string& path, const std::string& next) {
    fs::rename(next, path);
}

void copy_over(const std::string& path, const std::string& next) {
    overwrite(path, read_file(next));
}

const Exchange exchanges[] = {
    {"ByRename", rename_over},
    {"ByALink",
     [](const std::string& path, const std::string& next) {
         fs::create_symlink(next, path + "-link");
         fs::rename(path + "-link", path);
     }},
    {"ByCopyingOverIt", copy_over},
    {"ByTruncatingAndWriting",
     [](const std::string& path, const std::string& next) { write_file(path, read_file(next)); }},
    {"WithTheTimeOfTheOld",
     [](const std::string& path, const std::string& next) {
         const timespec before = changed_at(path);
         copy_over(path, next);
         set_changed_at(path, before);
     }},
    {"ByRenameWithTheTimeOfTheOld",
     [](const std::string& path, const std::string& next) {
         set_changed_at(next, changed_at(path));
         fs::rename(next, path);
     }},
    {"WithTheInodeOfTheOld",
     [](const std::string& path, const std::string& next) {
         const std::string octets = read_file(next);
         const ino_t before = inode_of(path);
         const timespec time = changed_at(path);
         fs::remove(next);
         for (int tries = 0; tries < 1000; ++tries) {
             fs::remove(path);
             write_file(path, octets);
             if (inode_of(path) == before) break;
         }
         set_changed_at(path, time);
     }},
    {"ByMountingOverTheDirectory",
     [](const std::string& path, const std::string& next) {
         const std::string octets = read_file(next);
         have_own_mounts();
         mount_tmpfs(fs::path(path).parent_path());
         write_file(path, octets);
     }},
    {"ByMountingOverTheFile",
     [](const std::string& path, const std::string& next) {
         have_own_mounts();
         bind_mount(next, path);
     }},
    {"WithATimeInTheFuture",
     [](const std::string& path, const std::string& next) {
         copy_over(path, next);
         set_changed_at(path, {4'000'000'000, 0});
     }},
    {"WithATimeBeforeAllTimes",
     [](const std::string& path, const std::string& next) {
         copy_over(path, next);
         set_changed_at(path, {0, 0});
     }},
};

class Exchanged : public testing::TestWithParam<Exchange> {
  protected:
    Exchanged() {
        make_store(place.path(), {ssid_is("office")});
        make_store(next, {ssid_is("lobby!")});
        for (const std::string& path : {place.path(), next}) {
            remove_what_is_beside(path);
        }
        EXPECT_EQ(fs::file_size(place.path()), fs::file_size(next));
        EXPECT_EQ(read_file(place.path()).substr(0, 100), read_file(next).substr(0, 100));
    }

    const Place place;
    const std::string next = place.directory() + "/next.db";
};

INSTANTIATE_TEST_SUITE_P(Ways, Exchanged, testing::ValuesIn(exchanges),
                         [](const auto& test) { return test.param.what; });

TEST_P(Exchanged, IsNoticedRightAfterItWasRead) {
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        GetParam().apply(place.path(), next);
        EXPECT_TRUE(eventually([] { return ssid() == "lobby!"; }));
    });
}

// The last reading of a file that has changed lately follows three seconds after the change.
TEST_P(Exchanged, IsNoticedLongAfterItWasRead) {
    alone([&] {
        const auto begin = std::chrono::steady_clock::now();
        eventually([&] {
            EXPECT_EQ(ssid(), "office");
            return std::chrono::steady_clock::now() > begin + std::chrono::seconds(4);
        });
        GetParam().apply(place.path(), next);
        EXPECT_TRUE(eventually([] { return ssid() == "lobby!"; }));
    });
}

TEST(FileWithATimeInTheFuture, IsFollowed) {
    const Place place;
    make_store(place.path(), {ssid_is("office")});
    set_changed_at(place.path(), {4'000'000'000, 0});
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        for (const std::string value : {"first", "other", "third"}) {
            done(tool(place.path(), {"set", "interface", "wlan0", "ssid", value}));
            set_changed_at(place.path(), {4'000'000'000, 0});
            EXPECT_TRUE(eventually([&] { return ssid() == value; }));
        }
    });
}

// -- media that nobody may write

class ReadOnly : public testing::Test {
  protected:
    ReadOnly() {
        make_office(from);
        fs::create_directory(shipped);
        fs::copy_file(from, shipped + "/store.db");
        setenv("CFQL_STORE", (shipped + "/store.db").c_str(), 1);
    }

    const Place place;
    const std::string from = place.directory() + "/made.db";
    const std::string shipped = place.directory() + "/shipped";
};

TEST_F(ReadOnly, AMediumWithTheFileAloneIsRead) {
    alone([&] {
        have_own_mounts();
        bind_mount(shipped, shipped, MS_RDONLY);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 0);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(tool(shipped + "/store.db", {"get", "interface", "wlan0", "ssid"}).text, "office\n");
    });
}

TEST_F(ReadOnly, AMediumWithAnEmptyJournalIsRead) {
    write_file(shipped + "/store.db-journal", "");
    alone([&] {
        have_own_mounts();
        bind_mount(shipped, shipped, MS_RDONLY);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(tool(shipped + "/store.db", {"check"}).status, 0);
    });
}

TEST_F(ReadOnly, ADirectoryOfSomebodyElseIsRead) {
    if (getuid() != 0) GTEST_SKIP() << "not root";
    chmod(place.directory().c_str(), 0755);
    for (const bool with_journal : {false, true}) {
        if (with_journal) {
            write_file(shipped + "/store.db-journal", "");
            chmod((shipped + "/store.db-journal").c_str(), 0600);
        }
        for (const mode_t mode : {0755U, 0711U}) {
            chmod(shipped.c_str(), mode);
            chmod((shipped + "/store.db").c_str(), 0644);
            alone([] {
                EXPECT_EQ(setgid(65534) + setuid(65534), 0);
                EXPECT_EQ(ssid(), "office");
                EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 0);
            });
        }
    }
}

}  // namespace
