#include "support/trim.h"

#include <algorithm>
#include <cctype>

namespace Tarnwick::Parser {

bool isSpace(char character) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isVisible = byte > ' ' && byte < 0x7f;  // in every locale: most need no call
    return !isVisible && std::isspace(byte) != 0;
}

std::string trim(std::string_view text) {
    return std::string(trimmed(text));
}

std::string_view trimmed(std::string_view text) {
    if (text.empty()) {
        return text;
    }
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    if (first == text.end()) {
        throw BlankText("a text of white space alone cannot be trimmed");
    }
    const auto last = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
    return {first, last};
}

}  // namespace Tarnwick::Parser
