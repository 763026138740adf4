// What is logged, and how often.
#include "log.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

namespace {

using collector::Level;
using collector::Log;
using Lines = std::vector<std::string>;

struct LogTest : testing::Test {
    Lines take() { return std::exchange(lines, {}); }

    Lines lines;
    Log log{[this](const std::string& line) { lines.push_back(line); }};
};

TEST_F(LogTest, LevelInFront) {
    log.say(Level::error, "a");
    log.say(Level::info, "b");
    EXPECT_EQ(lines, (Lines{"<3>cfql-collector: a\n", "<6>cfql-collector: b\n"}));
}

TEST_F(LogTest, NoLevelOnATerminal) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        Log().say(Level::error, "a");
        _exit(0);
    }
    char said[64];
    const ssize_t got = read(terminal, said, sizeof said);
    EXPECT_EQ(std::string(said, got > 0 ? static_cast<std::size_t>(got) : 0), "cfql-collector: a\r\n");
    close(terminal);
    waitpid(child, nullptr, 0);
}

TEST_F(LogTest, ACauseIsSaidOnceThenItsEnd) {
    for (int now = 0; now < 300000; now += 10000)
        log.holds("x", Level::warning, "broken", now);
    EXPECT_EQ(take(), Lines{"<4>cfql-collector: broken\n"});
    for (int now = 300000; now < 400000; now += 10000)
        log.ended("x", "mended", now);
    EXPECT_EQ(take(), Lines{"<5>cfql-collector: mended\n"});
    EXPECT_EQ(log.size(), 0U);
}

TEST_F(LogTest, ACauseThatComesAndGoesIsSaidOnceAMinute) {
    for (int now = 0; now < 600000; now += 2000) {
        log.holds("x", Level::warning, "broken", now);
        log.ended("x", "mended", now + 1000);
    }
    EXPECT_LE(lines.size(), 20U);
    EXPECT_GE(lines.size(), 18U);
}

TEST_F(LogTest, AnotherMessageOfACauseWaitsForTheMinute) {
    log.holds("x", Level::warning, "one", 0);
    log.holds("x", Level::warning, "two", 10000);
    EXPECT_EQ(take().size(), 1U);
    log.holds("x", Level::warning, "two", 60000);
    EXPECT_EQ(take(), Lines{"<4>cfql-collector: two\n"});
}

TEST_F(LogTest, TheEndOfWhatWasNotSaidIsNotSaid) {
    log.ended("x", "mended", 0);
    EXPECT_EQ(take(), Lines{});
}

TEST_F(LogTest, CausesThatAreGoneAreForgotten) {
    log.holds("row:a", Level::warning, "a", 0);
    log.holds("row:b", Level::warning, "b", 10000);
    log.end_others("row:", "", 10000, 70000);
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(LogTest, CausesAreBounded) {
    for (int i = 0; i < 5000; ++i)
        log.holds("x" + std::to_string(i), Level::warning, "y", 0);
    EXPECT_EQ(log.size(), 1024U);
}

}  // namespace
