#include "support/assertion.h"

#include <cstdio>
#include <cstdlib>

namespace Tarnwick::Parser {

void assertionFailed(const char* expression, const char* file, int line,
                     const char* function) noexcept {
    (void)std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function,
                       expression);  // Nothing is left to do about a failure to print.
    std::abort();
}

}  // namespace Tarnwick::Parser
