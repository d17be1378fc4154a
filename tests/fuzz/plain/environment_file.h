#pragma once

#include <optional>
#include <string>

#include "lines.h"

namespace Fuzz {

/// What one variable of an environment file is.
struct PlainVariable {
    std::optional<std::string> value;
    bool isRefused = false;  // a name or the value is white space alone: an exception
};

inline PlainVariable plainVariable(const std::string& content, const std::string& name) {
    PlainVariable variable;
    for (const std::string& line : linesOf(content)) {
        const std::size_t equals = line.find('=');
        if (equals == line.npos) {
            continue;
        }
        const std::string left = line.substr(0, equals);
        std::string right = line.substr(equals + 1);
        if (isWhiteSpaceAlone(left) || (plainTrim(left) == name && isWhiteSpaceAlone(right))) {
            variable.isRefused = true;
            return variable;
        }
        if (plainTrim(left) != name) {
            continue;
        }
        right = plainTrim(right);
        if (right.size() > 1 && right.front() == '"' && right.back() == '"') {
            right = right.substr(1, right.size() - 2);
        }
        variable.value = right;
    }
    return variable;
}

}  // namespace Fuzz
