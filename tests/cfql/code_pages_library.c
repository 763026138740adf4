/* A library whose pages a test releases. With RELOCATED its code holds an address, which the loader writes there. */
#include <stdint.h>

enum { size = 1 << 18 };

const char constants[size] = {1};
char variables[size] = {4};

__asm__(".text\n.skip 1 << 18\n");

int sum(int place);
int sum(int place) {
    return constants[place] + variables[place];
}

#ifdef RELOCATED
#if UINTPTR_MAX == UINT64_MAX
#define POINTER ".quad"
#else
#define POINTER ".long"
#endif
__asm__(".text\n.balign 8\nword_in_code: " POINTER " constants\n.hidden word_in_code\n.skip 1 << 16\n");

extern const void* const word_in_code;
const void* word(void);
const void* word(void) {
    return word_in_code;
}
#endif
