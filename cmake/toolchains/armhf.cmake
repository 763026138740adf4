# ARMv7 with hardware floating point, 32 bits, little-endian.
set(architecture armhf)
set(triple arm-linux-gnueabihf)
set(multiarch arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(emulator qemu-arm-static;-L;@SYSROOT@)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
