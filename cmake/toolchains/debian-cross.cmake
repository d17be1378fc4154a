# What the cross builds share: Debian's cross compiler, the sysroot of scripts/make-sysroot, and the
# emulator that runs what was built. The including file has set `debian_architecture` (the name in
# Debian), `gnu_triplet` (the compiler's prefix) and CMAKE_SYSTEM_PROCESSOR (the emulator's name).
set(CMAKE_SYSTEM_NAME Linux)
cmake_path(SET CMAKE_SYSROOT NORMALIZE
    "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot-${debian_architecture}")

set(CMAKE_C_COMPILER ${gnu_triplet}-gcc)
set(CMAKE_CXX_COMPILER ${gnu_triplet}-g++)

# Libraries, headers and packages come from the sysroot alone, programs from this machine.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
    "${CMAKE_SYSROOT}/usr/lib/${gnu_triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR}-static -L "${CMAKE_SYSROOT}")
