#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "api.h"
#include "diagnostic.h"
#include "parser_types.h"

namespace Tarnwick::Parser {

/// Where the text of a template "${SOURCE:ARGUMENT}" comes from. New sources go to the end:
/// programs are built with these numbers.
enum class TemplateSource : std::int32_t { Env, EnvFile, RealPath, Dconf, Prop, System };

/// One part of a value's text. All views point into the text. Programs make tokens, so the fields
/// stay as they are within a major version; so do those of `TemplateOutcome`.
struct TemplateToken {
    /// What the part is.
    enum class Kind : std::int32_t {
        Literal,    ///< stands for `text`
        Variable,   ///< "${NAME}"
        Source,     ///< "${SOURCE:ARGUMENT}"
        Reference,  ///< "${config:GROUP/KEY}"
        Fault,      ///< `problem` says what is wrong
    };

    Kind kind = Kind::Literal;   ///< what the part is; it decides which of the others are set
    std::size_t first = 0;       ///< offset of the first byte of the token in the text
    std::size_t end = 0;         ///< offset behind its last byte
    std::string_view text = {};  ///< Literal: what it stands for, one "$" for "$$"
    std::string_view name = {};  ///< of a template: all between the braces

    TemplateSource source = TemplateSource::Env;  ///< Source: which
    std::string_view argument = {};               ///< all behind the first ':' of the name
    std::string_view path = {};                   ///< Source EnvFile: the file
    std::string_view variable = {};               ///< Source EnvFile: the variable in it
    std::string_view group = {};                  ///< Reference: the group
    std::string_view key = {};                    ///< Reference: the key

    Problem problem = Problem::TemplateDollar;  ///< Fault: what is wrong
};

/// What one template of a text came to.
struct TemplateOutcome {
    std::string_view name;          ///< all between the braces
    std::uint32_t firstColumn = 0;  ///< of the '$', in the file's line or in the text expanded
    std::uint32_t lastColumn = 0;   ///< of the '}'
    TemplateResult result = TemplateResult::Failed;  ///< what came of it
    std::string text = {};                           ///< Resolved: the replacement
    std::string_view group = {};                     ///< Reference: the group it names
    std::string_view key = {};                       ///< Reference: the key it names
};

/// Returns what the template `name`, the text between "${" and "}", is: a variable, a source, a
/// reference, or the fault UnknownSource, ReferenceForm or EnvironmentFileForm. Whether there is
/// such a variable or key is not looked at. The offsets are those of the name itself.
[[nodiscard]] TARNWICK_API TemplateToken classifyTemplate(std::string_view name);

/// Returns the words that can stand before the ':' of a template.
[[nodiscard]] TARNWICK_API std::span<const std::string_view> templateSourceNames();

/// Walks a value's text token by token, and reads nothing but the text.
///
///     text     = { character | "$$" | "${" name "}" }
///     name     = variable | source ":" argument        no nesting, no escapes, nothing trimmed
///     source   = "config" | "env" | "envfile" | "realpath" | "dconf" | "prop" | "system"
///     argument = group "/" key [ "/" ]                 of config
///              | path ":" variable                     of envfile
///
/// "$$" is one "$". Any other character after a "$" is a fault, and so is the end of the text.
///
///     TemplateCursor cursor("x${HOME}");
///     TemplateToken token;
///     while (cursor.next(token)) { ... }  // Literal "x", Variable "HOME"
class TARNWICK_API TemplateCursor {
public:
    /// The text has to outlive the cursor and its tokens.
    explicit TemplateCursor(std::string_view text) : text_(text) {}

    /// Reads the next token. Returns false, and leaves `token` alone, at the end of the text. A
    /// fault takes the '$' alone, or the whole template where it is closed; it is possible to read
    /// on behind it. After TemplateNotClosed nothing is left.
    [[nodiscard]] bool next(TemplateToken& token);

private:
    [[nodiscard]] TemplateToken readLiteral();
    [[nodiscard]] TemplateToken readDollar();
    [[nodiscard]] TemplateToken take(TemplateToken token, std::size_t end);

    std::string_view text_;
    std::size_t position_ = 0;
};

}  // namespace Tarnwick::Parser
