#include "config/check/rules.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Tarnwick::Parser::ConfigTool {
namespace {

using enum RuleId;
constexpr Severity kError = Severity::Error;
constexpr Severity kWarning = Severity::Warning;

// clang-format off
constexpr std::array kRules{
    Rule{Unreadable,          "unreadable",           kError,   "cannot be read: {name}", "",
         "a thing named *.conf is no regular file or cannot be read"},
    Rule{NoConfiguration,     "no-configuration",     kError,   "no directory holds a file named '*.conf'", "",
         "no directory holds a file"},
    Rule{UnexpectedLine,      "unexpected-line",      kError,   "no line begins with '{name}'", "",
         "a line that begins with none of the characters of a group, a key or a comment"},
    Rule{GroupNotClosed,      "group-not-closed",     kError,   "expected ']' at the end of the line", "",
         "a group header that does not end in ']'"},
    Rule{GroupCharacters,     "group-characters",     kError,   "no group's name holds '{name}'", "",
         "a character that no group's name may hold"},
    Rule{KeyWithoutValue,     "key-without-value",    kError,   "expected '=' after the key", "",
         "a key line without '='"},
    Rule{KeyCharacters,       "key-characters",       kError,   "no key holds '{name}'", "",
         "a character that no key may hold"},
    Rule{TemplateDollar,      "template-dollar",      kError,   "expected '{' or '$' after '$'", "write '$$' for a '$'",
         "a '$' that stands alone"},
    Rule{TemplateNotClosed,   "template-not-closed",  kError,   "expected '}' at the end of the template", "",
         "a '${' without '}'"},
    Rule{UnknownVariable,     "unknown-variable",     kError,   "no variable is named '{name}'", "",
         "a template of a variable that there is not"},
    Rule{UnknownSource,       "unknown-source",       kError,   "no source is named '{name}'", "",
         "a template of a source that there is not"},
    Rule{ReferenceForm,       "reference-form",       kError,   "'{name}' names no group and key", "write '${config:GROUP/KEY}'",
         "a config template without a group and a key"},
    Rule{EnvironmentFileForm, "envfile-form",         kError,   "'{name}' names no path and variable", "write '${envfile:PATH:VARIABLE}'",
         "an envfile template without a path and a variable"},
    Rule{GeneratedTemplate,   "generated-template",   kError,   "'{name}' is read before any variable is known", "",
         "a variable in one of the five generated keys, which are read before any variable is known"},
    Rule{BlankValue,          "blank-value",          kError,   "the value is {name} alone: every request fails", "remove the white space; 'KEY=' unsets a key",
         "a value of white space alone, or of white space and references alone: every request ends with status 1"},
    Rule{ReferenceShift,      "reference-shift",      kError,   "white space is trimmed from the value, and the reference {name}", "remove the white space, or put other characters before and behind it",
         "white space trimmed from a text that holds references: an error where a reference comes to lie past the end, a warning where text moves", true},
    Rule{ReferenceCircle,     "reference-circle",     kError,   "the key leads back to itself: {name}", "",
         "keys that lead back to themselves"},
    Rule{ReferenceTooMany,    "reference-too-many",   kError,   "the value draws on more than {name} other values", "",
         "more references, and references of references, than one resolution may visit"},
    Rule{ReferenceUndefined,  "reference-undefined",  kWarning, "no file sets the key '{name}'", "",
         "a reference to a key that no file sets, or whose last word is to unset it; only when all paths are directories"},
    Rule{UnknownGroup,        "unknown-group",        kWarning, "no reader knows the group '{name}'", "",
         "a group outside the vocabulary; keys before any group count once a file"},
    Rule{UnknownKey,          "unknown-key",          kWarning, "no reader knows the key '{name}'", "",
         "a key outside the vocabulary of its group"},
    Rule{KeyBlank,            "key-blank",            kWarning, "the key '{name}' ends in a blank", "write 'KEY=VALUE' without blanks around the '='",
         "a key that ends in a blank"},
    Rule{CommentInValue,      "comment-in-value",     kWarning, "the '#' and all behind it belong to the value", "a comment is a line of its own",
         "a blank and '#' in a value: there are no comments behind values"},
    Rule{QuotedValue,         "quoted-value",         kWarning, "the quotes are part of the value", "",
         "a value in quotes: they are part of it"},
    Rule{CarriageReturn,      "carriage-return",      kWarning, "carriage return {name}", "save the file with line feeds alone",
         "a line with a carriage return, once a file"},
    Rule{NotUtf8,             "not-utf8",             kWarning, "no UTF-8 {name}", "",
         "a line that is no UTF-8, once a file"},
    Rule{NulByte,             "nul-byte",             kWarning, "the line holds a NUL byte", "",
         "a NUL byte in a line that is read all the same"},
    Rule{NoFinalNewline,      "no-final-newline",     kWarning, "expected a line feed at the end of the file", "",
         "a last line without a line feed"},
    Rule{BadNumber,           "bad-number",           kWarning, "'{name}' is no number", "",
         "a BaseUid or UserId that is no number"},
    Rule{MountEntry,          "mount-entry",          kWarning, "no mount entry: {name}", "write 'SOURCE TARGET TYPE OPTIONS 0 0'",
         "a piece of Mounts that is no mount entry"},
    Rule{LoggingLevel,        "logging-level",        kWarning, "'{name}' is no level", "write critical, error, warning, info or debug",
         "a level in the group Logging that no logger takes"},
    Rule{LoggingTarget,       "logging-target",       kWarning, "'{name}' is no target", "write systemd, stdout, stderr or an absolute path",
         "a LogTarget in the group Logging that no logger takes"},
    Rule{FileOrder,           "file-order",           kWarning, "is read after '{name}': names are sorted by byte, not by number", "give all numbers the same count of digits",
         "names that sort otherwise by number than by byte"},
    Rule{FileNotRead,         "file-not-read",        kWarning, "is not read: {name}", "",
         "names in a directory that look meant but are not read"},
    Rule{PathPattern,         "path-pattern",         kWarning, "the path holds '{name}' and is taken for a pattern", "",
         "a directory whose path holds '*', '?', '[' or '\\' and so is a pattern"},
    Rule{WritableByOthers,    "writable-by-others",   kWarning, "everybody may write it, and so run commands as every reader", "",
         "a file or directory that everybody may write"},
};
// clang-format on
static_assert(
    [] {
        std::size_t index = 0;
        for (const Rule& rule : kRules) {
            if (static_cast<std::size_t>(rule.id) != index++) {
                return false;
            }
        }
        return index == static_cast<std::size_t>(WritableByOthers) + 1;
    }(),
    "misplaced row");

}  // namespace

std::span<const Rule> rules() {
    return kRules;
}

const Rule& ruleOf(RuleId id) {
    return kRules.at(static_cast<std::size_t>(id));
}

const Rule* findRule(std::string_view name) {
    const auto row = std::find_if(kRules.begin(), kRules.end(),
                                  [name](const Rule& rule) { return rule.name == name; });
    return row == kRules.end() ? nullptr : &*row;
}

std::string_view nameOf(Severity severity) {
    return severity == Severity::Error ? "error" : "warning";
}

std::string severitiesOf(const Rule& rule) {
    std::string names(nameOf(rule.severity));
    if (rule.mayBeWarning) {
        names.append(1, ',').append(nameOf(Severity::Warning));
    }
    return names;
}

}  // namespace Tarnwick::Parser::ConfigTool
