#pragma once

#include <algorithm>
#include <string_view>

namespace Tarnwick::Parser {

/// The characters of group and key names, in ascending character-code order.
inline constexpr std::string_view kNameCharacters =
    " -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";

/// A set of byte values that is laid out at compile time, so that a question costs one look.
class CharacterSet {
public:
    constexpr explicit CharacterSet(std::string_view characters) {
        for (const char character : characters) {
            member_[static_cast<unsigned char>(character)] = true;
        }
    }

    [[nodiscard]] constexpr bool has(char character) const {
        return member_[static_cast<unsigned char>(character)];
    }

private:
    bool member_[256] = {};
};

/// Returns whether `text` consists of characters of `permitted` alone and holds every character
/// of `required` at least once. The empty text passes when nothing is required.
[[nodiscard]] constexpr bool isMadeOf(std::string_view text, const CharacterSet& permitted,
                                      std::string_view required = {}) {
    const auto isPermitted = [&](char character) { return permitted.has(character); };
    const auto occurs = [&](char character) { return text.find(character) != text.npos; };
    return std::all_of(text.begin(), text.end(), isPermitted) &&
           std::all_of(required.begin(), required.end(), occurs);
}

}  // namespace Tarnwick::Parser
