#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tarnwick::Parser {

/// What `splitString` does with empty pieces.
enum EmptyMode : int {
    KeepEmpty = 0,       ///< keeps them; a separator at the end of the text adds none
    SkipEmpty = 1,       ///< leaves them out
    KeepEmptyAtEnd = 2,  ///< keeps them, one after a separator at the end and for an empty text too
};

/// The `maxSplits` of `splitString` that stands for as many splits as there are separators.
inline constexpr int kNoSplitLimit = -1;

/// Cuts `text` at `separator` and returns the pieces in order.
///
/// With `maxSplits` zero or greater at most that many pieces are cut off, a piece left out as
/// empty counted too. When anything remains, it is one last piece as far as its first line feed.
/// A negative `maxSplits` means no limit.
///
///     splitString("a::b:", ':', kNoSplitLimit, KeepEmpty)      // "a", "", "b"
///     splitString("a::b:", ':', kNoSplitLimit, SkipEmpty)      // "a", "b"
///     splitString("a::b:", ':', kNoSplitLimit, KeepEmptyAtEnd) // "a", "", "b", ""
///     splitString("N=a=b", '=', 1, KeepEmpty)                  // "N", "a=b"
[[nodiscard]] std::vector<std::string> splitString(std::string_view text, char separator,
                                                   int maxSplits, EmptyMode emptyMode);

/// Takes the next piece off the front of `rest`: the text before the first separator, which is
/// dropped, or all of it. Returns false, and leaves both alone, when nothing is left.
[[nodiscard]] inline bool takePiece(std::string_view& rest, char separator,
                                    std::string_view& piece) {
    if (rest.empty()) {
        return false;
    }
    const std::size_t end = rest.find(separator);
    piece = rest.substr(0, end);
    rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
    return true;
}

}  // namespace Tarnwick::Parser
