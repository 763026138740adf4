// Measures loading the module into an agent, from dlopen to the last registration. Prints the CPU time in microseconds.
// Usage: load-bench MODULE
#include <dlfcn.h>
#include <time.h>

#include <cstdio>

#include "util/net_snmp.h"

namespace {

double cpu_us() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

}  // namespace

int main(int argc, char** argv) {
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    init_agent("load-bench");

    const double start = cpu_us();
    void* module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL) : nullptr;
    const auto init = module ? reinterpret_cast<void (*)()>(dlsym(module, "init_ieee802dot11")) : nullptr;
    if (!init) {
        fprintf(stderr, "load-bench: %s\n", argc == 2 ? dlerror() : "usage: load-bench MODULE");
        return 2;
    }
    init();
    printf("%.0f\n", cpu_us() - start);
    return 0;
}
