#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Tarnwick::Parser::ConfigTool {

enum class Severity : std::uint8_t {
    Error,    ///< a request ends with status 1 or costs an ERROR record, whatever sources answer
    Warning,  ///< the rest
};

enum class RuleId : std::uint8_t {
    Unreadable,
    NoConfiguration,
    UnexpectedLine,
    GroupNotClosed,
    GroupCharacters,
    KeyWithoutValue,
    KeyCharacters,
    TemplateDollar,
    TemplateNotClosed,
    UnknownVariable,
    UnknownSource,
    ReferenceForm,
    EnvironmentFileForm,
    GeneratedTemplate,
    BlankValue,
    ReferenceShift,
    ReferenceCircle,
    ReferenceTooMany,
    ReferenceUndefined,
    UnknownGroup,
    UnknownKey,
    KeyBlank,
    CommentInValue,
    QuotedValue,
    CarriageReturn,
    NotUtf8,
    NulByte,
    NoFinalNewline,
    BadNumber,
    MountEntry,
    LoggingLevel,
    LoggingTarget,
    FileOrder,
    FileNotRead,
    PathPattern,
    WritableByOthers,
};

/// One kind of fault.
struct Rule {
    RuleId id;
    std::string_view name;
    Severity severity;
    std::string_view words;     ///< of the message; "{name}" stands for the text at fault
    std::string_view hint;      ///< what to do about it, or empty
    std::string_view manual;    ///< when it is found, for the list of ids
    bool mayBeWarning = false;  ///< an error that is a warning in lesser cases
};

/// Returns all rules, by `RuleId`.
[[nodiscard]] std::span<const Rule> rules();

[[nodiscard]] const Rule& ruleOf(RuleId id);

/// Returns the rule of that name, or null.
[[nodiscard]] const Rule* findRule(std::string_view name);

[[nodiscard]] std::string_view nameOf(Severity severity);

/// Returns the names of all severities that faults of the rule may have, with commas between.
[[nodiscard]] std::string severitiesOf(const Rule& rule);

}  // namespace Tarnwick::Parser::ConfigTool
