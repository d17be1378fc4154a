#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace Fuzz {

/// The lines of a file; a last line without a line feed counts.
inline std::vector<std::string> linesOf(const std::string& content) {
    std::vector<std::string> lines;
    std::istringstream stream(content);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The text without the white space at its ends; empty when there is nothing else.
inline std::string plainTrim(const std::string& text) {
    const char* whiteSpace = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    const std::size_t last = text.find_last_not_of(whiteSpace);
    return first == text.npos ? "" : text.substr(first, last - first + 1);
}

/// A text that `trim` refuses.
inline bool isWhiteSpaceAlone(const std::string& text) {
    return !text.empty() && plainTrim(text).empty();
}

}  // namespace Fuzz
