#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "support/split_string.h"

namespace Fuzz {

/// What `splitString` is to return, said with the line extraction of text streams.
inline std::vector<std::string> plainSplit(const std::string& text, char separator, int maxSplits,
                                           Tarnwick::Parser::EmptyMode mode) {
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    std::string piece;
    for (int cut = 0; maxSplits < 0 || cut < maxSplits; ++cut) {
        if (!std::getline(stream, piece, separator)) {
            break;
        }
        pieces.push_back(piece);
    }
    if (std::getline(stream, piece, '\n')) {
        pieces.push_back(piece);
    } else if (mode == Tarnwick::Parser::KeepEmptyAtEnd &&
               (text.empty() || text.back() == separator)) {
        pieces.push_back("");
    }
    if (mode == Tarnwick::Parser::SkipEmpty) {
        std::erase(pieces, "");
    }
    return pieces;
}

}  // namespace Fuzz
