#include "diagnostic.h"

#include <array>
#include <cstddef>

#include "logging/log_record.h"

namespace Tarnwick::Parser {
namespace {

using Level = Logging::LoggerConfig::Level;
using Logging::LoggerConfig;

struct ProblemRow {
    Problem problem;
    Level level;
    std::string_view words;  // names in braces stand for fields; empty: for listeners alone
};
// clang-format off
constexpr std::array kProblems{
    ProblemRow{Problem::UnexpectedLine,         LoggerConfig::LogError, "Unexpected line in {file} ({line}): '{text}'"},
    ProblemRow{Problem::GroupNotClosed,         LoggerConfig::LogError, "Could not parse line as group in {file} ({line}): '{text}'"},
    ProblemRow{Problem::GroupCharacters,        LoggerConfig::LogError, "Group name contains invalid characters in {file} ({line}): '{text}'"},
    ProblemRow{Problem::KeyWithoutValue,        LoggerConfig::LogError, "Could not parse line as key in {file} ({line}): '{text}'"},
    ProblemRow{Problem::KeyCharacters,          LoggerConfig::LogError, "Key contains invalid characters in {file} ({line}): '{text}'"},

    ProblemRow{Problem::TemplateDollar,         LoggerConfig::LogError, "'$' must be followed by '{' or '$': {text}"},
    ProblemRow{Problem::TemplateNotClosed,      LoggerConfig::LogError, "Invalid template substitution, missing '}': {text}"},
    ProblemRow{Problem::UnknownVariable,        LoggerConfig::LogError, "No such template '{name}'"},
    ProblemRow{Problem::UnknownSource,          LoggerConfig::LogError, "Invalid template '{name}'"},
    ProblemRow{Problem::ReferenceForm,          LoggerConfig::LogError, "Invalid format '{argument}' for conf template '{name}'"},
    ProblemRow{Problem::EnvironmentFileForm,    LoggerConfig::LogError, "Invalid envfile definition '{name}'"},

    ProblemRow{Problem::EnvironmentMissing,     LoggerConfig::LogDebug, "Failed to read '{argument}' from environment variables for template '{name}'"},
    ProblemRow{Problem::EnvironmentFileMissing, LoggerConfig::LogDebug, "Failed to read '{argument}' from environment file '{path}' for template '{name}'"},
    ProblemRow{Problem::PathMissing,            LoggerConfig::LogDebug, "Failed to resolve '{argument}' path for template '{name}'"},
    ProblemRow{Problem::DconfMissing,           LoggerConfig::LogDebug, "Failed to read '{argument}' from dconf for template '{name}'"},
    ProblemRow{Problem::PropertyMissing,        LoggerConfig::LogDebug, "Failed to read '{argument}' from properties for template '{name}'"},
    ProblemRow{Problem::CommandFailed,          LoggerConfig::LogDebug, "Failed to resolve '{argument}' from system for template '{name}'"},

    ProblemRow{Problem::PieceEmpty,             LoggerConfig::LogDebug, {}},
    ProblemRow{Problem::ValueEmpty,             LoggerConfig::LogDebug, {}},
    ProblemRow{Problem::ModeWithoutName,        LoggerConfig::LogDebug, {}},
    ProblemRow{Problem::ValueBlank,             LoggerConfig::LogDebug, {}},

    ProblemRow{Problem::FileUnreadable,         LoggerConfig::LogDebug, {}},
    ProblemRow{Problem::FileFailed,             LoggerConfig::LogError, "Failed to load config from '{file}'"},
    ProblemRow{Problem::ConfigurationInvalid,   LoggerConfig::LogError, "Invalid configuration in {file}"},
    ProblemRow{Problem::DirectoryEmpty,         LoggerConfig::LogError, "No configuration to read in {file}"},

    ProblemRow{Problem::TooManyReferences,      LoggerConfig::LogError, "Max depth reached, possibly circular reference."},
};
// clang-format on
static_assert(
    [] {
        std::size_t index = 0;
        for (const ProblemRow& row : kProblems) {
            if (static_cast<std::size_t>(row.problem) != index++) {
                return false;
            }
        }
        return index == static_cast<std::size_t>(Problem::TooManyReferences) + 1;
    }(),
    "misplaced row");

const ProblemRow& rowOf(Problem problem) {
    return kProblems.at(static_cast<std::size_t>(problem));
}

// The line number is one raw character, see the header.
std::string lineOf(const Diagnostic& found) {
    return {static_cast<char>(static_cast<unsigned char>(found.place.line))};
}

struct FieldRow {
    std::string_view name;
    std::string (*text)(const Diagnostic& found);
};
constexpr std::array kFields{
    FieldRow{"{file}", [](const Diagnostic& found) { return std::string(found.place.file); }},
    FieldRow{"{line}", lineOf},
    FieldRow{"{text}", [](const Diagnostic& found) { return std::string(found.text); }},
    FieldRow{"{name}", [](const Diagnostic& found) { return std::string(found.name); }},
    FieldRow{"{argument}", [](const Diagnostic& found) { return std::string(found.argument); }},
    FieldRow{"{path}", [](const Diagnostic& found) { return std::string(found.path); }},
};

const FieldRow* fieldAt(std::string_view words) {
    for (const FieldRow& row : kFields) {
        if (words.starts_with(row.name)) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

std::string logText(const Diagnostic& found) {
    std::string text;
    std::string_view words = rowOf(found.problem).words;
    while (!words.empty()) {
        const FieldRow* field = fieldAt(words);
        text += field != nullptr ? field->text(found) : std::string(words.substr(0, 1));
        words.remove_prefix(field != nullptr ? field->name.size() : 1);
    }
    return text;
}

void logDiagnostic(const Diagnostic& found) {
    const ProblemRow& row = rowOf(found.problem);
    if (!row.words.empty() && Logging::parserLogger->isEnabled(row.level)) {
        Logging::LogRecord(Logging::parserLogger.get(), row.level) << logText(found);
    }
}

}  // namespace Tarnwick::Parser
