// SETs whose phases come one by one from a master agent, as in a subagent: complete ones, and those of a master that
// dies or is late.
#include <gtest/gtest.h>

#include "fixture.h"
#include "reference.h"

namespace {

class Phases : public Model {
  protected:
    // Leads a SET through its phases, up to the given one, and does `between` after that. The answer is the one that
    // the master gives: UNDO's when that is 15, otherwise the first error.
    template <class Between>
    static Pdu led(const std::vector<Varbind>& list, Phase last, Between between) {
        const long transaction = ++transaction_;
        const auto answer = [&](Phase phase) {
            const Pdu given = *answer_to(phase, transaction, list);
            if (phase == last) between();
            return given;
        };
        for (const Phase phase : {Phase::reserve1, Phase::reserve2}) {
            const Pdu refused = answer(phase);
            if (!refused.status) continue;
            answer(Phase::free);
            return refused;
        }
        const Pdu written = answer(Phase::action);
        if (!written.status) return answer(Phase::commit);
        const Pdu undone = answer(Phase::undo);
        return undone.status == 15 ? undone : written;
    }

    // A master that dies: nothing comes after the given phase, nor after one that has failed.
    static void led_to_its_death(const std::vector<Varbind>& list, Phase last) {
        const long transaction = ++transaction_;
        for (const Phase phase : {Phase::reserve1, Phase::reserve2, Phase::action})
            if (answer_to(phase, transaction, list)->status || phase == last) return;
    }

    static void expect_right(const std::vector<Varbind>& list) {
        const Expected expected = expected_set(device_seen(), list);
        const Pdu answer = led(list, Phase::undo, [] {});
        device_->calls = {};
        if (answer.status == expected.status && answer.index == expected.index) return;
        std::string names;
        for (const Varbind& varbind : list)
            names += "\n  " + shown(varbind);
        FAIL() << "status " << answer.status << " on " << answer.index << ", not " << expected.status << " on "
               << expected.index << ", for" << names;
    }

    const std::vector<Varbind>& all = representative_varbinds();

  private:
    static long transaction_;
};

long Phases::transaction_;

TEST_F(Phases, OfOneAndOfTwoVarbinds) {
    for (const Varbind& first : all) {
        expect_right({first});
        for (const Varbind& second : all)
            expect_right({first, second});
        if (HasFailure()) return;
    }
}

constexpr Phase open_phases[] = {Phase::reserve1, Phase::reserve2, Phase::action};

// What the master left behind changes no later SET.
TEST_F(Phases, OfAMasterThatDies) {
    for (const Phase last : open_phases) {
        for (const Varbind& left : all) {
            led_to_its_death({left, left}, last);
            for (const Varbind& next : all)
                expect_right({next, left});
            if (HasFailure()) return;
        }
    }
}

// Another SET comes whole between the phases of the first, which may fail for it. Neither harms what comes after.
TEST_F(Phases, OfAMasterThatComesLate) {
    for (const Phase last : open_phases) {
        for (const Varbind& late : all) {
            for (const Varbind& other : all) {
                led({late}, last, [&] { expect_right({other}); });
                expect_right({late});
            }
            if (HasFailure()) return;
        }
    }
}

}  // namespace
