#include "counted_operations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {
CountedOperations counted;
}  // namespace

CountedOperations countedOperations() {
    return counted;
}

// In the place of the C library's functions: whoever is linked into the program calls these.
extern "C" {

int memcmp(const void* left, const void* right, std::size_t size) {
    ++counted.comparisons;
    const auto* a = static_cast<const unsigned char*>(left);
    const auto* b = static_cast<const unsigned char*>(right);
    for (std::size_t index = 0; index < size; ++index) {
        if (a[index] != b[index]) {
            return a[index] < b[index] ? -1 : 1;
        }
    }
    return 0;
}

void* memmove(void* to, const void* from, std::size_t size) {
    counted.copiedBytes += size;
    auto* target = static_cast<unsigned char*>(to);
    const auto* source = static_cast<const unsigned char*>(from);
    if (target < source) {
        for (std::size_t index = 0; index < size; ++index) {
            target[index] = source[index];
        }
    } else {
        for (std::size_t index = size; index > 0; --index) {
            target[index - 1] = source[index - 1];
        }
    }
    return to;
}

void* memcpy(void* to, const void* from, std::size_t size) {
    return memmove(to, from, size);
}
}

void* operator new(std::size_t size) {
    ++counted.allocations;
    counted.allocatedBytes += size;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
