// Every SET of one and of two varbinds, and many of three, against the agent with the module in it: each answer is what
// the reference says, the GET that follows shows that nothing has changed, and nothing is left in the stores or on the
// heap.
#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "access/hooks.h"
#include "agent/set_records.h"
#include "fixture.h"
#include "reference.h"

using namespace dot11;

namespace {

class Sets : public Model {
  protected:
    // A first answer makes caches in the agent and loads the tables.
    void SetUp() override {
        for (const Varbind& varbind : all)
            exchange({varbind});
    }

    // A SET, and a GET of the same names.
    void exchange(const std::vector<Varbind>& list) {
        const uint32_t made_before = dot11WEPKeyMappingIndexMax;
        const Expected set = expected_set(device_seen(), list);
        compare(asked(set_request, list), set, list);
        EXPECT_EQ(dot11WEPKeyMappingIndexMax - made_before, static_cast<uint32_t>(set.key_mappings_made));
        expect_empty_stores(list);
        compare(asked(get_request, list), expected_get(device_seen(), list, unknown_, has_options()), list);
        EXPECT_TRUE(unknown_.empty()) << "a readable value that the test does not know: " << shown(*unknown_.begin());
        if (HasFailure()) report(list);
    }

    // Every `step`-th triple, in the order of their numbers.
    void exchange_triples(size_t step) {
        warm_ = true;
        const size_t before = live_octets();
        const size_t count = all.size();
        for (size_t i = 0; i < count * count * count && !HasFailure(); i += step)
            exchange({all[i / count / count], all[i / count % count], all[i % count]});
        EXPECT_LE(live_octets(), before + 65536);
    }

    const std::vector<Varbind>& all = representative_varbinds();

  private:
    std::optional<Pdu> asked(uint8_t command, const std::vector<Varbind>& list) {
        const std::string message = encoded({command, ++request_id_, 0, 0, list});
        device_->calls = {};
        const size_t before = live_octets();
        const std::span<const uint8_t> answer = answer_to(octets_of(message));
        device_->calls = {};
        const size_t left = live_octets_are_exact() && warm_ ? live_octets() - before : 0;
        EXPECT_EQ(left, 0U);
        return decoded(answer);
    }

    void compare(const std::optional<Pdu>& answer, const Expected& expected, const std::vector<Varbind>& list) {
        ASSERT_TRUE(answer) << "no answer";
        EXPECT_EQ(answer->command, response_pdu);
        EXPECT_EQ(answer->request_id, request_id_);
        EXPECT_EQ(answer->status, expected.status);
        EXPECT_EQ(answer->index, expected.index);
        ASSERT_EQ(answer->varbinds.size(), list.size());
        if (answer->varbinds == expected.varbinds) return;
        for (size_t i = 0; i < list.size(); ++i)
            EXPECT_EQ(shown(answer->varbinds[i]), shown(expected.varbinds[i])) << "varbind " << i + 1;
    }

    // Whatever table and row the PDU named.
    static void expect_empty_stores(const std::vector<Varbind>& list) {
        for (const Varbind& varbind : list) {
            std::vector<oid> subids(varbind.name.begin(), varbind.name.end());
            netsnmp_variable_list first = {};
            first.name = subids.data();
            first.name_length = subids.size();
            for (size_t root = 6; root <= 7 && root <= subids.size(); ++root) {
                Keys keys = {};
                make_keys(std::span(subids).first(root), first, keys);
                EXPECT_EQ(find_commit_record(keys.row), nullptr);
                EXPECT_EQ(find_undo_record(keys.request), nullptr);
            }
        }
    }

    void report(const std::vector<Varbind>& list) {
        std::string shown_list;
        for (const Varbind& varbind : list)
            shown_list += "\n  " + shown(varbind);
        FAIL() << "with the varbinds" << shown_list;
    }

  protected:
    static bool warm_;

  private:
    int32_t request_id_ = 0;
    std::set<Oid> unknown_;
};

bool Sets::warm_;

TEST_F(Sets, OfOneAndOfTwoVarbinds) {
    warm_ = true;
    for (const Varbind& first : all) {
        exchange({first});
        for (const Varbind& second : all) {
            exchange({first, second});
            if (HasFailure()) return;
        }
    }
}

// The step shares no factor with the number of varbinds: each of them comes in each place.
TEST_F(Sets, OfThreeVarbinds) {
    exchange_triples(5);
}

TEST_F(Sets, OfThreeVarbindsAll) {
    exchange_triples(1);
}

TEST_F(Sets, OfAHundredVarbinds) {
    std::minstd_rand random(1);
    for (int i = 0; i < 200 && !HasFailure(); ++i) {
        std::vector<Varbind> list;
        for (int k = 0; k < 100; ++k)
            list.push_back(all[random() % all.size()]);
        exchange(list);
    }
}

}  // namespace
