#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "load_event.h"

namespace Tarnwick::Parser::ConfigTool {

/// A line of a file. The path belongs to the history of the load.
struct LineOrigin {
    const std::string* path = nullptr;
    std::uint32_t line = 0;
};

/// Returns "PATH:LINE".
[[nodiscard]] std::string placeText(const LineOrigin& origin);

/// What one template came to, kept beyond the event that told it.
struct TemplateRecord {
    std::string name;  ///< all between the braces
    TemplateResult result = TemplateResult::Failed;
    std::string text;  ///< Resolved: the replacement
};

[[nodiscard]] std::vector<TemplateRecord> recordsOf(std::span<const TemplateOutcome> outcomes);

/// The assignment that decided what a key is now.
struct LastWord {
    enum class Kind : std::uint8_t {
        Stored,   ///< it stored the current value
        Removed,  ///< it unset the key
        Dropped,  ///< the key has no value, and this piece was not stored
    };
    /// What a plain value does without.
    struct Details {
        std::string piece;
        std::vector<TemplateRecord> templates;
        std::string reason;  ///< Dropped: why
    };

    Kind kind = Kind::Stored;
    LineOrigin origin;
    std::unique_ptr<Details> details;  ///< null for a value without templates
};

/// The last word on every key. Of most keys it holds no more than the line.
class LastWords {
public:
    void note(const LoadEvent& event, const LineOrigin& origin);

    /// Returns null for a key that no file names.
    [[nodiscard]] const LastWord* find(const std::string& group, const std::string& key) const;

private:
    std::unordered_map<std::string, LastWord> words_;  // by GROUP/KEY: no name holds a '/'
};

}  // namespace Tarnwick::Parser::ConfigTool
