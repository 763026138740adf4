# Debian's cross compilers with a sysroot that cross/sysroot made, or with DOT11_SYSROOT. The file that includes this one names
# the compiler's triple, the machine and what runs the machine's programs here.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)

if(NOT DOT11_SYSROOT)
  get_filename_component(DOT11_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/cross/${architecture}/sysroot ABSOLUTE)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DOT11_SYSROOT)
set(CMAKE_SYSROOT ${DOT11_SYSROOT})
string(REPLACE "@SYSROOT@" ${DOT11_SYSROOT} CMAKE_CROSSCOMPILING_EMULATOR "${emulator}")

# Programs of this machine, everything else of the sysroot.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${DOT11_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
  ${DOT11_SYSROOT}/usr/lib/${multiarch}/pkgconfig:${DOT11_SYSROOT}/usr/lib/pkgconfig:${DOT11_SYSROOT}/usr/share/pkgconfig)
