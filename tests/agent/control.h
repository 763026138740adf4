/* What a test and the agent that it runs share: a mapped file, named by the environment variable AGENT_CONTROL. */
#ifndef AGENT_CONTROL_H
#define AGENT_CONTROL_H

#include <stdint.h>

struct agent_control {
    volatile int64_t now;    /* what gettimeofday answers in the agent, seconds since the epoch; 0: the real time */
    volatile uint32_t grids; /* calls of cfqlquery_get_grid so far */
    volatile uint32_t gets;  /* calls of cfqlquery_get_pv so far */
    volatile uint32_t sets;  /* calls of cfqlquery_set_pv so far */
};

#endif
