# Options for every target.

set(CMAKE_C_STANDARD 11)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# Debian 12's valgrind does not understand the debug information that its clang writes by default.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_compile_options($<$<CONFIG:RelWithDebInfo>:-gdwarf-4>)
endif()

# Some C libraries, such as glibc on older 32-bit machines, must be asked for file sizes above 2 GiB and times after 2038.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()

# These are mostly header-only libraries, which keep the optimizer busy for 20 seconds a file: where only tests run them they do
# without it.
function(compile_fast)
  set_source_files_properties(${ARGN} PROPERTIES
    COMPILE_OPTIONS $<$<AND:$<BOOL:${DOT11_TESTS}>,$<CONFIG:RelWithDebInfo>>:-O0>)
endfunction()

if(DOT11_SANITIZE)
  # Checks of types need the C++ runtime, which the module and the library do without.
  add_compile_options(-fsanitize=${DOT11_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_options($<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
  add_link_options(-fsanitize=${DOT11_SANITIZE})
endif()

# Code that ships on the device: no exceptions, no RTTI, no guarded statics, and nothing of the C++ runtime. Functions with
# exported names stay replaceable, also within one file.
add_library(device_code INTERFACE)
target_compile_options(device_code INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
  -fvisibility=hidden -fsemantic-interposition -ffunction-sections -fdata-sections)
