// The collector's part of a real store.
#include "writer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "place.h"

namespace {

using namespace collector;
using cfql::Status;
using Lines = std::vector<std::string>;

Values ours(Values values) {
    values.emplace("origin", "cfql-collector");
    return values;
}

struct WriterTest : testing::Test {
    std::size_t write(const Contents& wanted) {
        const Writer::Result result = writer.write(wanted);
        EXPECT_EQ(result.status, Status::ok) << cfql::describe(result.status);
        return result.changes;
    }

    Place place;
    Writer writer{place.store};
    const Contents one = {{{"interface", "w"}, ours({{"ssid", "a"}, {"mac", "b"}})}};
};

TEST_F(WriterTest, MakesTheStore) {
    EXPECT_EQ(writer.load().status, Status::ok);
    EXPECT_EQ(write(one), 3U);
    EXPECT_EQ(place.lines(), Lines{"interface w: mac=b origin=cfql-collector ssid=a"});
    struct stat status = {};
    stat(place.store.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(WriterTest, WritesTheDifference) {
    write(one);
    EXPECT_EQ(write({{{"interface", "w"}, ours({{"ssid", "A"}, {"new", "x"}})}, {{"bss", "w"}, ours({})}}), 4U);
    EXPECT_EQ(place.lines(),
              (Lines{"interface w: new=x origin=cfql-collector ssid=A", "bss w: origin=cfql-collector"}));
    EXPECT_EQ(write({{{"bss", "w"}, ours({})}}), 1U);
    EXPECT_EQ(place.lines(), (Lines{"bss w: origin=cfql-collector"}));
}

TEST_F(WriterTest, NoTransactionWithoutADifference) {
    write(one);
    struct stat before = {}, after = {};
    stat(place.store.c_str(), &before);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(write(one), 0U);
    stat(place.store.c_str(), &after);
    EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
    EXPECT_EQ(before.st_mtim.tv_sec, after.st_mtim.tv_sec);
}

TEST_F(WriterTest, TakesUpWhatAnEarlierRunLeft) {
    write(one);
    Writer next(place.store);
    ASSERT_EQ(next.load().status, Status::ok);
    EXPECT_EQ(next.held(), one);
    EXPECT_EQ(next.write({}).changes, 1U);
    EXPECT_EQ(place.lines(), Lines{});
}

TEST_F(WriterTest, ObjectsOfOthersStay) {
    place.make();
    place.set("interface", "w", "ssid", "theirs");
    place.set("interface", "other", "ssid", "x");
    EXPECT_EQ(write(one), 0U);
    EXPECT_EQ(writer.others(), (std::set<ObjectName>{{"interface", "w"}}));
    EXPECT_EQ(place.lines(), (Lines{"interface w: ssid=theirs", "interface other: ssid=x"}));
    place.unset("interface", "w", "ssid");
    write(one);
    EXPECT_EQ(writer.others().size(), 1U);  // still an object, and not the collector's
    EXPECT_EQ(write({}), 0U);
}

TEST_F(WriterTest, AnObjectThatSomebodyTookOverIsTheirs) {
    write(one);
    place.unset("interface", "w", "origin");
    EXPECT_EQ(write({{{"interface", "w"}, ours({{"ssid", "new"}})}}), 0U);
    EXPECT_EQ(place.get("interface", "w", "ssid"), "a");
}

TEST_F(WriterTest, WhatOthersChangeInOursIsChangedBack) {
    write(one);
    place.set("interface", "w", "ssid", "longer than before");
    place.set("interface", "w", "more", "x");
    EXPECT_EQ(write(one), 2U);
    EXPECT_EQ(place.lines(), Lines{"interface w: mac=b origin=cfql-collector ssid=a"});
}

TEST_F(WriterTest, AnObjectOfOthersBehindOursWins) {
    write(one);
    place.insert("interface", "w");
    EXPECT_EQ(write(one), 1U);
    EXPECT_EQ(place.lines(), Lines{"interface w:"});
}

TEST_F(WriterTest, ARemovedStoreIsMadeAgain) {
    write(one);
    std::filesystem::remove(place.store);
    EXPECT_EQ(write(one), 3U);
    EXPECT_EQ(place.lines().size(), 1U);
}

TEST_F(WriterTest, WhatIsNoStoreStays) {
    std::filesystem::create_directory(place.store);
    EXPECT_NE(writer.load().status, Status::ok);
    EXPECT_NE(writer.write(one).status, Status::ok);
    EXPECT_TRUE(std::filesystem::is_directory(place.store));
}

const Contents country = {{{"system", ""}, {{"country", "DE"}, {"origin", "cfql-collector"}}}};

TEST_F(WriterTest, TheCountryWhereThereIsNone) {
    place.make();
    place.set("system", "", "contact", "x");
    EXPECT_EQ(write(country), 2U);
    EXPECT_EQ(place.lines(), Lines{"system : contact=x country=DE origin=cfql-collector"});
    EXPECT_EQ(write({{{"system", ""}, {{"country", "FR"}, {"origin", "cfql-collector"}}}}), 1U);
    EXPECT_EQ(place.get("system", "", "country"), "FR");
    write({});
    EXPECT_EQ(place.lines(), Lines{"system : contact=x"});
}

TEST_F(WriterTest, TheOperatorsCountryStays) {
    place.make();
    place.set("system", "", "country", "CH");
    EXPECT_EQ(write(country), 0U);
    EXPECT_EQ(writer.others(), (std::set<ObjectName>{{"system", ""}}));
    EXPECT_EQ(place.lines(), Lines{"system : country=CH"});
    EXPECT_EQ(write({}), 0U);
}

TEST_F(WriterTest, TheObjectOfTheCountryGoesWhenItHoldsNothingElse) {
    EXPECT_EQ(write(country), 2U);
    write({});
    EXPECT_EQ(place.lines(), Lines{});
}

TEST_F(WriterTest, PreviewChangesNothing) {
    write(one);
    const Contents wanted = {{{"interface", "w"}, ours({{"ssid", "\x1b[31m"}, {"wep-key-1", "FAKE1"}})},
                             {{"bss", "w"}, ours({})}};
    EXPECT_EQ(writer.preview(wanted),
              (Lines{"set\tbss\tw\torigin\tcfql-collector", "set\tinterface\tw\tssid\t\\x1b[31m",
                     "set\tinterface\tw\twep-key-1\t********", "unset\tinterface\tw\tmac"}));
    EXPECT_EQ(writer.preview({}), Lines{"unset\tinterface\tw\t"});
    EXPECT_EQ(place.lines(), Lines{"interface w: mac=b origin=cfql-collector ssid=a"});
}

// Somebody holds the store: nothing is written, and the next time all of it.
TEST_F(WriterTest, ALockedStoreWaitsForTheNextPass) {
    write(one);
    const Contents wanted = {{{"interface", "w"}, ours({{"ssid", "new"}})}};
    {
        cfql::Database other;
        ASSERT_EQ(other.open(place.store.c_str(), cfql::Access::write), Status::ok);
        ASSERT_EQ(other.begin_write(), Status::ok);
        EXPECT_EQ(writer.write(wanted).status, Status::busy);
    }
    EXPECT_EQ(place.get("interface", "w", "ssid"), "a");
    EXPECT_EQ(write(wanted), 2U);
}

}  // namespace
