#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "config/explain/last_words.h"
#include "config/explain/user_story.h"
#include "config_parser.h"

namespace Tarnwick::Parser::ConfigTool {

/// What a template of a value comes to when the value is asked for, and what that draws on.
struct Trace {
    enum class Kind : std::uint8_t {
        Source,     ///< a variable or a source: its text was found while loading
        Filled,     ///< a reference to a key that has a value
        Missing,    ///< a reference to a key without one: it comes to nothing
        Circle,     ///< a reference that leads back to a value it stands in
        TooMany,    ///< a reference to one value more than a request visits
        NotFilled,  ///< a reference of a value that nobody can ask for
    };

    Kind kind = Kind::Source;
    std::string name = {};                 ///< of the template, or GROUP/KEY
    std::optional<std::string> text = {};  ///< nothing when it cannot be filled
    std::string words = {};                ///< where it came from, or why it comes to nothing
    const LastWord* word = nullptr;        ///< Filled, Circle, TooMany: where its value stands
    std::string shift = {};         ///< Filled: what trimming its value does to its references
    std::vector<Trace> parts = {};  ///< Filled: the templates of its value
};

/// A value with all that it draws on.
struct TracedValue {
    std::vector<Trace> parts;
    std::optional<std::string> text;  ///< nothing when it cannot be filled
    std::string shift = {};           ///< what trimming does to its own references
};

/// Says why the value cannot be filled.
[[nodiscard]] std::string failureOf(const TracedValue& value);

/// Returns what came of the templates of a piece that is no value: its references lead nowhere.
[[nodiscard]] std::vector<Trace> unaskedTraces(std::span<const TemplateRecord> templates,
                                               const UserStory& story);

/// Follows the references of values to the end of the chain, in the order in which a request visits
/// them, and no further than one does. What it refers to has to outlive it. It logs nothing.
class ReferenceTracer {
public:
    ReferenceTracer(ConfigParser& parser, const LastWords& words, const UserStory& story)
        : parser_(parser), words_(words), story_(story) {}

    /// `written` is the value's text as it was written, and `templates` are those in it.
    [[nodiscard]] TracedValue trace(const ConfigValue& value,
                                    std::span<const TemplateRecord> templates,
                                    std::string_view written);

private:
    [[nodiscard]] TracedValue visit(const ConfigValue& value,
                                    std::span<const TemplateRecord> templates,
                                    std::string_view written);
    [[nodiscard]] Trace visitReference(const std::string& group, const std::string& key);
    void visitTarget(const ConfigValue& value, Trace& trace);
    [[nodiscard]] const ConfigValue* currentValue(const std::string& group, const std::string& key);

    ConfigParser& parser_;
    const LastWords& words_;
    const UserStory& story_;
    int visits_ = 0;
    std::vector<const ConfigValue*> path_;  // from the value that is asked for to this one
};

}  // namespace Tarnwick::Parser::ConfigTool
