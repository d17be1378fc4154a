#pragma once

#include <functional>
#include <string>

namespace Tarnwick::Parser {

/// Turns text into a value of type `T`. The flag, when it is not null, is set to whether the text
/// was a valid value of the type; the value is returned either way.
template <typename T>
using ValueConverter = std::function<T(const std::string& text, bool* ok)>;

/// Returns true exactly when `text` is "true". `*ok` is true for "true" and "false" and false for
/// everything else; letter case and surrounding blanks count.
bool parseBool(const std::string& text, bool* ok);

/// Reads a number in the classic locale: optional leading white space, an optional sign, digits.
/// A text that begins with "0x" (lower-case x, at the very start) is read as hexadecimal.
///
/// `*ok` is true when a number was read and nothing follows it, not even a blank. The result is
/// what the extraction left: 0 when there is no number, the type's limit on overflow, the number
/// read so far when characters follow it. "0x1F" is 31, "12 " is 12 and not ok.
int parseInt(const std::string& text, bool* ok);

/// As `parseInt`, for `long long`.
long long parseLongLong(const std::string& text, bool* ok);

/// As `parseInt`, for `double` ("3.5", "1e3"). Hexadecimal floating-point text is not readable:
/// "0x1" yields 0 and is not ok; callers depend on it.
double parseDouble(const std::string& text, bool* ok);

}  // namespace Tarnwick::Parser
