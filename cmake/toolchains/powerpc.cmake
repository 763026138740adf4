# PowerPC, 32 bits, big-endian.
set(architecture powerpc)
set(triple powerpc-linux-gnu)
set(multiarch powerpc-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(emulator qemu-ppc-static;-L;@SYSROOT@)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
