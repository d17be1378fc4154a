#include "support/split_string.h"

namespace Tarnwick::Parser {

std::vector<std::string> splitString(std::string_view text, char separator, int maxSplits,
                                     EmptyMode emptyMode) {
    std::vector<std::string> pieces;
    const auto add = [&](std::string_view piece) {
        if (emptyMode != SkipEmpty || !piece.empty()) {
            pieces.emplace_back(piece);
        }
    };

    std::string_view rest = text;
    std::string_view piece;
    for (int left = maxSplits; left != 0 && takePiece(rest, separator, piece);) {
        add(piece);
        if (left > 0) {
            --left;
        }
    }

    const bool isCutToTheEnd = rest.empty() && (text.empty() || text.back() == separator);
    if (emptyMode == KeepEmptyAtEnd && isCutToTheEnd) {
        add("");
    } else if (takePiece(rest, '\n', piece)) {
        add(piece);
    }
    return pieces;
}

}  // namespace Tarnwick::Parser
