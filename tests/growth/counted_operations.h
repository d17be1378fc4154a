#pragma once

#include <cstdint>

/// What the process has done since it started, on texts above all.
struct CountedOperations {
    std::uint64_t comparisons = 0;  ///< of bytes: calls of memcmp
    std::uint64_t copiedBytes = 0;  ///< by memcpy and memmove
    std::uint64_t allocations = 0;
    std::uint64_t allocatedBytes = 0;
};

/// Returns the counts so far.
[[nodiscard]] CountedOperations countedOperations();
