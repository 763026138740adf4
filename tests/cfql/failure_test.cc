// What the library does if the store is not as it should be, or not where it was. Every test needs a process of its
// own, which ctest provides: pauses after a failure and between log lines are kept per process.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "fixture.h"
#include "log.h"

// What happens after the N-th look at a path, before the file there is opened.
namespace {
struct {
    std::string path;
    int countdown = 0;
    void (*act)(const std::string& path) = nullptr;
} after_look;
}  // namespace

extern "C" int lstat(const char* path, struct stat* file) noexcept {
    const int result = fstatat(AT_FDCWD, path, file, AT_SYMLINK_NOFOLLOW);
    if (after_look.path == path && --after_look.countdown == 0) after_look.act(path);
    return result;
}

namespace {

using namespace store_test;
namespace fs = std::filesystem;

const Value office = {"interface", "wlan0", "ssid", "office"};

std::optional<std::string> ssid() {
    grid("interface");  // looks at the store at once
    return get("interface", "wlan0", "ssid");
}

// Overwrites the file in place, as nothing that knows about the store would.
void scribble(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::trunc) << text;
}

void remove_store(const std::string& path) {
    for (const char* suffix : {"-journal", ""})
        fs::remove(path + suffix);
}

class Failure : public testing::Test {
  protected:
    Failure() {
        make(place.path(), {office});
        log_lines.clear();
    }
    Place place;
};

TEST_F(Failure, AStoreThatIsReplacedByRenameIsFollowed) {
    EXPECT_EQ(ssid(), "office");
    const std::string other = place.directory() + "/other.db";
    make(other, {{"interface", "wlan0", "ssid", "replaced"}});
    fs::rename(other, place.path());
    EXPECT_EQ(ssid(), "replaced");
    EXPECT_EQ(set("interface", "wlan0", "ssid", "written"), 1);
    EXPECT_EQ(ssid(), "written");
    EXPECT_EQ(log_lines.size(), 0U);
}

TEST_F(Failure, AWriterFollowsAReplacedStore) {
    EXPECT_EQ(set("interface", "wlan0", "ssid", "old"), 1);
    remove_store(place.path());
    EXPECT_EQ(set("interface", "wlan0", "ssid", "nowhere"), 0);
    make(place.path());
    EXPECT_EQ(set("interface", "wlan0", "ssid", "new"), 1);
    EXPECT_EQ(in_child([] { return ssid() == "new" ? 0 : 1; }), 0);
}

TEST_F(Failure, AStoreThatIsRemovedIsAbsentSilentlyAndComesBack) {
    EXPECT_EQ(ssid(), "office");
    remove_store(place.path());
    EXPECT_EQ(ssid(), std::nullopt);
    EXPECT_EQ(log_lines.size(), 0U);
    make(place.path(), {office});
    EXPECT_EQ(ssid(), "office");
}

TEST_F(Failure, AStoreThatIsReplacedByGarbageIsWhatIsThereNow) {
    EXPECT_EQ(ssid(), "office");
    scribble(place.directory() + "/text", "not a store");
    fs::rename(place.directory() + "/text", place.path());
    EXPECT_EQ(ssid(), std::nullopt);
    EXPECT_EQ(log_lines,
              (std::vector<std::string>{"<27>cfqlquery: " + place.path() + ": the file is not a configuration store"}));
}

TEST_F(Failure, TheLastGoodContentsOutliveDamageWithOneLogLineUntilTheStoreIsMended) {
    EXPECT_EQ(ssid(), "office");
    scribble(place.path(), "scribbled over");
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(ssid(), "office");
    EXPECT_EQ(set("interface", "wlan0", "ssid", "lost"), 0);
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(log_lines,
              (std::vector<std::string>{"<27>cfqlquery: " + place.path() +
                                        ": the file is not a configuration store; the last good contents stay in "
                                        "use"}));
    const std::string other = place.directory() + "/other";
    make(other, {{"interface", "wlan0", "ssid", "mended"}});
    {
        std::ifstream from(other, std::ios::binary);
        std::ofstream(place.path(), std::ios::trunc | std::ios::binary) << from.rdbuf();
    }
    EXPECT_TRUE(eventually([] { return ssid() == "mended"; }));
    EXPECT_EQ(log_lines.size(), 1U);
}

TEST_F(Failure, ADamagedPageLeavesTheLastGoodContents) {
    EXPECT_EQ(ssid(), "office");
    {
        std::fstream file(place.path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(1024);
        file << std::string(1024, '\xff');
    }
    EXPECT_TRUE(eventually([] { return ssid() == "office" && !log_lines.empty(); }));
    ASSERT_EQ(log_lines.size(), 1U);
    EXPECT_NE(log_lines[0].find("the store is damaged; the last good contents stay in use"), std::string::npos)
        << log_lines[0];
    EXPECT_EQ(log_lines[0].find("office"), std::string::npos);
}

// The index of names is no part of what a load reads.
TEST_F(Failure, DamageOutsideWhatIsReadIsFoundAllTheSame) {
    sqlite3* connection = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open(place.path().c_str(), &connection);
    sqlite3_prepare_v2(connection, "SELECT rootpage FROM sqlite_schema WHERE type='index'", -1, &statement, nullptr);
    sqlite3_step(statement);
    const int root = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    EXPECT_EQ(ssid(), "office");
    {
        std::fstream file(place.path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp((root - 1) * 1024);
        file << std::string(1024, '\xff');
    }
    EXPECT_TRUE(eventually([] { return ssid() == "office" && !log_lines.empty(); })) << "the stamps have moved";
    EXPECT_EQ(in_child([] { return ssid() ? 1 : 0; }), 1) << "who has contents keeps them";
    EXPECT_EQ(cfql::Database().open(place.path().c_str(), cfql::Access::read), cfql::Status::damaged);
}

// A writer does not examine again what it left behind, unless somebody else was there.
TEST_F(Failure, DamageBetweenTwoWritesIsFoundByTheSecond) {
    std::vector<Value> values;
    for (int i = 0; i < 40; ++i)
        values.push_back({"interface", "zulu", "k" + std::to_string(i), std::string(500, 'a')});
    put(place.path(), values);
    EXPECT_EQ(set("interface", "wlan0", "ssid", "first"), 1);
    const auto last_page = static_cast<std::streamoff>(fs::file_size(place.path())) - 1024;
    std::string page(1024, '\0');
    std::fstream file(place.path(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekg(last_page).read(page.data(), 1024);
    file.seekp(last_page) << std::string(1024, '\xff') << std::flush;
    EXPECT_EQ(set("interface", "wlan0", "ssid", "second"), 0);
    file.seekp(last_page) << page << std::flush;
    EXPECT_EQ(set("interface", "wlan0", "ssid", "third"), 1);
}

const struct {
    const char* what;
    void (*make_it)(const std::string& path);
} other_files[] = {
    {"empty file", [](const std::string& path) { scribble(path, ""); }},
    {"text", [](const std::string& path) { scribble(path, std::string(5000, 'x')); }},
    {"directory", [](const std::string& path) { fs::create_directory(path); }},
    {"named pipe", [](const std::string& path) { mkfifo(path.c_str(), 0600); }},
    {"dangling link", [](const std::string& path) { fs::create_symlink("/nonexistent/x", path); }},
    {"another database", [](const std::string& path) { sql(path, "CREATE TABLE object(id)"); }},
    {"later version",
     [](const std::string& path) {
         make(path, {office});
         sql(path, "PRAGMA user_version=2");
     }},
    {"other application",
     [](const std::string& path) {
         make(path, {office});
         sql(path, "PRAGMA application_id=7");
     }},
    {"a trigger",
     [](const std::string& path) {
         make(path, {office});
         sql(path, "CREATE TRIGGER t AFTER INSERT ON attribute BEGIN DELETE FROM attribute; END");
     }},
    {"a view",
     [](const std::string& path) {
         make(path, {office});
         sql(path, "ALTER TABLE attribute RENAME TO a; CREATE VIEW attribute AS SELECT * FROM a");
     }},
    {"a table more",
     [](const std::string& path) {
         make(path, {office});
         sql(path, "CREATE TABLE zebra(id)");
     }},
    {"an index less",
     [](const std::string& path) {
         make(path, {office});
         sql(path, "DROP INDEX object_name");
     }},
};

TEST_F(Failure, AFileOfAnotherKindIsNoStore) {
    for (const auto& fact : other_files) {
        SCOPED_TRACE(fact.what);
        fs::remove_all(place.path());
        remove_store(place.path());
        fact.make_it(place.path());
        // In a child, for the pause after a failure is the process's.
        EXPECT_EQ(in_child([] {
                      alarm(100);
                      if (ssid() || !grid("interface").empty()) return 1;
                      return set("interface", "wlan0", "ssid", "x") == 0 ? 0 : 2;
                  }),
                  0);
    }
}

bool holds_open(const std::string& path) {
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code none;
        if (fs::read_symlink(entry.path(), none).string().rfind(path, 0) == 0) return true;
    }
    return false;
}

TEST_F(Failure, NothingStaysOpenAndBothSidesOfAForkGoOn) {
    EXPECT_EQ(ssid(), "office");
    EXPECT_FALSE(holds_open(place.path()));
    EXPECT_EQ(set("interface", "wlan0", "ssid", "before"), 1);
    EXPECT_FALSE(holds_open(place.path()));
    const int result = in_child([&] {
        if (get("interface", "wlan0", "ssid") != "before") return 2;
        if (set("interface", "wlan0", "ssid", "child") != 1) return 3;
        return ssid() == "child" ? 0 : 4;
    });
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(eventually([] { return ssid() == "child"; }));
    EXPECT_EQ(set("interface", "wlan0", "ssid", "parent"), 1);
    EXPECT_EQ(ssid(), "parent");
}

TEST_F(Failure, TheChildOfAForkFollowsTheStore) {
    EXPECT_EQ(ssid(), "office");
    const SteppedChild child([](auto stop) {
        if (ssid() != "office" || !stop()) return 1;
        return ssid() == "parent" ? 0 : 2;
    });
    EXPECT_TRUE(child.wait_for_stop());
    EXPECT_EQ(set("interface", "wlan0", "ssid", "parent"), 1);
    EXPECT_TRUE(child.go_on());
    EXPECT_EQ(child.finish(), 0);
}

TEST_F(Failure, TwoProcessesWriteAtOnceAndNothingIsLost) {
    const auto writer = [](const char* object) {
        for (int i = 0; i < 100; ++i) {
            if (set("load", object, std::to_string(i).c_str(), "x") != 1) return 1;
        }
        return 0;
    };
    const pid_t first = start([&] { return writer("first"); });
    const pid_t second = start([&] { return writer("second"); });
    EXPECT_EQ(finish(first), 0);
    EXPECT_EQ(finish(second), 0);
    for (const char* object : {"first", "second"}) {
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(get("load", object, std::to_string(i).c_str()), "x") << object << i;
    }
}

// What lies beside a store is refused before it is opened, and nothing waits.
TEST_F(Failure, WhatLiesBesideAStoreIsNotTouched) {
    const struct {
        const char *what, *suffix;
        void (*make_it)(const std::string& path);
    } facts[] = {
        {"a log", "-wal", [](const std::string& path) { scribble(path, "log"); }},
        {"a pipe for a log", "-wal", [](const std::string& path) { mkfifo(path.c_str(), 0600); }},
        {"a pipe for a journal", "-journal", [](const std::string& path) { mkfifo(path.c_str(), 0600); }},
        {"a directory for a journal", "-journal", [](const std::string& path) { fs::create_directory(path); }},
        {"a link for a journal", "-journal", [](const std::string& path) { fs::create_symlink("/dev/zero", path); }},
    };
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.what);
        fs::remove_all(place.path() + "-wal");
        fs::remove_all(place.path() + "-journal");
        fact.make_it(place.path() + fact.suffix);
        EXPECT_EQ(in_child([&] {
                      alarm(100);
                      using cfql::Access;
                      if (ssid() || set("interface", "wlan0", "ssid", "x") == 1) return 1;
                      for (const Access access : {Access::read, Access::recover, Access::salvage, Access::write}) {
                          if (cfql::Database().open(place.path().c_str(), access) != cfql::Status::obstructed) return 2;
                      }
                      return 0;
                  }),
                  0);
        EXPECT_FALSE(fs::exists(place.path() + "-shm"));
    }
}

// A pipe takes the place of a file that was looked at and not yet opened.
TEST_F(Failure, AFileExchangedForAPipeBeforeItIsOpenedHoldsNobodyUp) {
    const auto put_pipe = [](const std::string& path) {
        mkfifo((path + ".pipe").c_str(), 0600);
        rename((path + ".pipe").c_str(), path.c_str());
    };
    for (const std::string& path : {place.path(), place.path() + "-journal"}) {
        bool reached = true;
        for (int look = 1; reached; ++look) {
            SCOPED_TRACE(testing::Message() << path << ", look number " << look);
            remove_store(place.path());
            make(place.path(), {office});
            const int result = in_child([&] {
                alarm(100);
                after_look = {path, look, put_pipe};
                ssid();
                set("interface", "wlan0", "ssid", "home");
                return after_look.countdown <= 0 ? 0 : 77;
            });
            ASSERT_TRUE(result == 0 || result == 77) << result;
            ASSERT_LT(look, 100);
            reached = result == 0;
            EXPECT_TRUE(reached || look > 2) << "it is not looked at";
        }
    }
}

TEST_F(Failure, AStoreInTheOldModeIsRefusedWithTheLineThatConvertsIt) {
    sql(place.path(), "PRAGMA journal_mode=WAL");
    EXPECT_EQ(ssid(), std::nullopt);
    EXPECT_EQ(log_lines,
              (std::vector<std::string>{"<27>cfqlquery: " + place.path() +
                                        ": the store has a write-ahead log; convert it, as root: sqlite3 FILE 'PRAGMA "
                                        "journal_mode=TRUNCATE'"}));
    sql(place.path(), "PRAGMA journal_mode=TRUNCATE");
    EXPECT_TRUE(eventually([] { return ssid() == "office"; }));
}

// A journal of the file that lay here before undoes into its successor.
TEST_F(Failure, ARestoreRemovesTheJournalThatIsLeft) {
    EXPECT_EQ(ssid(), "office");
    const std::string backup = place.directory() + "/backup";
    make(backup, {{"interface", "wlan0", "ssid", "restored"}});
    {
        cfql::Database store;
        require(store.open(place.path().c_str(), cfql::Access::write));
        require(store.begin_write());
        for (int i = 0; i < 200; ++i)
            require(store.set("load", "o", std::to_string(i), std::string(1000, 'x')));
        fs::copy_file(place.path() + "-journal", place.directory() + "/left");
    }
    const auto restore = [&](bool with_journal) {
        fs::remove(place.path() + "-journal");
        if (with_journal) fs::copy_file(place.directory() + "/left", place.path() + "-journal");
        fs::copy_file(backup, place.directory() + "/new", fs::copy_options::overwrite_existing);
        fs::rename(place.directory() + "/new", place.path());
    };
    restore(true);
    EXPECT_EQ(ssid(), std::nullopt) << "nothing of the restored store is believed";
    EXPECT_EQ(in_child([] { return set("interface", "wlan0", "more", "x") == 1 ? 0 : 1; }), 0);
    EXPECT_NE(in_child([] { return ssid() == "restored" ? 0 : 1; }), 0) << "the journal has undone the restored store";
    restore(false);
    EXPECT_TRUE(eventually([] { return ssid() == "restored"; }));
}

}  // namespace
