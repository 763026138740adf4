// What the library makes of a disk that fails: a failed look and a failed write are tried once more at once where that
// may help, and whatever fails, nobody is told what never was.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include "disk.h"
#include "fixture.h"

namespace {

using namespace store_test;
namespace fs = std::filesystem;

using Ssid = std::optional<std::string>;
constexpr uid_t nobody = 65534;

Ssid ssid() {
    return get("interface", "wlan0", "ssid");
}

// Whatever the time is, a grid looks at the store.
Ssid look() {
    grid("interface");
    return ssid();
}

// A change of two values: they come together or not at all.
void change() {
    EXPECT_EQ(look(), "office");
    put(cfql::store_path(), {{"interface", "wlan0", "ssid", "home"}, {"interface", "wlan1", "ssid", "home"}});
}

Ssid look_at_both() {
    const std::size_t interfaces = grid("interface").size();
    const Ssid found = ssid();
    EXPECT_EQ(interfaces, found == "home" ? 2U : 1U);
    return found;
}

Ssid write_home() {
    return set("interface", "wlan0", "ssid", "home") == 1 ? "home" : "office";
}

// A call of the library, and what it tells of the ssid if it fails and if it does not.
struct Operation {
    const char* name;
    void (*prepare)();
    Ssid (*run)();
    Ssid failed, done;
    bool writes;
};
const Operation first_read = {"first read", [] {}, ssid, std::nullopt, "office", false};
const Operation later_read = {"read after a change", change, look_at_both, "office", "home", false};
const Operation first_write = {"write", [] {}, write_home, "office", "home", true};
const Operation later_write = {
    "write by a reader", [] { EXPECT_EQ(look(), "office"); }, write_home, "office", "home", true};

Disk::Fate fails_once(Call which, int code, int from = 1) {
    return [=](Call call, int nth) { return call == which && nth == from ? code : SQLITE_OK; };
}

Disk::Fate fails_for_ever(Call which, int code, int from = 1) {
    return [=](Call call, int nth) { return call == which && nth >= from ? code : SQLITE_OK; };
}

// Runs BODY in a process that has not asked the library yet. Its failed expectations are printed there.
template <class Body>
bool alone(Body body) {
    return in_child([&] { return body(), testing::Test::HasFailure() ? 1 : 0; }) == 0;
}

// What another process finds. As a writer: without a log, only a writer undoes what was left unfinished.
Ssid on_disk() {
    const int found = in_child([] {
        cfql::Database store;
        cfql::Text value;
        cfql::Status status = store.open(cfql::store_path(), cfql::Access::write);
        if (status == cfql::Status::ok) status = store.get("interface", "wlan0", "ssid", value);
        return value == "home" ? 1 : value == "office" ? 2 : 0;
    });
    return found == 1 ? Ssid("home") : found == 2 ? Ssid("office") : std::nullopt;
}

class Retry : public testing::Test {
  protected:
    Retry() { make_for("WAL"); }

    // A store with the journal that is named, as a writer that was killed leaves it: the log holds something, and
    // nobody keeps the log's index.
    void make_for(const std::string& journal) {
        fs::remove_all(kept);
        begin();
        make(place.path());
        sql(place.path(), ("PRAGMA journal_mode=" + journal).c_str());
        EXPECT_TRUE(alone([] { EXPECT_EQ(set("interface", "wlan0", "ssid", "office"), 1); }));
        fs::copy(place.directory(), kept);
    }

    // The same store again.
    void begin() {
        for (const char* name : {"store.db", "store.db-wal", "store.db-shm", "store.db-journal"}) {
            fs::remove(place.directory() / fs::path(name));
            if (fs::exists(kept / name)) fs::copy_file(kept / name, place.directory() / fs::path(name));
        }
    }
    Place place;
    const fs::path kept = place.directory() + "/kept";
};

TEST_F(Retry, WithoutAFailureTheStoreIsAskedOnce) {
    EXPECT_TRUE(alone([] {
        disk.become(nullptr);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(disk.calls[Call::open_store], 1);
        disk.become(nullptr);
        EXPECT_EQ(look(), "office");
        EXPECT_EQ(disk.calls, (std::map<Call, int>{{Call::shm_lock, 1}}));
        EXPECT_EQ(write_home(), "home");
        EXPECT_EQ(disk.calls[Call::open_store], 1);
        disk.become(nullptr);
        EXPECT_EQ(write_home(), "home");
        EXPECT_EQ(disk.calls[Call::open_store], 0);
        EXPECT_EQ(disk.calls[Call::sync], 1);
    }));
}

const struct {
    const Operation& operation;
    Call call;
    int code;
    int tries;
} facts[] = {
    {first_read, Call::shm_lock, SQLITE_IOERR_SHMLOCK, 2},
    {first_read, Call::shm_lock, SQLITE_READONLY_RECOVERY, 2},
    {first_read, Call::shm_lock, SQLITE_READONLY_CANTINIT, 2},
    {first_read, Call::open_store, SQLITE_IOERR, 2},
    {first_read, Call::read, SQLITE_IOERR_READ, 2},
    {first_read, Call::shm_lock, SQLITE_READONLY_DBMOVED, 1},
    {first_read, Call::shm_lock, SQLITE_NOTADB, 1},
    {first_read, Call::open_store, SQLITE_CANTOPEN, 1},
    {later_read, Call::shm_lock, SQLITE_IOERR_SHMLOCK, 2},
    {later_read, Call::shm_lock, SQLITE_READONLY_RECOVERY, 2},
    {later_read, Call::shm_lock, SQLITE_READONLY_CANTINIT, 2},
    {later_read, Call::shm_lock, SQLITE_NOTADB, 1},
    {first_write, Call::shm_lock, SQLITE_IOERR_SHMLOCK, 2},
    {first_write, Call::shm_lock, SQLITE_READONLY_RECOVERY, 2},
    {first_write, Call::shm_lock, SQLITE_READONLY_CANTINIT, 2},
    {first_write, Call::write, SQLITE_IOERR_WRITE, 2},
    {first_write, Call::write, SQLITE_FULL, 1},
    {first_write, Call::shm_lock, SQLITE_NOTADB, 1},
};

// The inner child has no connections: each of its attempts opens the store.
TEST_F(Retry, WhatMayPassIsTriedOnceMore) {
    for (const auto& fact : facts) {
        for (const bool passes : {true, false}) {
            SCOPED_TRACE(testing::Message() << fact.operation.name << ", code " << fact.code << ", passes " << passes);
            const auto attempts = [&] {
                const Ssid told = passes && fact.tries == 2 ? fact.operation.done : fact.operation.failed;
                disk.become(passes ? fails_once(fact.call, fact.code) : fails_for_ever(fact.call, fact.code));
                EXPECT_EQ(fact.operation.run(), told);
                EXPECT_EQ(disk.calls[Call::open_store], fact.tries);
                disk.mend();
                EXPECT_EQ(on_disk(), fact.operation.writes ? told : fact.operation.done);
            };
            begin();
            ASSERT_TRUE(alone([&] {
                fact.operation.prepare();
                EXPECT_TRUE(alone(attempts));
            }));
        }
    }
}

TEST_F(Retry, TheNextTryFollowsInASecond) {
    for (const Operation* operation : {&first_read, &later_read}) {
        begin();
        ASSERT_TRUE(alone([&] {
            operation->prepare();
            disk.become(fails_for_ever(Call::shm_lock, SQLITE_IOERR_SHMLOCK));
            EXPECT_EQ(operation->run(), operation->failed);
            EXPECT_EQ(disk.failures, 2);
            disk.become(nullptr);
            milliseconds += 999;
            EXPECT_EQ(operation->run(), operation->failed);
            EXPECT_EQ(disk.calls, (std::map<Call, int>{}));
            milliseconds += 1;
            EXPECT_EQ(operation->run(), operation->done);
            EXPECT_EQ(disk.calls[Call::open_store], 1) << "the file is examined anew";
        }));
    }
}

// A look at a store that others keep locked may take long: most of the time is left for answers.
TEST_F(Retry, TheNextTryFollowsInFourTimesWhatTheLastTook) {
    const struct {
        int failure, pause;  // what each of two failures takes, and what follows, in milliseconds
    } times[] = {{100, 1000}, {125, 1000}, {126, 1008}, {200, 1600}, {5000, 40000}};
    for (const auto& [failure, pause] : times) {
        SCOPED_TRACE(failure);
        begin();
        ASSERT_TRUE(alone([failure = failure, pause = pause] {
            change();
            disk.become([=](Call call, int) {
                if (call != Call::shm_lock) return SQLITE_OK;
                milliseconds += failure;
                return SQLITE_IOERR_SHMLOCK;
            });
            EXPECT_EQ(look(), "office");
            EXPECT_EQ(disk.failures, 2);
            disk.become(nullptr);
            milliseconds += pause - 1;
            EXPECT_EQ(look(), "office");
            EXPECT_EQ(disk.calls, (std::map<Call, int>{}));
            milliseconds += 1;
            EXPECT_EQ(ssid(), "home") << "by a single value too";
        }));
    }
}

// Gives up the rights with which root writes into files that nobody may write.
void become_owner(const fs::path& directory) {
    if (getuid() != 0) return;
    for (const auto& file : fs::directory_iterator(directory))
        ASSERT_EQ(chown(file.path().c_str(), nobody, nobody), 0);
    ASSERT_EQ(chown(directory.c_str(), nobody, nobody), 0);
    ASSERT_TRUE(setgid(nobody) == 0 && setuid(nobody) == 0);
}

// A reader that may not write the log's index, while another process stands STILL in the middle of recovering the log.
// That one goes on before the second attempt, or only when both are over.
void read_beside_recovery(bool (*still)(Call call), bool in_time) {
    const pid_t writer = start([&] {
        disk.become([still, stood = false](Call call, int) mutable {
            if (!stood && still(call)) stood = raise(SIGSTOP) == 0;
            return SQLITE_OK;
        });
        return write_home() == "home" ? 0 : 1;
    });
    waitpid(writer, nullptr, WUNTRACED);
    bool stands = true;
    const auto go_on = [&] {
        EXPECT_TRUE(!std::exchange(stands, false) || (kill(writer, SIGCONT) == 0 && finish(writer) == 0));
    };
    EXPECT_EQ(chmod((cfql::store_path() + std::string("-shm")).c_str(), 0400), 0);
    disk.become([&](Call call, int nth) {
        if (in_time && call == Call::open_store && nth == 2) go_on();
        return SQLITE_OK;
    });
    EXPECT_EQ(ssid(), in_time ? Ssid("home") : std::nullopt);
    EXPECT_EQ(disk.calls[Call::open_store], 2);
    go_on();
    milliseconds += 4 * 2 * 250;  // two waits for a lock, 200 ms and a little more
    EXPECT_EQ(look(), "home");
}

// SQLite says READONLY_RECOVERY before the other process has taken the locks for it, afterwards BUSY_RECOVERY.
TEST_F(Retry, ARecoveryByAnotherProcessIsWaitedFor) {
    const auto before = [](Call call) { return call == Call::shm_lock; };
    const auto amid = [](Call call) { return call == Call::read && disk.calls[Call::shm_lock] == 2; };
    for (bool (*still)(Call call) : {+before, +amid}) {
        for (const bool in_time : {true, false}) {
            SCOPED_TRACE(testing::Message() << (still == +before ? "before" : "amid") << ", in time " << in_time);
            begin();
            ASSERT_TRUE(alone([&] {
                become_owner(place.directory());
                read_beside_recovery(still, in_time);
            }));
        }
    }
}

struct Failure {
    const char* name;
    Call call;
    int code;
};
const Failure failures[] = {
    {"open the store", Call::open_store, SQLITE_IOERR},
    {"open the log", Call::open, SQLITE_IOERR},
    {"access", Call::access, SQLITE_IOERR_ACCESS},
    {"remove", Call::remove, SQLITE_IOERR_DELETE},
    {"read", Call::read, SQLITE_IOERR_READ},
    {"write", Call::write, SQLITE_IOERR_WRITE},
    {"truncate", Call::truncate, SQLITE_IOERR_TRUNCATE},
    {"sync", Call::sync, SQLITE_IOERR_FSYNC},
    {"size", Call::size, SQLITE_IOERR_FSTAT},
    {"lock", Call::lock, SQLITE_IOERR_LOCK},
    {"map the index", Call::shm_map, SQLITE_IOERR_SHMMAP},
    {"lock the index", Call::shm_lock, SQLITE_IOERR_SHMLOCK},
};

enum Outcome { good, bad, not_reached };

// The NTH call of a kind fails. A failure that passes is not noticed. One that stays is told of and changes nothing,
// unless the disk refuses to make a write stable: then nobody can say what is there. Afterwards all is well.
Outcome outcome(const Operation& operation, const Failure& failure, int nth, bool passes) {
    operation.prepare();
    disk.become(passes ? fails_once(failure.call, failure.code, nth) : fails_for_ever(failure.call, failure.code, nth));
    const Ssid told = operation.run();
    disk.mend();
    const Ssid found = on_disk();
    EXPECT_TRUE(told == operation.done || (!passes && told == operation.failed)) << told.value_or("nothing");
    const bool stable = !operation.writes || told == operation.done || failure.call != Call::sync;
    EXPECT_TRUE(found == (operation.writes ? told : operation.done) || (!stable && found == operation.done))
        << found.value_or("nothing");
    milliseconds += 1000;
    EXPECT_EQ(look(), found);
    EXPECT_EQ(write_home(), "home");
    if (testing::Test::HasFailure()) return bad;
    return disk.failures > 0 ? good : not_reached;
}

TEST_F(Retry, WhicheverCallFails) {
    for (const char* journal : {"WAL", "TRUNCATE"}) {
        make_for(journal);
        for (const Operation* operation : {&first_read, &later_read, &first_write, &later_write}) {
            for (const Failure& failure : failures) {
                for (const bool passes : {true, false}) {
                    int result = good;
                    for (int nth = 1; result == good; ++nth) {
                        SCOPED_TRACE(testing::Message() << journal << ", " << operation->name << ", " << failure.name
                                                        << " number " << nth << ", passes " << passes);
                        begin();
                        result = in_child([&] { return outcome(*operation, failure, nth, passes); });
                        ASSERT_TRUE(result == good || result == not_reached) << result;
                        ASSERT_LT(nth, 1000);
                    }
                }
            }
        }
    }
}

}  // namespace
