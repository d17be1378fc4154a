# 32-bit ARM with a floating point unit.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(debian_architecture armhf)
set(gnu_triplet arm-linux-gnueabihf)
include("${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake")

# Files over 2 GiB and times after 2038 exist on a 32-bit machine as well.
set(CMAKE_CXX_FLAGS_INIT "-D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64")
