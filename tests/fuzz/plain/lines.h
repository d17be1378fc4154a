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

}  // namespace Fuzz
