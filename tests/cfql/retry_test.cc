// The library on a failing disk: a failed check or write is repeated once, at once, if that may help; and whatever
// fails, nobody gets values that never were.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <fstream>

#include "disk.h"
#include "fixture.h"
#include "log.h"

namespace {

using namespace store_test;
namespace fs = std::filesystem;

using Ssid = std::optional<std::string>;

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
    milliseconds += 1000;
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

// Runs `body` in a process that has not asked the library yet. Its failed expectations are printed there.
template <class Body>
bool alone(Body body) {
    return in_child([&] { return body(), testing::Test::HasFailure() ? 1 : 0; }) == 0;
}

// What another process finds. As a writer, which undoes what was left unfinished.
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
    Retry() {
        make(place.path(), {{"interface", "wlan0", "ssid", "office"}});
        fs::copy_file(place.path(), kept);
    }

    // The same store again.
    void begin() {
        fs::remove(place.path() + "-journal");
        fs::copy_file(kept, place.path(), fs::copy_options::overwrite_existing);
    }
    Place place;
    const std::string kept = place.directory() + "/kept";
};

TEST_F(Retry, WithoutAFailureTheStoreIsOpenedOnce) {
    EXPECT_TRUE(alone([] {
        disk.become(nullptr);
        EXPECT_EQ(ssid(), "office");
        EXPECT_EQ(disk.calls[Call::open_store], 1);
        disk.become(nullptr);
        EXPECT_EQ(look(), "office");
        EXPECT_EQ(disk.calls, (std::map<Call, int>{}));
        EXPECT_EQ(write_home(), "home");
        EXPECT_EQ(disk.calls[Call::open_store], 1);
        disk.become(nullptr);
        EXPECT_EQ(look(), "home");
        EXPECT_EQ(disk.calls[Call::open_store], 1);
    }));
}

TEST_F(Retry, AWriterExaminesTheTreesOnceAndAgainWhenAnotherHasWritten) {
    for (int i = 0; i < 40; ++i)
        put(place.path(), {{"interface", "zulu", "k" + std::to_string(i), std::string(500, 'a')}});
    EXPECT_TRUE(alone([&] {
        const auto readings = [] {
            disk.become(nullptr);
            EXPECT_EQ(write_home(), "home");
            return disk.calls[Call::read];
        };
        const int first = readings();
        EXPECT_LT(readings(), first / 2);
        EXPECT_LT(readings(), first / 2);
        put(place.path(), {{"interface", "zulu", "k0", "of another"}});
        EXPECT_GE(readings(), first);
    }));
}

const struct {
    const Operation& operation;
    Call call;
    int code;
    int tries;
} facts[] = {
    {first_read, Call::lock, SQLITE_IOERR_RDLOCK, 2},   {first_read, Call::open_store, SQLITE_IOERR, 2},
    {first_read, Call::read, SQLITE_IOERR_READ, 2},     {first_read, Call::lock, SQLITE_NOTADB, 1},
    {first_read, Call::open_store, SQLITE_CANTOPEN, 1}, {later_read, Call::lock, SQLITE_IOERR_RDLOCK, 2},
    {later_read, Call::read, SQLITE_IOERR_READ, 2},     {later_read, Call::lock, SQLITE_NOTADB, 1},
    {first_write, Call::lock, SQLITE_IOERR_LOCK, 2},    {first_write, Call::write, SQLITE_IOERR_WRITE, 2},
    {first_write, Call::write, SQLITE_FULL, 1},         {first_write, Call::lock, SQLITE_NOTADB, 1},
};

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
            disk.become(fails_for_ever(Call::lock, SQLITE_IOERR_RDLOCK));
            EXPECT_EQ(operation->run(), operation->failed);
            EXPECT_EQ(disk.failures, 2);
            disk.become(nullptr);
            milliseconds += 970;
            EXPECT_EQ(operation->run(), operation->failed);
            EXPECT_EQ(disk.calls, (std::map<Call, int>{}));
            milliseconds += 30;
            EXPECT_EQ(operation->run(), operation->done);
            EXPECT_EQ(disk.calls[Call::open_store], 1);
        }));
    }
}

// A load from a failing disk may take long: most of the time is left for answers.
TEST_F(Retry, TheNextTryFollowsInFourTimesWhatTheLastTook) {
    const struct {
        int failure, pause;  // what each of two failures takes, and what follows, in milliseconds
    } times[] = {{100, 1000}, {125, 1000}, {126, 1008}, {200, 1600}, {5000, 10000}};
    for (const auto& [failure, pause] : times) {
        SCOPED_TRACE(failure);
        begin();
        ASSERT_TRUE(alone([failure = failure, pause = pause] {
            change();
            disk.become([=](Call call, int) {
                if (call != Call::lock) return SQLITE_OK;
                milliseconds += failure;
                return SQLITE_IOERR_RDLOCK;
            });
            EXPECT_EQ(look(), "office");
            EXPECT_EQ(disk.failures, 2);
            disk.become(nullptr);
            milliseconds += pause - 60;
            EXPECT_EQ(look(), "office");
            EXPECT_EQ(disk.calls, (std::map<Call, int>{}));
            milliseconds += 60;
            EXPECT_EQ(ssid(), "home") << "by a single value too";
        }));
    }
}

struct Failure {
    const char* name;
    Call call;
    int code;
};
const Failure failures[] = {
    {"open the store", Call::open_store, SQLITE_IOERR},
    {"open the journal", Call::open, SQLITE_IOERR},
    {"access", Call::access, SQLITE_IOERR_ACCESS},
    {"remove", Call::remove, SQLITE_IOERR_DELETE},
    {"read", Call::read, SQLITE_IOERR_READ},
    {"write", Call::write, SQLITE_IOERR_WRITE},
    {"truncate", Call::truncate, SQLITE_IOERR_TRUNCATE},
    {"sync", Call::sync, SQLITE_IOERR_FSYNC},
    {"size", Call::size, SQLITE_IOERR_FSTAT},
    {"lock", Call::lock, SQLITE_IOERR_LOCK},
};

enum Outcome { good, bad, not_reached };

// The `nth` call of a kind fails. A failure that passes is not noticed. One that stays is told of and changes nothing,
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
    milliseconds += 2000;
    EXPECT_EQ(look(), found);
    EXPECT_EQ(write_home(), "home");
    if (testing::Test::HasFailure()) return bad;
    return disk.failures > 0 ? good : not_reached;
}

TEST_F(Retry, WhicheverCallFails) {
    for (const Operation* operation : {&first_read, &later_read, &first_write, &later_write}) {
        for (const Failure& failure : failures) {
            for (const bool passes : {true, false}) {
                int result = good;
                for (int nth = 1; result == good; ++nth) {
                    SCOPED_TRACE(testing::Message() << operation->name << ", " << failure.name << " number " << nth
                                                    << ", passes " << passes);
                    begin();
                    result = in_child([&] { return outcome(*operation, failure, nth, passes); });
                    ASSERT_TRUE(result == good || result == not_reached) << result;
                    ASSERT_LT(nth, 1000);
                }
            }
        }
    }
}

// A write that ends when its changes are in the store and the journal that undoes them is still there.
void interrupt_a_write() {
    EXPECT_EQ(in_child([] {
                  disk.become([](Call call, int) { return call == Call::truncate ? raise(SIGKILL) : SQLITE_OK; });
                  return write_home() == "home" ? 1 : 2;
              }),
              1000 + SIGKILL);
}

TEST_F(Retry, AnInterruptedWriteIsToldOfAndUndoneByAWriter) {
    EXPECT_TRUE(alone([] {
        EXPECT_EQ(look(), "office");
        interrupt_a_write();
        EXPECT_EQ(look(), "office");
        EXPECT_EQ(log_lines, std::vector<std::string>{
                                 "<27>cfqlquery: " + std::string(cfql::store_path()) +
                                 ": a write was interrupted; run cfql check as root; the last good contents stay in "
                                 "use"});
    }));
    EXPECT_TRUE(alone([] {
        EXPECT_EQ(look(), std::nullopt) << "a reader without contents";
        cfql::Database store;
        EXPECT_EQ(store.open(cfql::store_path(), cfql::Access::read), cfql::Status::interrupted);
        EXPECT_EQ(store.open(cfql::store_path(), cfql::Access::recover), cfql::Status::ok);
        store.close();
        milliseconds += 1000;
        EXPECT_EQ(look(), "office");
    }));
}

// Another process that holds the lock of a writer in the middle of its commit.
class Holder {
  public:
    Holder()
        : child_([](auto stop) {
              sqlite3* connection = nullptr;
              sqlite3_open(cfql::store_path(), &connection);
              sqlite3_exec(connection, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
              return stop() ? 0 : 1;
          }) {
        EXPECT_TRUE(child_.wait_for_stop());
    }
    ~Holder() {
        EXPECT_TRUE(child_.go_on());
        EXPECT_EQ(child_.finish(), 0);
    }

  private:
    SteppedChild child_;
};

TEST_F(Retry, AReaderWithContentsDoesNotWaitForAWriterOfEightSeconds) {
    EXPECT_TRUE(alone([] {
        change();
        {
            const Holder holder;
            const std::int64_t begin = milliseconds;
            for (int i = 1; i <= 80; ++i, milliseconds += 100) {
                ASSERT_EQ(look(), "office");
                ASSERT_EQ(milliseconds, begin + 100 * (i - 1)) << "it has waited";
            }
            EXPECT_EQ(log_lines, std::vector<std::string>());
        }
        EXPECT_EQ(look(), "home") << "by the next check";
    }));
}

TEST_F(Retry, AReaderWithOldContentsWaitsNowAndThen) {
    EXPECT_TRUE(alone([] {
        change();
        const Holder holder;
        const std::int64_t begin = milliseconds;
        for (int i = 0; i < 350; ++i, milliseconds += 100)
            ASSERT_EQ(look(), "office");
        const std::int64_t waited = milliseconds - begin - 350 * 100;
        EXPECT_GE(waited, 3 * 200);
        EXPECT_LE(waited, 3 * 201);
        EXPECT_EQ(log_lines.size(), 1U);
    }));
}

TEST_F(Retry, AReaderWithoutContentsWaitsOnceASecond) {
    EXPECT_TRUE(alone([] {
        const Holder holder;
        const std::int64_t begin = milliseconds;
        for (int i = 0; i < 1000; ++i, milliseconds += 10)
            ASSERT_EQ(i % 2 == 0 ? look() : ssid(), std::nullopt);
        const std::int64_t waited = milliseconds - begin - 1000 * 10;
        EXPECT_GE(waited, 8 * 200);
        EXPECT_LE(waited, (milliseconds - begin) / 1000 * 200) << "oftener than once a second";
        EXPECT_EQ(log_lines.size(), 1U);
    }));
}

// Loads that take so many ms each, of a store that changes before every check.
class Loads {
  public:
    explicit Loads(int each) {
        EXPECT_EQ(look(), "office");
        milliseconds += 20000;
        disk.become([=](Call call, int) {
            milliseconds += call == Call::open_store ? each : 0;
            return SQLITE_OK;
        });
    }
    static void check() {
        std::fstream(cfql::store_path(), std::ios::in | std::ios::out).seekp(24 + 3).put(static_cast<char>(++counter));
        look();
    }
    static int count() { return disk.calls[Call::open_store]; }

  private:
    static inline int counter = 0;
};

// One request may ask for as many grids, when no table has rows.
TEST_F(Retry, AThousandGridsAtOnceCostTwoLoadsAtMost) {
    for (const int each : {0, 1, 5, 20, 250, 5000}) {
        begin();
        EXPECT_TRUE(alone([each] {
            Loads loads(each);
            for (int i = 0; i < 1000; ++i)
                Loads::check();
            EXPECT_EQ(Loads::count(), each <= 250 ? 2 : 1) << each;
        }));
    }
}

// And once a second at most, after two at once.
TEST_F(Retry, LoadingTakesAFifthOfTheTime) {
    const struct {
        int each, period;  // what a load takes, and when the next follows, in milliseconds
    } times[] = {{0, 1000}, {1, 1001}, {20, 1020}, {250, 1250}, {300, 1500}, {2500, 12500}};
    for (const auto& [each, period] : times) {
        begin();
        EXPECT_TRUE(alone([each = each, period = period] {
            Loads loads(each);
            const std::int64_t end = milliseconds + 20 * period;
            for (; milliseconds < end; ++milliseconds)
                Loads::check();
            EXPECT_LE(Loads::count(), 22) << each;
            EXPECT_GE(Loads::count(), 20) << each;
        }));
    }
}

TEST_F(Retry, ThePauseAfterALoadIsTenSecondsAtMost) {
    EXPECT_TRUE(alone([] {
        Loads loads(60000);
        Loads::check();
        Loads::check();
        EXPECT_EQ(Loads::count(), 1);
        milliseconds += 10000;
        Loads::check();
        EXPECT_EQ(Loads::count(), 2);
    }));
}

}  // namespace
