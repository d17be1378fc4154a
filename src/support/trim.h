#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Tarnwick::Parser {

/// Thrown for a text of white space alone.
class BlankText : public std::length_error {
public:
    using std::length_error::length_error;
};

/// Returns whether the character is white space (`isspace(3)`).
[[nodiscard]] bool isSpace(char character);

/// Returns a copy of `text` without the white space (`isspace(3)`) at both ends. The empty text
/// stays empty.
///
/// Throws `BlankText` for a text that is not empty and holds white space alone. This is
/// deliberate, and callers depend on it: such a value is not taken for an empty one.
[[nodiscard]] std::string trim(std::string_view text);

/// The same as a part of `text` itself.
[[nodiscard]] std::string_view trimmed(std::string_view text);

}  // namespace Tarnwick::Parser
