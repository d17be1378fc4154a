#include "config/display.h"

#include <algorithm>
#include <array>

namespace Tarnwick::Parser::ConfigTool {
namespace {

/// The first byte of a character: how long it is, and the smallest code of that length.
struct LeadRow {
    unsigned char mask;
    unsigned char bits;
    std::size_t length;
    char32_t smallest;
};
constexpr std::array kLeads{
    LeadRow{0x80, 0x00, 1, 0},
    LeadRow{0xe0, 0xc0, 2, 0x80},
    LeadRow{0xf0, 0xe0, 3, 0x800},
    LeadRow{0xf8, 0xf0, 4, 0x10000},
};

constexpr Character kNoCharacter{};

bool isSurrogate(char32_t code) {
    return code >= 0xd800 && code <= 0xdfff;
}

Character decode(std::string_view text, const LeadRow& lead) {
    if (text.size() < lead.length) {
        return kNoCharacter;
    }
    char32_t code =
        static_cast<unsigned char>(text.front()) & static_cast<unsigned char>(~lead.mask);
    for (const char byte : text.substr(1, lead.length - 1)) {
        const auto bits = static_cast<unsigned char>(byte);
        if ((bits & 0xc0U) != 0x80U) {
            return kNoCharacter;
        }
        code = code << 6U | (bits & 0x3fU);
    }
    const bool isValid = code >= lead.smallest && code <= 0x10ffff && !isSurrogate(code);
    return isValid ? Character{code, lead.length, true} : kNoCharacter;
}

struct Range {
    char32_t first;
    char32_t last;
};

template <std::size_t N>
bool isIn(char32_t code, const std::array<Range, N>& ranges) {
    return std::any_of(ranges.begin(), ranges.end(), [code](const Range& range) {
        return code >= range.first && code <= range.last;
    });
}

// Controls of ASCII and of Latin-1, those that change the direction of the text around them, and
// the byte-order mark, which nobody sees.
constexpr std::array kDangerous{
    Range{0x00, 0x1f},     Range{0x7f, 0x9f},     Range{0x61c, 0x61c},   Range{0x200e, 0x200f},
    Range{0x2028, 0x202e}, Range{0x2066, 0x2069}, Range{0xfeff, 0xfeff},
};
constexpr std::array kWithoutWidth{
    Range{0x300, 0x36f},   Range{0x200b, 0x200d}, Range{0x20d0, 0x20ff},
    Range{0xfe00, 0xfe0f}, Range{0xfe20, 0xfe2f},
};
constexpr std::array kWide{
    Range{0x1100, 0x115f},   Range{0x2e80, 0x303e},   Range{0x3041, 0xa4cf},
    Range{0xac00, 0xd7a3},   Range{0xf900, 0xfaff},   Range{0xfe30, 0xfe6f},
    Range{0xff00, 0xff60},   Range{0xffe0, 0xffe6},   Range{0x1f300, 0x1f64f},
    Range{0x1f680, 0x1f6ff}, Range{0x1f7e0, 0x1f7eb}, Range{0x1f900, 0x1f9ff},
    Range{0x1fa70, 0x1faff}, Range{0x20000, 0x3fffd},
};

std::size_t widthOf(char32_t code) {
    if (code < 0x300) {
        return 1;
    }
    if (isIn(code, kWithoutWidth)) {
        return 0;
    }
    return isIn(code, kWide) ? 2 : 1;
}

void appendHexadecimal(std::string& text, std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        text.append("\\x").append(1, kDigits[number >> 4U]).append(1, kDigits[number & 0xfU]);
    }
}

constexpr std::size_t kHexadecimalWidth = 4;
constexpr std::size_t kLongestName = 80;

}  // namespace

Character firstCharacter(std::string_view text) {
    const auto byte = static_cast<unsigned char>(text.front());
    for (const LeadRow& lead : kLeads) {
        if ((byte & lead.mask) == lead.bits) {
            return decode(text, lead);
        }
    }
    return kNoCharacter;
}

std::size_t findInvalidUtf8(std::string_view text) {
    std::size_t offset = 0;
    while (offset < text.size()) {
        if (static_cast<unsigned char>(text[offset]) < 0x80) {
            ++offset;  // what most bytes are
            continue;
        }
        const Character character = firstCharacter(text.substr(offset));
        if (!character.isValid) {
            return offset;
        }
        offset += character.length;
    }
    return text.npos;
}

Shown shown(std::string_view text) {
    Shown result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.length);
        if (!character.isValid || isIn(character.code, kDangerous)) {
            appendHexadecimal(result.text, bytes);
            result.width += kHexadecimalWidth * bytes.size();
        } else {
            result.text += bytes;
            result.width += widthOf(character.code);
        }
        text.remove_prefix(bytes.size());
    }
    return result;
}

std::string escaped(std::string_view text) {
    return shown(text).text;
}

std::string shortened(std::string_view text) {
    if (text.size() <= kLongestName) {
        return std::string(text);
    }
    std::size_t end = kLongestName;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U) {
        --end;  // not in the middle of a character
    }
    return std::string(text.substr(0, end)) + "...";
}

}  // namespace Tarnwick::Parser::ConfigTool
