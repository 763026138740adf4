#include "loop.h"

#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <errno.h>
#include <algorithm>
#include <system_error>

#include "clock.h"
#include "descriptor.h"
#include "schedule.h"

namespace collector {

namespace {

constexpr int most_at_once = 8;

sigset_t handled() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1})
        sigaddset(&signals, signal);
    return signals;
}

// Throws if the call that should have made `descriptor` failed.
int made(int descriptor) {
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "epoll or signalfd");
    return descriptor;
}

void watch(const cfql::tool::Descriptor& poll, int descriptor) {
    epoll_event event = {};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    if (epoll_ctl(poll.get(), EPOLL_CTL_ADD, descriptor, &event) != 0) {
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
    }
}

class Loop {
  public:
    explicit Loop(const Work& work)
        : work_(work),
          poll_(made(epoll_create1(EPOLL_CLOEXEC))),
          signals_(made(make_signals())),
          schedule_(work.interval, now_ms()),
          alive_at_(now_ms()) {
        watch(poll_, signals_.get());
        for (const int descriptor : work.events)
            watch(poll_, descriptor);
    }

    void run() {
        while (!ended_) {
            wait();
            if (!ended_ && now_ms() >= schedule_.due()) pass();
            if (work_.watchdog > 0 && now_ms() >= alive_at_) {
                work_.alive();
                alive_at_ = now_ms() + work_.watchdog;
            }
        }
    }

  private:
    static int make_signals() {
        const sigset_t signals = handled();
        return signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    }

    void pass() {
        const int64_t begin = now_ms();
        const After after = work_.pass(begin);
        schedule_.pass(begin, after.under_way);
        if (after.out_of_date) schedule_.event(now_ms());
    }

    void wait() {
        int64_t until = schedule_.due();
        if (work_.watchdog > 0) until = std::min(until, alive_at_);
        epoll_event events[most_at_once];
        const int count = epoll_wait(poll_.get(), events, most_at_once,
                                     static_cast<int>(std::clamp<int64_t>(until - now_ms(), 0, 60000)));
        bool any = false;
        for (int i = 0; i < count; ++i) {
            if (events[i].data.fd == signals_.get()) {
                handle_signals();
            } else {
                any = true;
            }
        }
        if (any && work_.read_events()) schedule_.event(now_ms());
    }

    void handle_signals() {
        signalfd_siginfo info;
        while (read(signals_.get(), &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
            if (info.ssi_signo == SIGTERM || info.ssi_signo == SIGINT) ended_ = true;
            if (info.ssi_signo == SIGHUP) work_.reload();
            if (info.ssi_signo == SIGHUP || info.ssi_signo == SIGUSR1) schedule_.event(now_ms());
        }
    }

    const Work& work_;
    cfql::tool::Descriptor poll_;
    cfql::tool::Descriptor signals_;
    Schedule schedule_;
    int64_t alive_at_;
    bool ended_ = false;
};

}  // namespace

void hold_signals() {
    const sigset_t signals = handled();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
}

void run(const Work& work) {
    Loop(work).run();
}

}  // namespace collector
