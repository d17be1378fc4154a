#include "support/join_strings.h"

namespace Tarnwick::Parser {

std::string joinStrings(const std::vector<std::string>& texts, char separator) {
    std::string joined;
    for (const std::string& text : texts) {
        if (&text != &texts.front()) {
            joined += separator;
        }
        joined += text;
    }
    return joined;
}

}  // namespace Tarnwick::Parser
