#include "config/ini_text.h"

#include "support/trim.h"

namespace Tarnwick::Parser::ConfigTool {

std::string_view iniProblem(std::string_view value) {
    if (value.empty()) {
        return "it is empty";
    }
    if (value.find(';') != value.npos) {
        return "it holds ';'";
    }
    if (value.find('\n') != value.npos) {
        return "it holds a line feed";
    }
    if (isSpace(value.front()) || isSpace(value.back())) {
        return "it has white space at its ends";
    }
    return {};
}

std::string iniText(std::string_view value) {
    std::string text;
    for (const char character : value) {
        text.append(character == '$' ? 2 : 1, character);
    }
    return text;
}

}  // namespace Tarnwick::Parser::ConfigTool
