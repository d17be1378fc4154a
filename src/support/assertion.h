#pragma once

namespace Tarnwick::Parser {

/// Prints "FILE:LINE: FUNCTION: Assertion `EXPRESSION' failed." on the error stream and aborts.
[[noreturn]] void assertionFailed(const char* expression, const char* file, int line,
                                  const char* function) noexcept;

}  // namespace Tarnwick::Parser

/// Aborts when `condition` is false. Unlike `assert` it stays in release builds: a caller's
/// mistake on a device in the field must not turn into undefined behaviour.
#define TARNWICK_ASSERT(condition)      \
    ((condition) ? static_cast<void>(0) \
                 : ::Tarnwick::Parser::assertionFailed(#condition, __FILE__, __LINE__, __func__))
