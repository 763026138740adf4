// A fuzzer's assertion: if it fails, the fuzzer ends and the input is kept.
#pragma once

#include <cstdio>
#include <cstdlib>

#define DEMAND(condition)                                                           \
    do {                                                                            \
        if (!(condition)) {                                                         \
            fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            abort();                                                                \
        }                                                                           \
    } while (false)
