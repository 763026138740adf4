// When passes are due.
#include "schedule.h"

#include <gtest/gtest.h>

namespace {

using collector::Schedule;

TEST(Schedule, TheFirstPassIsAtOnceAndThenEveryInterval) {
    Schedule schedule(10000, 1000);
    EXPECT_EQ(schedule.due(), 1000);
    schedule.pass(1003, false);
    EXPECT_EQ(schedule.due(), 11003);
}

TEST(Schedule, AnEventMakesAPassAfter50Ms) {
    Schedule schedule(10000, 0);
    schedule.pass(0, false);
    schedule.event(2000);
    EXPECT_EQ(schedule.due(), 2050);
    schedule.pass(2050, false);
    EXPECT_EQ(schedule.due(), 12050);
}

TEST(Schedule, ABurstIsOnePassWhenItHasEnded) {
    Schedule schedule(10000, 0);
    schedule.pass(0, false);
    for (const int when : {2000, 2040, 2080, 2120})
        schedule.event(when);
    EXPECT_EQ(schedule.due(), 2170);
}

TEST(Schedule, ABurstThatGoesOnIsCutAfter500Ms) {
    Schedule schedule(10000, 0);
    schedule.pass(0, false);
    for (int when = 2000; when < 4000; when += 10)
        schedule.event(when);
    EXPECT_EQ(schedule.due(), 2500);
}

TEST(Schedule, TheRegularPassIsNotPutOff) {
    Schedule schedule(10000, 0);
    schedule.pass(0, false);
    schedule.event(9990);
    EXPECT_EQ(schedule.due(), 10000);
}

TEST(Schedule, WhatIsUnderWayIsLookedAtAgain) {
    Schedule schedule(10000, 0);
    schedule.event(0);
    schedule.pass(50, true);
    EXPECT_EQ(schedule.due(), 1050);
    schedule.pass(1050, true);  // not by an event: no hurry
    EXPECT_EQ(schedule.due(), 11050);
}

}  // namespace
