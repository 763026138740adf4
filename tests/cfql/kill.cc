// store-kill writer|reader COUNT: kills a process with SIGKILL in the middle of its work COUNT times, and checks that
// nothing is lost or torn. Exit status 0: nothing is.
//
// The writer notes each acknowledged write in memory that it shares with the parent. After its death everything
// acknowledged must be there; a transaction of two values must be there as a whole or not at all. The reader is killed
// while another process writes, which must continue undisturbed.
#include <signal.h>
#include <stdio.h>
#include <sys/mman.h>
#include <time.h>

#include <atomic>

#include "fixture.h"

namespace {

using namespace store_test;

struct Shared {
    std::atomic<int> acknowledged;
    std::atomic<int> reads;
};

Shared* share() {
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("mmap");
    return new (memory) Shared{};
}

// A different instant of the work at each round: after `round` mod 10 steps and up to a millisecond. False when the
// child had ended by itself.
bool kill_at_some_time(pid_t child, const std::atomic<int>& steps, int round) {
    const int start = steps;
    eventually([&] { return steps >= start + round % 10; });
    const timespec pause = {0, (round * 7919L % 1000) * 1000};
    nanosleep(&pause, nullptr);
    kill(child, SIGKILL);
    return finish(child) == 1000 + SIGKILL;
}

// Two values in one transaction now and then, single values between.
int write_on(const std::string& path, Shared& shared) {
    for (int n = shared.acknowledged + 1;; ++n) {
        const std::string text = std::to_string(n);
        if (n % 3 == 0) {
            put(path, {{"pair", "o", "a", text}, {"pair", "o", "b", text}});
        } else if (set("single", "o", text.c_str(), text.c_str()) != 1) {
            return 1;
        }
        shared.acknowledged = n;
    }
}

// 0, or the number of the first rule that does not hold. Each look is a process of its own.
int examine(const std::string& path, int acknowledged) {
    // As a writer, which undoes what the killed one left unfinished.
    cfql::Database store;
    int faults = 0;
    const auto count = [](void* context, const char*) { ++*static_cast<int*>(context); };
    if (store.open(path.c_str(), cfql::Access::write) != cfql::Status::ok) return 1;
    if (store.check(count, &faults) != cfql::Status::ok || faults != 0) return 2;
    for (int n = 1; n <= acknowledged; ++n) {
        const std::string text = std::to_string(n);
        if (n % 3 != 0 && get("single", "o", text.c_str()) != text) return 3;
    }
    const auto a = get("pair", "o", "a");
    if (a != get("pair", "o", "b")) return 4;
    return std::stoi(a.value_or("0")) >= acknowledged / 3 * 3 ? 0 : 5;
}

int kill_writers(const Place& place, int rounds) {
    Shared& shared = *share();
    for (int round = 0; round < rounds; ++round) {
        const pid_t writer = start([&] { return write_on(place.path(), shared); });
        const bool killed = kill_at_some_time(writer, shared.acknowledged, round);
        const int broken = killed ? in_child([&] { return examine(place.path(), shared.acknowledged); }) : 6;
        if (broken != 0) return fprintf(stderr, "writer %d: rule %d does not hold\n", round, broken), 1;
    }
    printf("%d writers killed, %d writes acknowledged, none lost or torn\n", rounds, shared.acknowledged.load());
    return 0;
}

int read_on(Shared& shared) {
    // The writer may keep the lock from the first load for a while.
    if (!eventually([] { return grid("single").size() == 1; })) return 3;
    for (int last = 0;; ++shared.reads) {
        if (grid("single").size() != 1) return 1;
        const int now = std::stoi(get("single", "o", "n").value_or("-1"));
        if (now < last) return 2;
        last = now;
    }
}

// 0, or 1 when the last acknowledged value is lost.
int examine_single(const std::string& path, int acknowledged) {
    // The writer too was killed, perhaps in a write: as a writer, which undoes it.
    cfql::Database store;
    if (store.open(path.c_str(), cfql::Access::write) != cfql::Status::ok) return 1;
    return std::stoi(get("single", "o", "n").value_or("-1")) >= acknowledged ? 0 : 1;
}

int kill_readers(const Place& place, int rounds) {
    Shared& shared = *share();
    put(place.path(), {{"single", "o", "n", "0"}});
    const pid_t writer = start([&] {
        for (int n = 1;; ++n) {
            if (set("single", "o", "n", std::to_string(n).c_str()) != 1) return 1;
            shared.acknowledged = n;
        }
    });
    int broken = 0;
    for (int round = 0; round < rounds && broken == 0; ++round) {
        if (!kill_at_some_time(start([&] { return read_on(shared); }), shared.reads, round)) broken = 4;
        const int before = shared.acknowledged;
        if (!eventually([&] { return shared.acknowledged > before; })) broken = 1;
    }
    kill(writer, SIGKILL);
    if (finish(writer) != 1000 + SIGKILL) broken = 2;
    const int acknowledged = shared.acknowledged;
    if (broken == 0 && in_child([&] { return examine_single(place.path(), acknowledged); }) != 0) broken = 3;
    if (broken != 0) return fprintf(stderr, "readers: rule %d does not hold\n", broken), 1;
    printf("%d readers killed after %d reads beside %d writes, none lost\n", rounds, shared.reads.load(), acknowledged);
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string who = count == 3 ? arguments[1] : "";
    const int rounds = count == 3 ? atoi(arguments[2]) : 0;
    if (rounds <= 0 || (who != "writer" && who != "reader")) {
        fprintf(stderr, "usage: store-kill writer|reader COUNT\n");
        return 2;
    }
    const Place place;
    make(place.path());
    return who == "reader" ? kill_readers(place, rounds) : kill_writers(place, rounds);
}
