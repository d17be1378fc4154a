#include "config/check/fault.h"

#include <algorithm>

namespace Tarnwick::Parser::ConfigTool {
namespace {

// A line up to this length is shown as it is; of a longer one so much before the fault.
constexpr std::size_t kLongestExcerpt = 160;
constexpr std::size_t kBeforeFault = 60;

constexpr std::string_view kHole = "{name}";

bool isInsideCharacter(std::string_view text, std::size_t offset) {
    return offset < text.size() && (static_cast<unsigned char>(text[offset]) & 0xc0U) == 0x80U;
}

std::size_t characterStart(std::string_view text, std::size_t offset) {
    for (int steps = 0; steps < 3 && offset > 0 && isInsideCharacter(text, offset); ++steps) {
        --offset;
    }
    return offset;
}

Excerpt excerptOf(std::string_view line, Span span) {
    if (line.size() <= kLongestExcerpt) {
        return {.text = std::string(line)};
    }
    const std::size_t first =
        characterStart(line, span.first > kBeforeFault ? span.first - kBeforeFault : 0);
    const std::size_t end = characterStart(line, std::min(first + kLongestExcerpt, line.size()));
    return {.text = std::string(line.substr(first, end - first)),
            .first = first,
            .isCutBefore = first > 0,
            .isCutBehind = end < line.size()};
}

}  // namespace

Span spanOf(std::string_view part, std::string_view whole) {
    const auto first = static_cast<std::size_t>(part.data() - whole.data());
    return {first, first + part.size()};
}

std::string wordsOf(RuleId rule, std::string_view name) {
    const std::string_view words = ruleOf(rule).words;
    const std::size_t hole = words.find(kHole);
    if (hole == words.npos) {
        return std::string(words);
    }
    return std::string(words.substr(0, hole))
        .append(name)
        .append(words.substr(hole + kHole.size()));
}

Fault makeFault(RuleId rule, const SourceLine& line, Span span, std::string_view name) {
    const Rule& row = ruleOf(rule);
    Fault fault{.rule = rule,
                .severity = row.severity,
                .path = std::string(line.path),
                .line = line.number,
                .message = wordsOf(rule, name),
                .hint = row.hint};
    if (line.number > 0) {
        fault.firstColumn = span.first + 1;
        fault.lastColumn = std::max(span.end, fault.firstColumn);
        fault.excerpt = excerptOf(line.text, span);
    }
    return fault;
}

}  // namespace Tarnwick::Parser::ConfigTool
