#pragma once

#include <malloc.h>

#include <cstddef>
#include <functional>

namespace Tarnwick::Parser::Testing {

/// Returns by how many bytes the heap has grown after `times` calls of `work`. The first calls,
/// which fill what the C library keeps for good, do not count. 0 under a sanitizer, which has its
/// own heap and finds what is lost itself.
inline std::size_t heapGrowth(int times, const std::function<void()>& work) {
    const auto repeat = [&] {
        for (int call = 0; call < times; ++call) {
            work();
        }
    };
    repeat();
    const std::size_t before = mallinfo2().uordblks;
    repeat();
    const std::size_t after = mallinfo2().uordblks;
    return after > before ? after - before : 0;
}

}  // namespace Tarnwick::Parser::Testing
