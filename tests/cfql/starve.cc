// store-starve SECONDS: for so long, a process commits without pause, and another reads. Exit status 0: what was read
// was never older than 15 s.
#include <signal.h>
#include <stdio.h>

#include "fixture.h"

namespace {

using namespace store_test;
using Clock = std::chrono::steady_clock;

std::int64_t now_ms() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
}

// The value is the time at which it was written; the store is of the size that an access point has.
int write_on(const std::string& path) {
    for (;;)
        put(path, {{"system", "", "time", std::to_string(now_ms())}});
}

std::int64_t oldest(int seconds) {
    std::int64_t worst = 0;
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    for (std::int64_t turn = 0; Clock::now() < end; ++turn) {
        if (turn % 100 == 0) grid("system");
        const auto written = get("system", nullptr, "time");
        if (!written) return -1;
        worst = std::max<std::int64_t>(worst, now_ms() - std::stoll(*written));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return worst;
}

}  // namespace

int main(int count, char** arguments) {
    const int seconds = count == 2 ? atoi(arguments[1]) : 0;
    if (seconds <= 0) {
        fprintf(stderr, "usage: store-starve SECONDS\n");
        return 2;
    }
    const Place place;
    std::vector<Value> values = {{"system", "", "time", std::to_string(now_ms())}};
    for (int i = 0; i < 1000; ++i)
        values.push_back({"interface", "wlan" + std::to_string(i / 30), "key-" + std::to_string(i), std::to_string(i)});
    make(place.path(), values);
    if (!eventually([] { return !grid("system").empty(); })) return 1;
    const pid_t writer = start([&] { return write_on(place.path()); });
    const std::int64_t worst = oldest(seconds);
    kill(writer, SIGKILL);
    const bool wrote = finish(writer) == 1000 + SIGKILL;
    printf("read for %d s beside a writer without pause: at most %lld ms old\n", seconds,
           static_cast<long long>(worst));
    return wrote && worst >= 0 && worst <= 15000 ? 0 : 1;
}
