// What a fuzzer says must be so: otherwise it ends, and the input that led here is kept.
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
