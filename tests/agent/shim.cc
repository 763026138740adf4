// Preloaded into the agent: moves its clock and counts the module's calls into the configuration store.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>

#include "cfqlquery.h"
#include "control.h"

namespace {

agent_control* control;

__attribute__((constructor)) void map_control() {
    const char* path = getenv("AGENT_CONTROL");
    const int file = path ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0) return;
    void* mapped = mmap(nullptr, sizeof *control, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED) control = static_cast<agent_control*>(mapped);
    close(file);
}

// The function that this one overrides.
template <class Function>
Function* next(const char* name, Function*) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define NEXT(function) next(#function, &function)

// With 64-bit times on a 32-bit machine, the C library has the function under a name of its own, here as there.
#if __SIZEOF_POINTER__ == 4 && defined __USE_TIME_BITS64
constexpr char gettimeofday_name[] = "__gettimeofday64";
constexpr long clock_gettime_number = SYS_clock_gettime64;
#else
constexpr char gettimeofday_name[] = "gettimeofday";
constexpr long clock_gettime_number = SYS_clock_gettime;
#endif

}  // namespace

extern "C" {

int gettimeofday(timeval* now, void* zone) noexcept {
    if (!control || control->now == 0) return next(gettimeofday_name, &gettimeofday)(now, zone);
    *now = {static_cast<time_t>(control->now), 0};
    return 0;
}

// Asks the kernel directly: a sanitizer's library calls this before dlsym works.
int clock_gettime(clockid_t clock, timespec* now) noexcept {
    if (!control || control->monotonic == 0 || (clock != CLOCK_MONOTONIC && clock != CLOCK_MONOTONIC_COARSE))
        return static_cast<int>(syscall(clock_gettime_number, clock, now));
    *now = {static_cast<time_t>(control->monotonic / 1000), static_cast<long>(control->monotonic % 1000 * 1'000'000)};
    return 0;
}

cfqlquery_node* cfqlquery_get_grid(const char* table, const char* object, const char* key, const cfqlquery_node* filter,
                                   int filter_count) {
    if (control) control->grids = control->grids + 1;
    return NEXT(cfqlquery_get_grid)(table, object, key, filter, filter_count);
}

cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key) {
    if (control) control->gets = control->gets + 1;
    return NEXT(cfqlquery_get_pv)(table, object, key);
}

int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int flags) {
    if (control) control->sets = control->sets + 1;
    return NEXT(cfqlquery_set_pv)(table, object, pair, flags);
}
}
