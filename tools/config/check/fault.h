#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "config/check/rules.h"

namespace Tarnwick::Parser::ConfigTool {

/// A line of a file, without its line feed.
struct SourceLine {
    std::string_view path;
    std::uint32_t number = 0;  ///< counted from 1; 0 stands for the file as a whole
    std::string_view text = {};
};

/// Offsets of the first byte at fault and behind the last. Equal where something is missing.
struct Span {
    std::size_t first = 0;
    std::size_t end = 0;
};

/// Returns where `part` stands in `whole`, of which it is a view.
[[nodiscard]] Span spanOf(std::string_view part, std::string_view whole);

/// What a report shows of a line: all of it, or what stands around the fault in a long one.
struct Excerpt {
    std::string text;
    std::size_t first = 0;  ///< offset of the text in the line
    bool isCutBefore = false;
    bool isCutBehind = false;
};

/// One thing that was found. It owns all its texts, and none is long.
struct Fault {
    RuleId rule;
    Severity severity;
    std::string path;
    std::uint32_t line = 0;  ///< 0: the file as a whole, and so without columns and excerpt
    std::size_t firstColumn = 0;
    std::size_t lastColumn = 0;
    std::string message;
    std::string_view hint;  ///< a constant, or empty
    Excerpt excerpt = {};
};

/// Receives faults in the moment they are found.
using FaultSink = std::function<void(const Fault& fault)>;

/// Returns the rule's words with the name in their place.
[[nodiscard]] std::string wordsOf(RuleId rule, std::string_view name);

/// Makes a fault of the rule's words and hint; `name` is the text at fault.
[[nodiscard]] Fault makeFault(RuleId rule, const SourceLine& line, Span span = {},
                              std::string_view name = {});

}  // namespace Tarnwick::Parser::ConfigTool
