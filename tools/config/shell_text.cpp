#include "config/shell_text.h"

#include <algorithm>

namespace Tarnwick::Parser::ConfigTool {
namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// In every locale the same.
bool isNameCharacter(char character) {
    return isDigit(character) || character == '_' || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
}

}  // namespace

std::string shellName(std::string_view name) {
    std::string result(name);
    std::replace_if(
        result.begin(), result.end(), [](char each) { return !isNameCharacter(each); }, '_');
    return result;
}

bool isShellName(std::string_view name) {
    return !name.empty() && !isDigit(name.front()) &&
           std::all_of(name.begin(), name.end(), isNameCharacter);
}

// Between single quotes nothing but a single quote has a meaning.
std::string shellQuoted(std::string_view text) {
    std::string result = "'";
    for (const char character : text) {
        if (character == '\'') {
            result += "'\\''";
        } else {
            result += character;
        }
    }
    return result + '\'';
}

}  // namespace Tarnwick::Parser::ConfigTool
