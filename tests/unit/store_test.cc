// The module's access to the configuration store: answers, the enumeration of the interfaces, writes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

#include <cstring>

#include "backend/lookup.h"
#include "backend/smt/wep_default_keys.h"
#include "scripted.h"
#include "store/answer.h"
#include "store/interfaces.h"
#include "store/write.h"

using namespace dot11;

namespace {

constexpr char secret[] = "SECRET";
int freed_secrets;  // blocks that were freed with the secret in them

}  // namespace

extern "C" {
void __real_free(void* block);
void __wrap_free(void* block) {
    if (block && malloc_usable_size(block) >= sizeof secret && memcmp(block, secret, sizeof secret) == 0)
        ++freed_secrets;
    __real_free(block);
}
}

namespace {

using Nodes = std::vector<ScriptedDevice::Pair>;
using testing::ElementsAre;

// A list of the test's own, as the store would answer it.
class List {
  public:
    explicit List(Nodes pairs) : pairs_(std::move(pairs)), nodes_(pairs_.size()) {
        for (size_t i = 0; i < pairs_.size(); ++i) {
            const auto& [name, value] = pairs_[i];
            cfqlquery_node* next = i + 1 < nodes_.size() ? &nodes_[i + 1] : nullptr;
            nodes_[i] = {name ? name->c_str() : nullptr, value ? value->c_str() : nullptr, next, 0};
        }
    }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    const cfqlquery_node* head() const { return nodes_.empty() ? nullptr : nodes_.data(); }

  private:
    Nodes pairs_;
    std::vector<cfqlquery_node> nodes_;
};

constexpr StoreKey key = {"table", "key"};

TEST(FindValue, LooksAtTheFirstNodeOnly) {
    const struct {
        Nodes nodes;
        const char* text;  // null: not found
        uint32_t length;   // of a scratch whose length was 9
    } facts[] = {
        {{}, nullptr, 9},
        {{{"key", "value"}}, "value", 5},
        {{{"key", "value"}, {"key", "other"}}, "value", 5},
        {{{"other", "value"}, {"key", "value"}}, nullptr, 0},
        {{{"KEY", "value"}}, nullptr, 0},
        {{{"key2", "value"}}, nullptr, 0},
        {{{"", "value"}}, nullptr, 0},
        {{{std::nullopt, "value"}}, nullptr, 0},
        {{{"key", ""}}, nullptr, 0},
        {{{"key", std::nullopt}}, nullptr, 0},
    };
    for (const auto& fact : facts) {
        ScratchText scratch = {nullptr, 9};
        EXPECT_EQ(find_value(List(fact.nodes).head(), key, scratch), fact.text != nullptr);
        EXPECT_STREQ(scratch.text, fact.text) << testing::PrintToString(fact.nodes);
        EXPECT_EQ(scratch.length, fact.length) << testing::PrintToString(fact.nodes);
        release(scratch);
    }
}

TEST(FindValue, HasNoValueWithoutMemory) {
    ScriptedDevice device;
    device.fail_allocation(1);
    ScratchText scratch = {nullptr, 9};
    EXPECT_FALSE(find_value(List(Nodes{{"key", "value"}}).head(), key, scratch));
    EXPECT_TRUE(device.allocation_failed());
    EXPECT_EQ(scratch.text, nullptr);
    EXPECT_EQ(scratch.length, 0U);
}

TEST(FindValue, OfAnyKeyTakesTheFirstNodeOfEach) {
    const StoreKey keys[] = {{"table", "one"}, {"table", "two"}};
    ScratchText scratch = {};
    EXPECT_TRUE(find_value_of_any(List(Nodes{{"one", "1"}}).head(), keys, scratch));
    EXPECT_STREQ(scratch.text, "1");
    EXPECT_TRUE(find_value_of_any(List(Nodes{{"two", "2"}, {"one", "1"}}).head(), keys, scratch));
    EXPECT_STREQ(scratch.text, "2");
    EXPECT_FALSE(find_value_of_any(List(Nodes{{"three", "3"}, {"one", "1"}}).head(), keys, scratch));
    EXPECT_FALSE(find_value_of_any(nullptr, keys, scratch));
    EXPECT_EQ(scratch.text, nullptr);
}

// Once found, a value is found again through an answer with another key, until it is released or replaced.
TEST(FindValue, OrTheLastOneFound) {
    const List found(Nodes{{"key", "value"}});
    const List other(Nodes{{"other", "1"}});
    const List empty(Nodes{{"key", ""}});
    ScratchText scratch = {};
    EXPECT_FALSE(find_value_or_last(other.head(), key, scratch));
    EXPECT_TRUE(find_value_or_last(found.head(), key, scratch));
    EXPECT_TRUE(find_value_or_last(other.head(), key, scratch));
    EXPECT_STREQ(scratch.text, "value");
    EXPECT_FALSE(find_value_or_last(nullptr, key, scratch));
    EXPECT_TRUE(find_value_or_last(other.head(), key, scratch));
    release(scratch);
    EXPECT_EQ(scratch.length, 5U);
    EXPECT_FALSE(find_value_or_last(other.head(), key, scratch)) << "a released text is not found";
    EXPECT_TRUE(find_value_or_last(found.head(), key, scratch));
    EXPECT_FALSE(find_value_or_last(empty.head(), key, scratch));
    EXPECT_EQ(scratch.text, nullptr);
}

TEST(Copies, AreWipedBeforeTheyAreFreed) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    freed_secrets = 0;
    const List list(Nodes{{"key", secret}});
    ScratchText scratch = {};
    ASSERT_TRUE(find_value(list.head(), key, scratch));
    ASSERT_TRUE(find_value(list.head(), key, scratch)) << "replaces the copy";
    release(scratch);
    release(scratch);
    EXPECT_EQ(scratch.text, nullptr);
    EXPECT_EQ(setTableData("interface", "wlan0", "wep-key-1", secret), 0);
    const WEPDefaultKeysRow row = {3, 1, {}, 0};
    EXPECT_EQ(SetWEPDefaultKeysTableData(&row, secret, sizeof secret - 1), 0);
    device.fail_allocation(4);  // setTableData's first
    EXPECT_EQ(SetWEPDefaultKeysTableData(&row, secret, sizeof secret - 1), 0);
    EXPECT_TRUE(device.allocation_failed());
    EXPECT_EQ(freed_secrets, 0);
}

class Enumeration : public testing::Test {
  protected:
    Enumeration() {
        memset(iface_tags, 0, sizeof iface_tags);
        device.interfaces = {{"wlan0", 3}, {"wlan10", 10}, {"eth0", 2}, {"", 7}, {"ath00", 5}};
    }

    std::vector<std::string> names(int32_t counter) {
        std::vector<std::string> found;
        for (int32_t i = 0; i < counter; ++i)
            found.emplace_back(iface_tags[i]);
        return found;
    }

    ScriptedDevice device;
};

TEST_F(Enumeration, TakesNamesOfInterfacesThatAreThere) {
    device.answer_grid("interface", {
                                        {"name", "wlan0"},
                                        {"type", "service-set"},
                                        {"name", "wlan10"},      // longer than five characters
                                        {"name", "wlan9"},       // not there
                                        {"names", "ath00"},      //
                                        {std::nullopt, "eth0"},  //
                                        {"name", std::nullopt},  //
                                        {"name", "\xff\xff"},    //
                                        {"name", ""},            // empty, and there
                                        {"name", "eth0"},
                                        {"name", "eth0"},  // twice, as listed
                                        {"name", std::string(5000, 'x')},
                                        {"name", "ath00"},
                                    });
    int32_t counter = 77;
    EXPECT_EQ(enumerate_interfaces(counter), 1);
    EXPECT_EQ(counter, 5);
    EXPECT_THAT(names(counter), ElementsAre("wlan0", "", "eth0", "eth0", "ath00"));
    EXPECT_THAT(device.calls, ElementsAre("grid interface type=service-set"));
}

TEST_F(Enumeration, OverwritesTheNamesFromTheFirst) {
    device.answer_grid("interface", {{"name", "wlan0"}, {"name", "ath00"}});
    int32_t counter = 0;
    EXPECT_EQ(enumerate_interfaces(counter), 1);
    device.answer_grid("interface", {{"name", "eth0"}});
    EXPECT_EQ(enumerate_interfaces(counter), 1);
    EXPECT_EQ(counter, 1);
    EXPECT_THAT(names(2), ElementsAre("eth0", "ath00")) << "slots behind the count keep their names";
    device.answer_grid("interface", {});
    EXPECT_EQ(enumerate_interfaces(counter), 0);
    EXPECT_EQ(counter, 0);
}

TEST_F(Enumeration, StoresOneNameMoreThanItServes) {
    static_assert(sizeof iface_tags == 129 * 128 && sizeof iface_tags[0] == 128);
    for (const int32_t count : {127, 128, 129, 130, 1000}) {
        memset(iface_tags, 0, sizeof iface_tags);
        device.answer_grid("interface", Nodes(static_cast<size_t>(count), {"name", "wlan0"}));
        int32_t counter = 0;
        EXPECT_EQ(enumerate_interfaces(counter), count <= 128 ? 1 : 0) << count;
        EXPECT_EQ(counter, count < 129 ? count : 129);
        EXPECT_STREQ(iface_tags[128], count > 128 ? "wlan0" : "");
    }
}

TEST_F(Enumeration, AppendsAtTheCounter) {
    int32_t counter = 2;
    EXPECT_EQ(lcl_get_tags_pv(List(Nodes{{"name", "eth0"}, {"name", "wlan0"}}).head(), "any", &counter), nullptr);
    EXPECT_EQ(counter, 4);
    EXPECT_THAT(names(4), ElementsAre("", "", "eth0", "wlan0"));
    for (const int32_t outside : {-1, 129, INT32_MAX, INT32_MIN}) {
        counter = outside;
        EXPECT_EQ(lcl_get_tags_pv(List(Nodes{{"name", "eth0"}}).head(), "any", &counter), nullptr);
        EXPECT_EQ(counter, outside);
    }
    EXPECT_EQ(lcl_get_tags_pv(nullptr, nullptr, &counter), nullptr);
}

TEST_F(Enumeration, FillsNoMoreThanItsTablesHold) {
    const std::pair<int32_t, uint32_t> facts[] = {{0, 0}, {1, 1}, {127, 127}, {128, 128}, {129, 128}};
    for (const auto& [counter, filled] : facts)
        EXPECT_EQ(names_to_fill(counter), filled) << counter;
}

TEST(SetTableData, TurnsTheStoresStatusRound) {
    const std::pair<int32_t, int32_t> facts[] = {{1, 0}, {0, 1}, {2, 1}, {-1, 1}, {INT32_MIN, 1}};
    for (const auto& [status, result] : facts) {
        ScriptedDevice device;
        device.set_status = status;
        EXPECT_EQ(setTableData("bss", "b0", "dtim-period", "3"), result) << status;
        EXPECT_EQ(setTableData("system", nullptr, "country", ""), result) << status;
        EXPECT_THAT(device.calls, ElementsAre("set bss b0 dtim-period=3", "set system - country="));
    }
}

TEST(SetTableData, SaysZeroWithoutMemoryAndWritesNothing) {
    for (const int failing : {1, 2}) {
        ScriptedDevice device;
        device.set_status = 0;
        device.fail_allocation(failing);
        EXPECT_EQ(setTableData("bss", "b0", "dtim-period", "3"), 0);
        EXPECT_TRUE(device.allocation_failed());
        EXPECT_THAT(device.calls, ElementsAre());
    }
}

// Fields of 4 octets between others: what does not fit is cut off, and nothing behind the field is touched.
TEST(TakeOctets, FillAFieldAndNoMore) {
    const struct {
        const char* text;
        uint32_t octets, length;  // how much a field of 4 holds of it, without and with a terminator
        const char *field, *terminated;
    } facts[] = {
        {"a", 1, 1, "a---", "a"},
        {"abc", 3, 3, "abc-", "abc"},
        {"abcd", 4, 3, "abcd", "abc"},
        {"abcdefgh", 4, 3, "abcd", "abc"},
    };
    for (const auto& fact : facts) {
        const List list(Nodes{{"key", fact.text}});
        ScratchText scratch = {};
        char field[] = "----+";
        ASSERT_TRUE(find_value(list.head(), key, scratch));
        EXPECT_EQ(move_octets(scratch, reinterpret_cast<uint8_t*>(field), 4), fact.octets) << fact.text;
        EXPECT_EQ(scratch.text, nullptr);
        EXPECT_EQ(std::string(field), fact.field + std::string("+"));

        ASSERT_TRUE(find_value(list.head(), key, scratch));
        EXPECT_EQ(move_text(scratch, field, 4), fact.length) << fact.text;
        EXPECT_EQ(scratch.text, nullptr);
        EXPECT_STREQ(field, fact.terminated);
        EXPECT_EQ(field[4], '+');
    }
}

}  // namespace
