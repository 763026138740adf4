// Files that were made to hang a reader or to use up its memory: each is refused at a small cost, and a process that
// had contents before keeps them.
#include "attack.h"
#include "crafted.h"

namespace {

using namespace store_test;
using crafted::Crafted;

class CraftedFile : public testing::TestWithParam<Crafted> {
  protected:
    CraftedFile() {
        make_store(place.path(), {ssid_is("office")});
        file = crafted::from(place.path(), GetParam());
        EXPECT_EQ(file.size(), GetParam().size);
    }

    // Ten times what a machine without other load needs, and what the system's own counting may add.
    static void expect_small(const Cost& cost) {
        EXPECT_LE(cost.microseconds, 100'000);
        EXPECT_LE(cost.kilobytes, 4096);
    }

    const Place place;
    std::string file;
};

INSTANTIATE_TEST_SUITE_P(Files, CraftedFile, testing::ValuesIn(crafted::files),
                         [](const auto& test) { return test.param.what; });

TEST_P(CraftedFile, IsRefusedAtASmallCost) {
    overwrite(place.path(), file);
    alone([] {
        expect_small(cost_of([] {
            EXPECT_EQ(grid("interface"), Pairs());
            EXPECT_EQ(get("interface", "wlan0", "ssid"), std::nullopt);
            EXPECT_EQ(get("system", nullptr, "country"), std::nullopt);
        }));
    });
}

TEST_P(CraftedFile, LeavesTheContentsThatWereThereBefore) {
    alone([&] {
        EXPECT_EQ(ssid(), "office");
        overwrite(place.path(), file);
        expect_small(cost_of([&] {
            for (int i = 0; i < 20; ++i) {
                const auto answer = ssid();
                EXPECT_TRUE(answer == "office" || (GetParam().looks_sound && !answer)) << answer.value_or("nothing");
            }
        }));
    });
}

TEST_P(CraftedFile, IsNotWritten) {
    overwrite(place.path(), file);
    alone([] { expect_small(cost_of([] { EXPECT_EQ(set("interface", "wlan0", "ssid", "home"), 0); })); });
    EXPECT_EQ(read_file(place.path()), file);
}

TEST_P(CraftedFile, EndsTheToolSoon) {
    overwrite(place.path(), file);
    for (const std::string command : {"check", "list", "export"}) {
        const Outcome outcome = tool(place.path(), {command});
        EXPECT_TRUE(outcome.status == 1 || outcome.status == 3) << command << " " << outcome.status;
        EXPECT_FALSE(outcome.text.empty());
        EXPECT_LT(outcome.milliseconds, 5000);
        EXPECT_LT(outcome.kilobytes, 32 * 1024);
    }
}

}  // namespace
