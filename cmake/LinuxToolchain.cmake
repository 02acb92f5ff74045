# Builds for Linux on another processor, CMAKE_SYSTEM_PROCESSOR (aarch64, arm or s390x), with Debian's
# cross compilers. Tests run under QEMU's user-mode emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(triplet ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
  set(triplet arm-linux-gnueabihf)
endif()
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
list(APPEND CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L /usr/${triplet})
# The checks of the compiler read this file too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_SYSTEM_PROCESSOR)
