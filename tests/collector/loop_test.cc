// The loop with sources in memory: bursts of events, signals, the watchdog.
#include "loop.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "clock.h"

namespace {

using collector::now_ms;
using collector::Work;

// Runs in a child, as signals are a process's: `body` is given the work to fill in and starts the loop.
template <class Body>
int in_child(Body body) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        collector::hold_signals();
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

// A source of events, and the work over it. After LAST passes the loop is told to end.
struct Scene {
    explicit Scene(unsigned last) {
        work.events = {source};
        work.read_events = [this] {
            eventfd_t count = 0;
            eventfd_read(source, &count);
            return true;
        };
        work.pass = [this, last](std::int64_t now) {
            passes.push_back(now);
            if (passes.size() == last) raise(SIGTERM);
            return collector::After();
        };
        work.reload = [this] { ++reloads; };
        work.alive = [this] { ++signs; };
    }
    void happen() const { eventfd_write(source, 1); }

    int source = eventfd(0, EFD_NONBLOCK);
    std::vector<std::int64_t> passes;
    unsigned reloads = 0, signs = 0;
    Work work;
};

TEST(Loop, ThirtyEventsAreOnePass) {
    EXPECT_EQ(in_child([] {
                  Scene scene(2);
                  std::thread events([&] {
                      for (int i = 0; i < 30; ++i) {
                          scene.happen();
                          std::this_thread::sleep_for(std::chrono::milliseconds(2));
                      }
                  });
                  const std::int64_t begin = now_ms();
                  collector::run(scene.work);
                  events.join();
                  // The first pass is at once; the burst is the second, and the regular one would come after ten
                  // seconds.
                  const std::int64_t second = scene.passes[1] - begin;
                  return scene.passes.size() == 2 && second >= 50 && second < 9000 ? 0 : 1;
              }),
              0);
}

TEST(Loop, WhatCameDuringAPassMakesAnother) {
    EXPECT_EQ(in_child([] {
                  Scene scene(2);
                  const auto pass = scene.work.pass;
                  scene.work.pass = [&](std::int64_t now) {
                      pass(now);
                      return collector::After{false, true};
                  };
                  collector::run(scene.work);
                  return scene.passes[1] - scene.passes[0] < 9000 ? 0 : 1;
              }),
              0);
}

TEST(Loop, PassesWithoutEventsKeepTheInterval) {
    EXPECT_EQ(in_child([] {
                  Scene scene(4);
                  scene.work.interval = 50;
                  collector::run(scene.work);
                  return scene.passes[3] - scene.passes[0] >= 150 ? 0 : 1;
              }),
              0);
}

TEST(Loop, Signals) {
    EXPECT_EQ(in_child([] {
                  Scene scene(3);
                  const auto pass = scene.work.pass;
                  scene.work.pass = [&](std::int64_t now) {
                      const collector::After after = pass(now);
                      if (scene.passes.size() == 1) raise(SIGHUP);
                      if (scene.passes.size() == 2) raise(SIGUSR1);
                      return after;
                  };
                  collector::run(scene.work);
                  return scene.reloads == 1 && scene.passes.size() == 3 && scene.passes[2] - scene.passes[0] < 9000 ? 0
                                                                                                                    : 1;
              }),
              0);
}

TEST(Loop, AnInterruptEndsIt) {
    EXPECT_EQ(in_child([] {
                  Scene scene(1000);
                  raise(SIGINT);
                  collector::run(scene.work);
                  return scene.passes.empty() ? 0 : 1;
              }),
              0);
}

TEST(Loop, SignsOfLifeBetweenPasses) {
    EXPECT_EQ(in_child([] {
                  Scene scene(1000);
                  scene.work.watchdog = 20;
                  scene.work.alive = [&] {
                      if (++scene.signs == 5) raise(SIGTERM);
                  };
                  collector::run(scene.work);
                  return scene.signs == 5 && scene.passes.size() == 1 ? 0 : 1;
              }),
              0);
}

}  // namespace
