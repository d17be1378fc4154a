#pragma once

#include <algorithm>
#include <string_view>

namespace Tarnwick::Parser {

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

/// Returns whether every character of `text` is one of `set`. The empty text has none that is not.
[[nodiscard]] constexpr bool consistsOf(std::string_view text, const CharacterSet& set) {
    return std::all_of(text.begin(), text.end(),
                       [&](char character) { return set.has(character); });
}

}  // namespace Tarnwick::Parser
