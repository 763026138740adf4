// SETs that run out of memory, at each allocation that the module makes for them.
#include <gtest/gtest.h>

#include "agent/set_records.h"
#include "fixture.h"

using namespace dot11;

namespace {

const Value six_octets = text("\x11\x22\x33\x44\x55\x66");

struct Case {
    const char* what;
    std::vector<Varbind> varbinds;
};

const Oid beacon_period = name({1, 1, 1, 12, 3});
const Oid rate_set = name({1, 1, 1, 11, 3});
const Oid key_address = name({1, 4, 1, 2, 3, 1});
const Oid key_on = name({1, 4, 1, 3, 3, 1});
const Oid key_value = name({1, 4, 1, 4, 3, 1});
const Oid key_status = name({1, 4, 1, 5, 3, 1});
const Oid group_address = name({2, 3, 1, 2, 3, 1});
const Oid group_status = name({2, 3, 1, 3, 3, 1});
const Oid erp_enabled = name({4, 14, 1, 2, 3});
const Oid slot_time = name({4, 14, 1, 5, 3});

const Case cases[] = {
    {"a key mapping's address", {{key_address, six_octets}}},
    {"a key mapping's switch", {{key_on, number(1)}}},
    {"a key mapping's value", {{key_value, text("12345")}}},
    {"a key mapping's status", {{key_status, number(6)}}},
    {"two columns of a key mapping", {{key_on, number(1)}, {key_value, text("12345")}}},
    {"four columns of a key mapping",
     {{key_address, six_octets}, {key_on, number(1)}, {key_value, text("12345")}, {key_status, number(6)}}},
    {"a group address", {{group_address, six_octets}}},
    {"a group address's status", {{group_status, number(4)}}},
    {"a group address whole", {{group_address, six_octets}, {group_status, number(4)}}},
    {"an ERP option", {{erp_enabled, number(1)}}},
    {"two ERP options", {{erp_enabled, number(1)}, {slot_time, number(2)}}},
    {"a rate set", {{rate_set, text("\x02\x04")}}},
    {"a rate set, a beacon period", {{rate_set, text("\x02")}, {beacon_period, number(100)}}},
    {"a rate set, a key mapping", {{rate_set, text("\x02")}, {key_on, number(1)}}},
    {"a key mapping, a rate set", {{key_on, number(1)}, {rate_set, text("\x02")}}},
    {"a key mapping, a group address, an ERP option",
     {{key_on, number(1)}, {group_status, number(4)}, {erp_enabled, number(1)}}},
    {"an ERP option, a group address, a key mapping",
     {{erp_enabled, number(1)}, {group_status, number(4)}, {key_on, number(1)}}},
    {"a beacon period", {{beacon_period, number(100)}}},
    {"a missing row's beacon period", {{name({1, 1, 1, 12, 9}), number(100)}}},
    {"a beacon period, a key mapping", {{beacon_period, number(100)}, {key_on, number(1)}}},
    {"a read-only column", {{name({2, 2, 1, 1, 3}), number(1)}}},
    {"a channel, a retry limit", {{name({4, 5, 1, 1, 3}), number(1)}, {name({2, 1, 1, 3, 3}), number(7)}}},
};

class Memory : public Model {
  protected:
    static std::optional<Pdu> set(const Case& tried) { return answer_to({set_request, 1, 0, 0, tried.varbinds}); }

    // Sets with the n-th allocation failing, for every n; with enough memory the answer is then what it was before.
    template <class Fail, class Check>
    static void fail_each(const Case& tried, Fail fail, Check check) {
        const std::optional<Pdu> before = set(tried);
        ASSERT_TRUE(before) << tried.what;
        int n = 1;
        for (bool failed = true; failed; ++n) {
            ASSERT_LT(n, 1000) << tried.what;
            fail(n);
            const std::optional<Pdu> answer = set(tried);
            failed = device_->allocation_failed();
            device_->fail_allocation(0);
            ASSERT_TRUE(answer) << tried.what << ", allocation " << n;
            if (failed) check(*answer, n);
        }
        EXPECT_GT(n, 4) << tried.what << ": too few allocations to be worth a test";
        EXPECT_EQ(set(tried)->status, before->status) << tried.what;
        EXPECT_EQ(set(tried)->index, before->index) << tried.what;
    }

    static ScriptedDevice& device() { return *device_; }
};

TEST_F(Memory, ASetWithoutOneOfItsAllocationsFails) {
    for (const Case& tried : cases)
        fail_each(
            tried, [](int n) { device().fail_allocation(n); },
            [&](const Pdu& answer, int n) { EXPECT_NE(answer.status, 0) << tried.what << ", allocation " << n; });
}

TEST_F(Memory, ASetWithoutAllThatFollowFails) {
    for (const Case& tried : cases)
        fail_each(
            tried, [](int n) { device().fail_allocations_from(n); },
            [&](const Pdu& answer, int n) { EXPECT_NE(answer.status, 0) << tried.what << ", from " << n; });
}

// The tables are read during the SET: a field or a table may be lost, which a SET of no data does not notice.
TEST_F(Memory, ASetThatReadsItsTablesSurvives) {
    for (const Case& tried : cases) {
        fail_each(
            tried,
            [](int n) {
                device().now += 100;
                device().fail_allocation(n);
            },
            [](const Pdu&, int) {});
        device().now += 100;
    }
}

TEST_F(Memory, NothingIsLeftOfSetsThatRanOut) {
    const auto run = [] {
        for (const Case& tried : cases)
            fail_each(
                tried, [](int n) { device().fail_allocation(n); }, [](const Pdu&, int) {});
        device().calls = {};
    };
    run();
    const size_t before = live_octets();
    for (int i = 0; i < 10; ++i)
        run();
    EXPECT_LE(live_octets(), before + (live_octets_are_exact() ? 0 : 65536));
}

}  // namespace
