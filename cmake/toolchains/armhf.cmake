# 32-bit ARM with a floating point unit.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(debian_architecture armhf)
set(gnu_triplet arm-linux-gnueabihf)
include("${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake")
