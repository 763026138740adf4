// What the library does when the store is not as it should be, or not where it was. Every test wants a process of its
// own, which ctest gives it: the pause after a failure and the pause between log lines are the process's.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "fixture.h"
#include "log.h"

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
    for (const char* suffix : {"-wal", "-shm", "-journal", ""})
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
    fs::remove(place.path() + "-wal");
    fs::remove(place.path() + "-shm");
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
              (std::vector<std::string>{"<3>cfqlquery: " + place.path() + ": the file is not a configuration store"}));
}

TEST_F(Failure, TheLastGoodContentsOutliveDamageWithOneLogLineUntilTheStoreIsMended) {
    EXPECT_EQ(ssid(), "office");
    const std::string copy = place.directory() + "/copy";
    {
        EXPECT_EQ(in_child([&] { return fs::copy_file(place.path(), copy) ? 0 : 1; }), 0);
    }
    EXPECT_EQ(in_child([&] {
                  scribble(place.path(), "scribbled over");
                  scribble(place.path() + "-wal", "scribbled over");
                  return 0;
              }),
              0);
    // The fork above closed the connection, so the next look opens the file anew.
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(ssid(), "office");
    EXPECT_EQ(set("interface", "wlan0", "ssid", "lost"), 0);
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(log_lines,
              (std::vector<std::string>{"<3>cfqlquery: " + place.path() +
                                        ": the file is not a configuration store; the last good contents stay in "
                                        "use"}));
    make(copy + "2", {{"interface", "wlan0", "ssid", "mended"}});
    EXPECT_EQ(in_child([&] {
                  fs::remove(place.path() + "-wal");
                  fs::remove(place.path() + "-shm");
                  std::ifstream from(copy + "2", std::ios::binary);
                  std::ofstream(place.path(), std::ios::trunc | std::ios::binary) << from.rdbuf();
                  return 0;
              }),
              0);
    EXPECT_TRUE(eventually([] { return ssid() == "mended"; }, std::chrono::seconds(5)));
    EXPECT_EQ(log_lines.size(), 1U);
}

TEST_F(Failure, ADamagedPageFoundAtTheNextOpenLeavesTheLastGoodContents) {
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(in_child([&] {
                  // Nobody else has the file open here, so what is written back is the whole store.
                  sql(place.path(), "PRAGMA wal_checkpoint(TRUNCATE)");
                  std::fstream file(place.path(), std::ios::in | std::ios::out | std::ios::binary);
                  file.seekp(1024);
                  file << std::string(1024, '\xff');
                  return 0;
              }),
              0);
    EXPECT_EQ(ssid(), "office");
    ASSERT_EQ(log_lines.size(), 1U);
    EXPECT_NE(log_lines[0].find("the store is damaged; the last good contents stay in use"), std::string::npos)
        << log_lines[0];
    EXPECT_EQ(log_lines[0].find("office"), std::string::npos);
}

TEST_F(Failure, ABusyStoreIsReadFromTheLastGoodContents) {
    sql(place.path(), "PRAGMA journal_mode=TRUNCATE");
    EXPECT_EQ(ssid(), "office");
    sqlite3* holder = nullptr;
    sqlite3_open(place.path().c_str(), &holder);
    ASSERT_EQ(sqlite3_exec(holder, "PRAGMA journal_mode=TRUNCATE; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr),
              SQLITE_OK);
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(log_lines,
              (std::vector<std::string>{"<3>cfqlquery: " + place.path() +
                                        ": another process holds the store locked; the last good contents stay in "
                                        "use"}));
    EXPECT_EQ(set("interface", "wlan0", "ssid", "refused"), 0);
    sqlite3_exec(holder, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(holder);
    EXPECT_EQ(set("interface", "wlan0", "ssid", "free"), 1);
    EXPECT_EQ(ssid(), "free");
}

TEST_F(Failure, AFileOfAnotherKindIsNoStore) {
    const struct {
        const char* what;
        void (*make_it)(const std::string& path);
    } facts[] = {
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
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.what);
        fs::remove_all(place.path());
        remove_store(place.path());
        fact.make_it(place.path());
        // In a child, for the pause after a failure is the process's.
        EXPECT_EQ(in_child([] {
                      alarm(10);
                      if (ssid() || !grid("interface").empty()) return 1;
                      return set("interface", "wlan0", "ssid", "x") == 0 ? 0 : 2;
                  }),
                  0);
    }
}

TEST_F(Failure, AForkClosesTheConnectionsAndBothSidesGoOn) {
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(set("interface", "wlan0", "ssid", "before"), 1);
    const int result = in_child([&] {
        for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
            std::error_code none;
            if (fs::read_symlink(entry.path(), none).string().rfind(place.path(), 0) == 0) return 1;
        }
        if (get("interface", "wlan0", "ssid") != "before") return 2;
        if (set("interface", "wlan0", "ssid", "child") != 1) return 3;
        return ssid() == "child" ? 0 : 4;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(ssid(), "child");
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

TEST_F(Failure, WithoutALogTheStoreWorksAsWell) {
    sql(place.path(), "PRAGMA journal_mode=TRUNCATE");
    EXPECT_EQ(ssid(), "office");
    EXPECT_EQ(set("interface", "wlan0", "ssid", "changed"), 1);
    EXPECT_TRUE(fs::exists(place.path() + "-journal")) << "the journal is cut, not deleted";
    EXPECT_EQ(fs::file_size(place.path() + "-journal"), 0U);
    EXPECT_EQ(ssid(), "changed");
    EXPECT_EQ(in_child([] { return set("interface", "wlan0", "ssid", "again") == 1 ? 0 : 1; }), 0);
    EXPECT_EQ(ssid(), "again");
}

}  // namespace
