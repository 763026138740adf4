/* Preloaded into the agent: moves its clock and counts the module's calls into the configuration store. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#include "cfqlquery.h"
#include "control.h"

static struct agent_control* control;

__attribute__((constructor)) static void map_control(void) {
    const char* path = getenv("AGENT_CONTROL");
    const int file = path ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0) return;
    void* mapped = mmap(NULL, sizeof *control, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED) control = mapped;
    close(file);
}

#define NEXT(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))

int gettimeofday(struct timeval* restrict now, void* restrict zone) {
    if (!control || control->now == 0) return NEXT(gettimeofday)(now, zone);
    now->tv_sec = (time_t)control->now;
    now->tv_usec = 0;
    return 0;
}

cfqlquery_node* cfqlquery_get_grid(const char* table, const char* object, const char* key, const cfqlquery_node* filter,
                                   int filter_count) {
    if (control) ++control->grids;
    return NEXT(cfqlquery_get_grid)(table, object, key, filter, filter_count);
}

cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key) {
    if (control) ++control->gets;
    return NEXT(cfqlquery_get_pv)(table, object, key);
}

int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int flags) {
    if (control) ++control->sets;
    return NEXT(cfqlquery_set_pv)(table, object, pair, flags);
}
