#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Tarnwick::Parser::ConfigTool {

/// One character of a text.
struct Character {
    char32_t code = 0;
    std::size_t length = 1;  ///< in bytes
    bool isValid = false;    ///< false: one byte that is no UTF-8
};

/// Returns the first character of a text that is not empty.
[[nodiscard]] Character firstCharacter(std::string_view text);

/// Returns the offset of the first byte that is no UTF-8, or npos.
[[nodiscard]] std::size_t findInvalidUtf8(std::string_view text);

/// A text that may be shown to people, and its width in columns of a terminal.
struct Shown {
    std::string text;
    std::size_t width = 0;
};

/// Returns the text with "\xHH" for every byte that could drive a terminal or forge a line:
/// controls, line feeds, bidirectional controls, and what is no UTF-8.
[[nodiscard]] Shown shown(std::string_view text);

/// The same without the width.
[[nodiscard]] std::string escaped(std::string_view text);

/// Returns the text, or its first bytes and "..." when it is long, for use in a sentence.
[[nodiscard]] std::string shortened(std::string_view text);

}  // namespace Tarnwick::Parser::ConfigTool
