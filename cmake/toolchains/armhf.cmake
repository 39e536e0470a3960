# 32-bit ARM with hard floats. The compiler and its C and C++ libraries are Debian's cross packages; scripts/sysroot fetches
# the other libraries. Programs run under qemu's user emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)

# Everything is compiled by one compiler: that GCC 7 passes some arguments in another way needs no remark.
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi")

cmake_path(SET sysroot NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/armhf")
set(CMAKE_FIND_ROOT_PATH "${sysroot}" "/usr/${CMAKE_LIBRARY_ARCHITECTURE}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_C_STANDARD_INCLUDE_DIRECTORIES "${sysroot}/usr/include")
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES "${sysroot}/usr/include")

# The loader is named rather than found below a prefix (-L): with a prefix, "/" would be that folder.
find_program(DORN_QEMU_ARM NAMES qemu-arm qemu-arm-static REQUIRED)
set(libraries "/usr/${CMAKE_LIBRARY_ARCHITECTURE}/lib")
set(CMAKE_CROSSCOMPILING_EMULATOR
    "${DORN_QEMU_ARM};${libraries}/ld-linux-armhf.so.3;--library-path;${libraries}")
