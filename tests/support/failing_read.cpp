// A library that stands before the C library: files by names that begin with "failing" end with an
// I/O error where others end.

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

bool isFailing(int descriptor) {
    std::array<char, 64> link{};
    std::array<char, 4096> path{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    return readlink(link.data(), path.data(), path.size() - 1) > 0 &&
           std::strstr(path.data(), "/failing") != nullptr;
}

}  // namespace

extern "C" ssize_t read(int descriptor, void* buffer, size_t size) {
    using Read = ssize_t (*)(int, void*, size_t);
    const auto readOn = reinterpret_cast<Read>(dlsym(RTLD_NEXT, "read"));
    const ssize_t count = readOn(descriptor, buffer, size);
    if (count == 0 && isFailing(descriptor)) {
        errno = EIO;
        return -1;
    }
    return count;
}
