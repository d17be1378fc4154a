#include "config/json.h"

#include <algorithm>
#include <cstdint>

#include "config/display.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string base64(std::string_view bytes) {
    std::string text;
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const std::string_view group = bytes.substr(index, 3);
        std::uint32_t bits = 0;
        for (std::size_t place = 0; place < 3; ++place) {
            bits =
                bits << 8U | (place < group.size() ? static_cast<unsigned char>(group[place]) : 0U);
        }
        for (std::size_t place = 0; place < 4; ++place) {
            text += place <= group.size() ? kDigits[bits >> (18 - 6 * place) & 0x3fU] : '=';
        }
    }
    return text;
}

// What stands for itself between quotes, as most texts do.
bool isPlain(char character) {
    return character >= ' ' && character < '\x7f' && character != '"' && character != '\\';
}

}  // namespace

void setText(Json& object, const std::string& name, std::string_view text) {
    object[name] = text;
    if (findInvalidUtf8(text) != text.npos) {
        object[name + kBytesSuffix] = base64(text);
    }
}

void appendText(std::string& line, std::string_view name, std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        line.append(1, '"').append(name).append("\":\"").append(text).append(1, '"');
        return;
    }
    Json object;
    setText(object, std::string(name), text);
    const std::string members = printed(object);
    line.append(members, 1, members.size() - 2);  // without the braces
}

std::string printed(const Json& value) {
    return value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

}  // namespace Tarnwick::Parser::ConfigTool
