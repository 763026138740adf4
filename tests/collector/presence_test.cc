// What the collector writes beside the store about its passes, and what the tool reads there.
#include "presence.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>

#include "clock.h"
#include "place.h"

namespace {

using cfql::tool::collector_file;
using cfql::tool::last_pass;
using cfql::tool::LastPass;
using collector::Presence;
using State = LastPass::State;

std::int64_t now() {
    return collector::now_ms() / 1000;
}

TEST(CollectorFile, IsBesideWhatTheLinkLeadsTo) {
    const Place place;
    const std::string link = place.directory + "/link.db";
    EXPECT_EQ(collector_file(place.store), place.store + ".collector");
    std::filesystem::create_symlink("store.db", link);
    EXPECT_EQ(collector_file(link), place.store + ".collector");
    std::filesystem::remove(link);
    std::filesystem::create_symlink(place.store, link);
    EXPECT_EQ(collector_file(link), place.store + ".collector");
    std::filesystem::remove(link);
    std::filesystem::create_symlink(link, link);  // ends all the same
    EXPECT_EQ(collector_file(link), link + ".collector");
    EXPECT_EQ(collector_file("plain"), "plain.collector");
}

TEST(LastPass, GoesThroughTheLifeOfACollector) {
    const Place place;
    EXPECT_EQ(last_pass(place.store).state, State::never);
    {
        Presence presence(place.store);
        ASSERT_EQ(presence.claim(), 0);
        LastPass pass = last_pass(place.store);
        EXPECT_EQ(pass.state, State::running);
        EXPECT_FALSE(pass.age);
        EXPECT_FALSE(pass.is_overdue());
        presence.stamp(now() - 7, 10);
        pass = last_pass(place.store);
        EXPECT_EQ(pass.state, State::running);
        ASSERT_TRUE(pass.age);
        EXPECT_GE(*pass.age, 7);
        EXPECT_EQ(pass.interval, 10);
        EXPECT_EQ(Presence(place.store).claim(), EWOULDBLOCK);
    }
    const LastPass pass = last_pass(place.store);
    EXPECT_EQ(pass.state, State::stopped);
    ASSERT_TRUE(pass.age);
    EXPECT_GE(*pass.age, 7);
    EXPECT_FALSE(pass.is_overdue());
    EXPECT_EQ(Presence(place.store).claim(), 0);
}

// Asking takes no lock: a collector that starts meanwhile finds none.
TEST(LastPass, KeepsNoCollectorFromStarting) {
    const Place place;
    ASSERT_EQ(Presence(place.store).claim(), 0);
    const int reader = open(collector_file(place.store).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(last_pass(place.store).state, State::stopped);
    EXPECT_EQ(Presence(place.store).claim(), 0);
    close(reader);
}

TEST(LastPass, IsOverdueAfterTwoIntervalsAndTenSeconds) {
    const struct {
        State state;
        std::optional<std::int64_t> age;
        std::int64_t interval;
        bool overdue;
    } cases[] = {
        {State::running, 30, 10, false},    {State::running, 31, 10, true},  {State::running, 7210, 3600, false},
        {State::running, 7211, 3600, true}, {State::running, {}, 10, false}, {State::stopped, 9999, 10, false},
    };
    for (const auto& expected : cases) {
        const LastPass pass = {expected.state, expected.age, expected.interval, 0};
        EXPECT_EQ(pass.is_overdue(), expected.overdue) << expected.age.value_or(-1);
    }
}

TEST(LastPass, HasNoAgeFromBeforeTheMachineStarted) {
    const Place place;
    Presence presence(place.store);
    ASSERT_EQ(presence.claim(), 0);
    presence.stamp(now() + 1000, 10);
    const LastPass pass = last_pass(place.store);
    EXPECT_EQ(pass.state, State::running);
    EXPECT_FALSE(pass.age);
    EXPECT_EQ(pass.interval, 10);
}

TEST(LastPass, TakesNothingButACollectorsLine) {
    const char* const texts[] = {
        "x",
        "00000000000000000007 00010",
        "00000000000000000007 00010\nmore",
        "00000000000000000007-00010\n",
        "-0000000000000000007 00010\n",
        "99999999999999999999 00010\n",
        "0000000000000000000x 00010\n",
        "00000000000000000007 0001x\n",
        "00000000000000000007 -0010\n",
    };
    const Place place;
    for (const char* const text : texts) {
        std::ofstream(collector_file(place.store), std::ios::trunc) << text;
        const LastPass pass = last_pass(place.store);
        EXPECT_EQ(pass.state, State::unknown) << text;
        EXPECT_EQ(pass.error, EBADMSG) << text;
    }
}

TEST(LastPass, OtherThingsInItsPlaceHangNobody) {
    const Place place;
    const std::string path = collector_file(place.store);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(last_pass(place.store).error, EBADMSG);
    EXPECT_EQ(Presence(place.store).claim(), EINVAL);
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(last_pass(place.store).error, EBADMSG);
    std::filesystem::remove(path);
    std::filesystem::create_symlink("/dev/zero", path);
    EXPECT_EQ(last_pass(place.store).error, ELOOP);
    EXPECT_EQ(Presence(place.store).claim(), ELOOP);
}

}  // namespace
