# 32-bit x86. A 64-bit x86 machine runs its programs, given the C library's own loader. The compiler's own
# folder has the sanitizers' libraries.
set(architecture i386)
set(triple i686-linux-gnu)
set(multiarch i386-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(emulator @SYSROOT@/lib/ld-linux.so.2;--library-path;@SYSROOT@/lib/i386-linux-gnu:@SYSROOT@/usr/lib/i386-linux-gnu:/usr/i686-linux-gnu/lib)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
