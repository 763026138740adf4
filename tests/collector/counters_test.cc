// Sums of stations' counters: single facts, and all orders of events compared with a plain count.
#include "counters.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using collector::Accumulator;
using collector::Departed;
using collector::Mac;
using collector::Sample;
using collector::Station;
using collector::Stations;
using collector::Totals;

constexpr Mac a = {2, 0, 0, 0, 0, 0xa};
constexpr Mac b = {2, 0, 0, 0, 0, 0xb};

Sample sample(std::uint32_t received, std::uint32_t sent, std::uint32_t failed = 0, std::uint32_t retries = 0) {
    return {received, sent, failed, retries, {}};
}

Stations present(std::uint32_t generation, const std::vector<std::pair<Mac, Sample>>& stations) {
    Stations made = {generation, {}};
    for (const auto& [mac, counters] : stations)
        made.stations.push_back({mac, counters, {}, {}});
    return made;
}

Departed departed(std::uint32_t generation, const Mac& mac, const std::optional<Sample>& last) {
    return {1, generation, mac, last};
}

TEST(Accumulator, CountsFromAStationsFirstFrame) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(10, 20, 5, 3)}, {b, sample(1, 2)}}), {}, true);
    EXPECT_EQ(sums.totals(), (Totals{17, 5, 11, 8, {}}));
    EXPECT_EQ(sums.stations(), 2U);
    sums.update(present(1, {{a, sample(11, 22, 5, 4)}, {b, sample(1, 2)}}), {}, true);
    EXPECT_EQ(sums.totals(), (Totals{19, 5, 12, 9, {}}));
}

TEST(Accumulator, TakesTheLastCountersOfWhoLeft) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(10, 20)}}), {}, true);
    const Departed left[] = {departed(2, a, sample(15, 30, 4))};
    sums.update(present(0, {}), left, true);
    EXPECT_EQ(sums.totals(), (Totals{26, 4, 15, 4, {}}));
    EXPECT_EQ(sums.stations(), 0U);
}

TEST(Accumulator, WithoutLastCountersTheLastLookStands) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(10, 20)}}), {}, true);
    const Departed left[] = {departed(2, a, {})};
    sums.update(present(0, {}), left, true);
    EXPECT_EQ(sums.totals().received, 10U);
}

// The list was read when the station was there; its departure was already waiting when the pass began.
TEST(Accumulator, ADepartureBehindTheListIsNotCountedTwice) {
    Accumulator sums;
    const Departed left[] = {departed(4, a, sample(23, 31, 15))};
    sums.update(present(3, {{a, sample(20, 30, 13)}}), left, true);
    EXPECT_EQ(sums.totals(), (Totals{17, 15, 23, 15, {}}));
    sums.update(present(0, {}), {}, true);
    EXPECT_EQ(sums.totals(), (Totals{17, 15, 23, 15, {}}));
}

TEST(Accumulator, AnotherAssociationStartsAtZero) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(10, 10)}}), {}, true);
    const Departed left[] = {departed(2, a, sample(12, 12))};
    sums.update(present(3, {{a, sample(5, 6)}}), left, true);
    EXPECT_EQ(sums.totals().received, 17U);
    EXPECT_EQ(sums.totals().transmitted, 18U);
}

TEST(Accumulator, CameAndWentBetweenTwoLooks) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(1, 1)}}), {}, true);
    const Departed left[] = {departed(3, b, sample(7, 8))};
    sums.update(present(3, {{a, sample(1, 1)}}), left, true);
    EXPECT_EQ(sums.totals().received, 8U);
}

// Its departure was lost: a counter that fell is another association's.
TEST(Accumulator, AFallIsAnotherAssociation) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(100, 100)}}), {}, true);
    sums.update(present(3, {{a, sample(4, 200)}}), {}, true);
    EXPECT_EQ(sums.totals().received, 104U);
    EXPECT_EQ(sums.totals().transmitted, 300U);
}

TEST(Accumulator, LostDeparturesAreForgotten) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(100, 100)}, {b, sample(5, 5)}}), {}, true);
    sums.update(present(2, {{b, sample(6, 6)}}), {}, true);
    EXPECT_EQ(sums.totals().received, 106U);
    // It comes after all; the list without the station was later.
    const Departed late[] = {departed(2, a, sample(103, 103))};
    sums.update(present(2, {{b, sample(6, 6)}}), late, true);
    EXPECT_EQ(sums.totals().received, 106U);
}

TEST(Accumulator, ASamplesWrapIsAStep) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(0xfffffff0, 0xffffffff)}}), {}, true);
    sums.update(present(1, {{a, sample(0x10, 1)}}), {}, true);
    EXPECT_EQ(sums.totals().received, 0x100000010U);
    EXPECT_EQ(sums.totals().transmitted, 0x100000001U);
}

// A frame in flight was counted as sent and fails later.
TEST(Accumulator, TransmittedNeverFalls) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(0, 10, 0)}}), {}, true);
    EXPECT_EQ(sums.totals().transmitted, 10U);
    sums.update(present(1, {{a, sample(0, 10, 1)}}), {}, true);
    EXPECT_EQ(sums.totals().transmitted, 10U);
    sums.update(present(1, {{a, sample(0, 12, 1)}}), {}, true);
    EXPECT_EQ(sums.totals().transmitted, 11U);
}

TEST(Accumulator, AcknowledgementsAreCountedWhileRtsIsOff) {
    Accumulator sums;
    sums.update(present(1, {{a, sample(0, 9, 1, 1)}}), {}, false);
    EXPECT_EQ(sums.totals().unacknowledged, std::nullopt);
    sums.update(present(1, {{a, sample(0, 9, 2, 4)}}), {}, true);
    EXPECT_EQ(sums.totals().unacknowledged, 4U);
    sums.update(present(1, {{a, sample(0, 99, 9, 9)}}), {}, false);
    EXPECT_EQ(sums.totals().unacknowledged, 4U);
    sums.update(present(1, {{a, sample(0, 99, 9, 10)}}), {}, true);
    EXPECT_EQ(sums.totals().unacknowledged, 5U);
}

TEST(Accumulator, BadChecksumsWhereTheDriverTells) {
    Accumulator sums;
    Stations now = present(1, {{a, sample(0, 0)}});
    sums.update(now, {}, true);
    EXPECT_EQ(sums.totals().bad_checksums, std::nullopt);
    now.stations[0].sample.bad_checksums = 3;
    sums.update(now, {}, true);
    now.stations[0].sample.bad_checksums = 5;
    sums.update(now, {}, true);
    EXPECT_EQ(sums.totals().bad_checksums, 5U);
}

TEST(Accumulator, GoesOnFromWhatIsKnown) {
    Accumulator sums(Totals{100, 5, 50, 7, {}});
    const Departed left[] = {departed(2, b, sample(99, 99, 9))};  // left before the list, and nobody knows its base
    sums.update(present(3, {{a, sample(10, 20, 5)}}), left, true);
    EXPECT_EQ(sums.totals(), (Totals{100, 5, 50, 7, {}}));
    sums.update(present(3, {{a, sample(11, 22, 6)}}), {}, true);
    EXPECT_EQ(sums.totals(), (Totals{101, 6, 51, 8, {}}));
}

// Without generations nothing tells whether a departure was before the list; a station in both is taken once.
TEST(Accumulator, DriversWithoutGenerations) {
    Accumulator sums;
    sums.update(present(0, {{a, sample(10, 10)}}), {}, true);
    const Departed left[] = {departed(0, a, sample(12, 12))};
    sums.update(present(0, {{a, sample(11, 11)}}), left, true);
    EXPECT_EQ(sums.totals().received, 11U);
    sums.update(present(0, {}), left, true);
    EXPECT_EQ(sums.totals().received, 12U);
    sums.update(present(0, {}), left, true);
    EXPECT_EQ(sums.totals().received, 12U);
}

TEST(Accumulator, GenerationsWrap) {
    Accumulator sums;
    sums.update(present(0xfffffffe, {{a, sample(1, 1)}, {b, sample(1, 1)}}), {}, true);
    const Departed left[] = {departed(0xffffffff, a, sample(2, 2)), departed(2, b, sample(5, 5))};
    sums.update(present(1, {{b, sample(3, 3)}}), left, true);
    EXPECT_EQ(sums.totals().received, 7U);
}

TEST(Written, Modulo2To31) {
    const struct {
        std::uint64_t total;
        std::uint32_t text;
    } cases[] = {
        {0, 0},          {2147483647, 2147483647},
        {2147483648, 0}, {4294967295, 2147483647},
        {4294967301, 5}, {18446744073709551615U, 2147483647},
    };
    for (const auto& expected : cases)
        EXPECT_EQ(collector::counter_value(expected.total), expected.text) << expected.total;
}

// ---- All orders

// Two stations, a list that was read, events on their way, and the true number of frames.
class Air {
  public:
    // a, b: the station comes or goes; s, t: it sends three frames; D: the list is read; K: the collector makes a pass,
    // with the list that was read last and the departures until now.
    void act(char what, Accumulator& sums) {
        switch (what) {
            case 'a':
            case 'b':
                return toggle(stations_[what - 'a']);
            case 's':
            case 't':
                return send(stations_[what - 's']);
            case 'D':
                read_list();
                return;
            default:
                update(sums);
        }
    }

    std::uint64_t sent() const { return sent_; }
    std::uint64_t sent_before_first_list() const { return before_; }
    bool was_first_list_empty() const { return empty_; }
    bool has_generations = true;

  private:
    struct OnAir {
        Mac mac;
        std::optional<std::uint32_t> frames;
    };

    void toggle(OnAir& station) {
        ++generation_;
        if (station.frames) {
            events_.push_back(
                departed(has_generations ? generation_ : 0, station.mac, sample(*station.frames, *station.frames)));
            station.frames.reset();
        } else {
            station.frames = 0;
        }
    }

    void send(OnAir& station) {
        if (!station.frames) return;
        *station.frames += 3;
        sent_ += 3;
    }

    void read_list() {
        list_ = Stations();
        for (const OnAir& station : stations_) {
            if (!station.frames) continue;
            list_->generation = has_generations ? generation_ : 0;
            list_->stations.push_back({station.mac, sample(*station.frames, *station.frames), {}, {}});
        }
        sent_at_list_ = sent_;
    }

    void update(Accumulator& sums) {
        if (!list_) return;
        if (!has_looked_) {
            before_ = sent_at_list_;
            empty_ = list_->stations.empty();
        }
        has_looked_ = true;
        sums.update(*list_, events_, true);
        events_.clear();
        list_.reset();
    }

    OnAir stations_[2] = {{a, {}}, {b, {}}};
    std::uint32_t generation_ = 7;
    std::vector<Departed> events_;
    std::optional<Stations> list_;
    std::uint64_t sent_ = 0, sent_at_list_ = 0, before_ = 0;
    bool has_looked_ = false, empty_ = false;
};

// Every word of `length` letters.
template <class Check>
void each_order(const std::string& letters, std::size_t length, Check check) {
    std::vector<std::size_t> at(length, 0);
    std::string order(length, letters[0]);
    for (;;) {
        check(order);
        std::size_t i = 0;
        while (i < length && ++at[i] == letters.size())
            at[i++] = 0;
        if (i == length) return;
        for (std::size_t j = 0; j <= i; ++j)
            order[j] = letters[at[j]];
    }
}

void expect_never_falls(const std::string& order, Air& air, Accumulator& sums) {
    std::uint64_t last = sums.totals().received;
    for (const char what : order) {
        air.act(what, sums);
        ASSERT_GE(sums.totals().received, last) << order;
        ASSERT_LE(sums.totals().received, air.sent()) << order;
        last = sums.totals().received;
    }
}

TEST(AllOrders, EveryFrameOnce) {
    each_order("asbtDK", 7, [](const std::string& order) {
        Air air;
        Accumulator sums;
        expect_never_falls(order, air, sums);
        air.act('D', sums);
        air.act('K', sums);
        ASSERT_EQ(sums.totals().received, air.sent()) << order;
        ASSERT_EQ(sums.totals().transmitted, air.sent()) << order;
    });
}

TEST(AllOrders, EveryFrameSinceTheFirstListOnceAfterARestart) {
    each_order("asbtDK", 6, [](const std::string& order) {
        Air air;
        Accumulator sums = Accumulator(Totals());
        expect_never_falls(order, air, sums);
        air.act('D', sums);
        air.act('K', sums);
        const std::uint64_t since = air.sent() - air.sent_before_first_list();
        // An empty list has no generation: who left until the first pass may have come before it or after it.
        ASSERT_LE(sums.totals().received, since) << order;
        ASSERT_TRUE(air.was_first_list_empty() || sums.totals().received == since) << order;
    });
}

TEST(AllOrders, NoFrameTwiceWithoutGenerations) {
    each_order("asDK", 8, [](const std::string& order) {
        Air air;
        air.has_generations = false;
        Accumulator sums;
        expect_never_falls(order, air, sums);
    });
}

}  // namespace
