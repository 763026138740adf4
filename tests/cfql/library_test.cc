// What the four calls answer.
#include <gtest/gtest.h>
#include <string.h>

#include <atomic>
#include <fstream>

#include "fixture.h"

namespace {

using namespace store_test;
using namespace std::string_literals;

const std::vector<Value> contents = {
    {"interface", "wlan0", "type", "service-set"},
    {"interface", "wlan0", "ssid", "office"},
    {"interface", "eth0", "type", "wired"},
    {"interface", "wlan1", "type", "service-set"},
    {"interface", "wlan1", "bss", "b1"},
    {"interface", "wlan1", "empty", ""},
    {"system", "", "model", "ap-3"},
    {"bss", "b1", "ssid", "guest"},
};

class Library : public testing::Test {
  protected:
    Library() { make(place.path(), contents); }
    Place place;
};

TEST_F(Library, AValueIsAListOfOneNode) {
    cfqlquery_node* const list = cfqlquery_get_pv("interface", "wlan0", "ssid");
    ASSERT_NE(list, nullptr);
    EXPECT_STREQ(list->name, "ssid");
    EXPECT_STREQ(list->value, "office");
    EXPECT_EQ(list->next, nullptr);
    EXPECT_EQ(list->reserved, 0U);
    cfqlquery_destroy_pv(list);
}

TEST_F(Library, ValuesAreFoundByTableObjectAndKey) {
    const std::string longest(255, 'x');
    const std::string longer(256, 'x');
    const struct {
        const char *table, *object, *key;
        std::optional<std::string> value;
    } facts[] = {
        {"interface", "wlan0", "ssid", "office"},
        {"interface", "wlan1", "empty", ""},
        {"bss", "b1", "ssid", "guest"},
        {"system", nullptr, "model", "ap-3"},
        {"system", "", "model", "ap-3"},
        {"system", "x", "model", {}},
        {"interface", "wlan0", "bss", {}},
        {"interface", "wlan0", "ssi", {}},
        {"interface", "wlan0", "ssidx", {}},
        {"interface", "wlan0", "SSID", {}},
        {"interface", "wlan2", "ssid", {}},
        {"interface", "", "ssid", {}},
        {"interface", nullptr, "ssid", {}},
        {"bss", "wlan0", "ssid", {}},
        {"", "wlan0", "ssid", {}},
        {nullptr, "wlan0", "ssid", {}},
        {"interface", "wlan0", "", {}},
        {"interface", "wlan0", nullptr, {}},
        {"interface", "wlan0", "name", {}},
        {longest.c_str(), longest.c_str(), longest.c_str(), {}},
        {longer.c_str(), longer.c_str(), longer.c_str(), {}},
    };
    for (const auto& fact : facts) {
        SCOPED_TRACE(testing::Message() << fact.table << " " << fact.object << " " << fact.key);
        EXPECT_EQ(get(fact.table, fact.object, fact.key), fact.value);
    }
}

cfqlquery_node pair(const char* name, const char* value, cfqlquery_node* next = nullptr) {
    return {name, value, next, 0};
}

TEST_F(Library, AGridHasTheNameOfEachRowAndTheFilterInOrderOfInsertion) {
    cfqlquery_node ssid = pair("ssid", "office");
    const cfqlquery_node type = pair("type", "service-set");
    const cfqlquery_node both = pair("type", "service-set", &ssid);
    const cfqlquery_node other = pair("type", "service-se");
    const cfqlquery_node unnamed = pair(nullptr, "service-set");
    const cfqlquery_node without = pair("type", nullptr);
    const cfqlquery_node name = pair("name", "wlan0");
    const cfqlquery_node empty = pair("empty", "");
    const struct {
        const char* what;
        const char* table;
        const cfqlquery_node* filter;
        Pairs rows;
    } facts[] = {
        {"all", "interface", nullptr, {{"name", "wlan0"}, {"name", "eth0"}, {"name", "wlan1"}}},
        {"one pair",
         "interface",
         &type,
         {{"name", "wlan0"}, {"type", "service-set"}, {"name", "wlan1"}, {"type", "service-set"}}},
        {"two pairs", "interface", &both, {{"name", "wlan0"}, {"type", "service-set"}, {"ssid", "office"}}},
        {"an empty value", "interface", &empty, {{"name", "wlan1"}, {"empty", ""}}},
        {"no such value", "interface", &other, {}},
        {"a null name", "interface", &unnamed, {}},
        {"a null value", "interface", &without, {}},
        {"a name is no attribute", "interface", &name, {}},
        {"a singleton", "system", nullptr, {{"name", ""}}},
        {"no such table", "radio", nullptr, {}},
        {"no table", nullptr, nullptr, {}},
        {"empty table", "", nullptr, {}},
    };
    for (const auto& fact : facts) {
        SCOPED_TRACE(fact.what);
        for (const int count : {1, 0, -1, 1000})
            EXPECT_EQ(grid(fact.table, fact.filter, count), fact.rows) << count;
    }
}

TEST_F(Library, ObjectsOfOneNameAreRowsOfTheirOwnAndTheFirstIsMeant) {
    {
        cfql::Database store;
        std::int64_t id = 0;
        require(store.open(place.path().c_str(), cfql::Access::write));
        require(store.begin_write());
        for (const char* rate : {"2", "4", "2"})
            require(store.insert_object("supported-rate", rate, id));
        require(store.set_attribute(id, "supported-rate", "2", "only-of-the-last", "1"));
        require(store.commit());
    }
    EXPECT_EQ(grid("supported-rate"), (Pairs{{"name", "2"}, {"name", "4"}, {"name", "2"}}));
    EXPECT_EQ(get("supported-rate", "2", "only-of-the-last"), std::nullopt);
    EXPECT_EQ(set("supported-rate", "2", "mark", "first"), 1);
    EXPECT_EQ(get("supported-rate", "2", "mark"), "first");
    const cfqlquery_node filter = pair("only-of-the-last", "1");
    EXPECT_EQ(grid("supported-rate", &filter), (Pairs{{"name", "2"}, {"only-of-the-last", "1"}}));
}

TEST_F(Library, AWriteMakesTheObjectReplacesTheValueAndIsThereForOthers) {
    EXPECT_EQ(set("interface", "wlan9", "ssid", "new"), 1);
    EXPECT_EQ(get("interface", "wlan9", "ssid"), "new");
    EXPECT_EQ(set("interface", "wlan9", "ssid", "newer"), 1);
    EXPECT_EQ(get("interface", "wlan9", "ssid"), "newer");
    EXPECT_EQ(set("system", nullptr, "model", "ap-4"), 1);
    EXPECT_EQ(set("system", "", "serial", "1"), 1);
    EXPECT_EQ(grid("interface").back(), std::make_pair("name"s, "wlan9"s));
    EXPECT_EQ(grid("system").size(), 1U);
    EXPECT_EQ(in_child([] { return get("interface", "wlan9", "ssid") == "newer" ? 0 : 1; }), 0);
}

TEST_F(Library, OctetsAreKeptAsTheyAre) {
    const std::string octets = "\xc3\x28\xff\x01 \n\"'";
    EXPECT_EQ(set(octets.c_str(), octets.c_str(), octets.c_str(), octets.c_str()), 1);
    EXPECT_EQ(get(octets.c_str(), octets.c_str(), octets.c_str()), octets);
    EXPECT_EQ(grid(octets.c_str()), (Pairs{{"name", octets}}));
}

TEST_F(Library, TextsAreAllowedUpToTheirLimits) {
    const std::string text(255, 't');
    const std::string value(4096, 'v');
    EXPECT_EQ(set(text.c_str(), text.c_str(), text.c_str(), value.c_str()), 1);
    EXPECT_EQ(get(text.c_str(), text.c_str(), text.c_str()), value);
    EXPECT_EQ(set("interface", "wlan0", "ssid", ""), 1);
    EXPECT_EQ(get("interface", "wlan0", "ssid"), "");
}

TEST_F(Library, WhatBreaksALimitIsRefusedAndChangesNothing) {
    const std::string long_text(256, 't');
    const std::string long_value(4097, 'v');
    const struct {
        const char *what, *table, *object, *key, *value;
    } facts[] = {
        {"empty table", "", "wlan0", "k", "v"},
        {"null table", nullptr, "wlan0", "k", "v"},
        {"empty object", "interface", "", "k", "v"},
        {"null object", "interface", nullptr, "k", "v"},
        {"named singleton", "system", "x", "k", "v"},
        {"empty key", "interface", "wlan0", "", "v"},
        {"null key", "interface", "wlan0", nullptr, "v"},
        {"name as key", "interface", "wlan0", "name", "v"},
        {"null value", "interface", "wlan0", "k", nullptr},
        {"long table", long_text.c_str(), "wlan0", "k", "v"},
        {"long object", "interface", long_text.c_str(), "k", "v"},
        {"long key", "interface", "wlan0", long_text.c_str(), "v"},
        {"long value", "interface", "wlan0", "k", long_value.c_str()},
    };
    const Pairs before = grid("interface");
    for (const auto& fact : facts) {
        EXPECT_EQ(set(fact.table, fact.object, fact.key, fact.value), 0) << fact.what;
        EXPECT_EQ(grid("interface"), before) << fact.what;
        EXPECT_EQ(get(fact.table, fact.object, fact.key), std::nullopt) << fact.what;
    }
    EXPECT_EQ(cfqlquery_set_pv("interface", "wlan0", nullptr, 0), 0);
}

TEST_F(Library, AWrongChecksumMakesThatOneValueAbsent) {
    sql(place.path(), "UPDATE attribute SET value = CAST('officf' AS BLOB) WHERE value = CAST('office' AS BLOB)");
    EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
    EXPECT_EQ(get("interface", "wlan0", "type"), "service-set");
    EXPECT_EQ(grid("interface").size(), 3U);
    const cfqlquery_node filter = pair("ssid", "officf");
    EXPECT_EQ(grid("interface", &filter), Pairs());
}

TEST_F(Library, AWrongChecksumOfAnObjectMakesItAbsent) {
    sql(place.path(), "UPDATE object SET name = CAST('wlan7' AS BLOB) WHERE name = CAST('wlan0' AS BLOB)");
    EXPECT_EQ(grid("interface"), (Pairs{{"name", "eth0"}, {"name", "wlan1"}}));
    EXPECT_EQ(get("interface", "wlan7", "ssid"), std::nullopt);
    EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
}

TEST_F(Library, ARowOfAnotherTypeIsAbsent) {
    sql(place.path(), "UPDATE attribute SET value = 'office' WHERE value = CAST('office' AS BLOB)");
    EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
}

TEST_F(Library, AnotherProcessIsSeenByAGridUnlessLoadingTakesLong) {
    EXPECT_EQ(get("interface", "wlan0", "ssid"), "office");
    for (int i = 0; i < 20; ++i) {
        const std::string value = "round-" + std::to_string(i);
        ASSERT_EQ(in_child([&] { return set("interface", "wlan0", "ssid", value.c_str()) == 1 ? 0 : 1; }), 0);
        const cfqlquery_node filter = pair("ssid", value.c_str());
        EXPECT_TRUE(eventually([&] { return grid("interface", &filter).size() == 2U; }));
        EXPECT_EQ(get("interface", "wlan0", "ssid"), value);
    }
}

TEST_F(Library, AnotherProcessIsSeenSoonWithoutAGrid) {
    EXPECT_EQ(get("interface", "wlan0", "ssid"), "office");
    put(place.path(), {{"interface", "wlan0", "ssid", "changed"}});
    EXPECT_TRUE(eventually([] { return get("interface", "wlan0", "ssid") == "changed"; }, std::chrono::seconds(20)));
}

TEST_F(Library, ThreadsReadAndWriteAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> failures = 0;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &failures] {
            const std::string object = "thread-" + std::to_string(t);
            for (int i = 0; i < 50; ++i) {
                const std::string value = std::to_string(i);
                if (set("thread", object.c_str(), "n", value.c_str()) != 1) ++failures;
                if (get("thread", object.c_str(), "n") != value) ++failures;
                if (grid("interface").size() != 3) ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
}

TEST(Header, AProgramInCUsesIt) {
    const Place place;
    make(place.path());
    EXPECT_EQ(in_child([] { return execl(HEADER_TEST, HEADER_TEST, nullptr); }), 0);
}

TEST(Absent, EverythingIsNullWhereThereIsNoStore) {
    const Place place;
    EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
    EXPECT_EQ(grid("interface"), Pairs());
    EXPECT_EQ(set("interface", "wlan0", "ssid", "x"), 0);
    EXPECT_FALSE(std::filesystem::exists(place.path()));
    make(place.path(), contents);
    EXPECT_EQ(grid("interface").size(), 3U);
    EXPECT_EQ(get("interface", "wlan0", "ssid"), "office");
}

}  // namespace
