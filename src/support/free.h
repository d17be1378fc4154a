#pragma once

#include <cstdlib>

namespace Tarnwick::Parser {

/// Deletes for a `std::unique_ptr` what a C function has handed over in memory from `malloc`.
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

}  // namespace Tarnwick::Parser
