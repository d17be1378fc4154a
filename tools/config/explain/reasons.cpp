#include "config/explain/reasons.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "config/check/fault.h"
#include "config/check/names.h"
#include "config/configuration_paths.h"
#include "config/display.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

// --- Lines that the reader rejects ---

// The character at fault, or nothing where something is missing.
std::string characterAtFault(const Diagnostic& fault) {
    const std::size_t first = fault.place.firstColumn - 1;
    if (fault.place.firstColumn == 0 || first >= fault.text.size()) {
        return {};
    }
    const std::string_view behind = fault.text.substr(first);
    return std::string(behind.substr(0, firstCharacter(behind).length));
}

template <RuleId rule>
std::string ofLine(const LoadEvent& event) {
    return wordsOf(rule, characterAtFault(*event.fault));
}

// --- The form of templates ---

std::string withHint(RuleId rule, std::string_view name) {
    return wordsOf(rule, shortened(name)) + "; " + std::string(ruleOf(rule).hint);
}

template <RuleId rule>
std::string ofForm(const LoadEvent& event) {
    return withHint(rule, event.fault->argument);
}

std::string notClosed(const LoadEvent& event) {
    const auto end =
        static_cast<std::size_t>(event.piece.data() + event.piece.size() - event.entry.data());
    const bool isCut = event.entry.find('}', end) != event.entry.npos;
    return wordsOf(RuleId::TemplateNotClosed, {}) +
           (isCut ? "; a ';' ends the value, inside braces too" : "");
}

std::string unknownVariable(const LoadEvent& event) {
    const std::string_view name = event.fault->name;
    return wordsOf(RuleId::UnknownVariable, shortened(name)) + suggestedVariable(name);
}

std::string unknownSource(const LoadEvent& event) {
    const std::string_view source = event.fault->name.substr(0, event.fault->name.find(':'));
    return wordsOf(RuleId::UnknownSource, shortened(source)) + suggestedSource(source);
}

// --- Sources without a text ---

std::string quoted(std::string_view text) {
    return '\'' + shortened(text) + '\'';
}

bool isWord(std::string_view text) {
    return !text.empty() && text.find_first_of(" \t\r\n'\"") == text.npos;
}

std::string named(std::string_view text) {
    return isWord(text) ? shortened(text) : quoted(text);
}

std::string ofEnvironment(const LoadEvent& event) {
    const std::string name(event.fault->argument);
    return named(name) +
           (std::getenv(name.c_str()) != nullptr ? " is set, but empty" : " is not set");
}

// The file was read before: only whether it may be is asked here.
std::string ofEnvironmentFile(const LoadEvent& event) {
    const std::string path(event.fault->path);
    if (std::filesystem::is_directory(path)) {
        return named(path) + " cannot be read: it is a directory";
    }
    if (access(path.c_str(), R_OK) != 0) {
        const int cause = errno;
        return named(path) + " cannot be read: " + std::strerror(cause);
    }
    return "no line of " + named(path) + " assigns " + named(event.fault->argument);
}

std::string ofPath(const LoadEvent& event) {
    return "the path " + named(event.fault->argument) + " does not exist or cannot be reached";
}

std::string ofDconf(const LoadEvent& event) {
    return "dconf has no value for " + named(event.fault->argument);
}

std::string ofProperty(const LoadEvent& event) {
    return "there is no Android property " + named(event.fault->argument);
}

std::string ofCommand(const LoadEvent& event) {
    return "the command " + quoted(event.fault->argument) + " did not end with status 0";
}

// --- Pieces ---

// White space that the value is made of, in words.
std::string ofBlankTemplates(const LoadEvent& event) {
    const bool hasText = std::any_of(
        event.templates.begin(), event.templates.end(),
        [](const TemplateOutcome& each) { return each.result == TemplateResult::Resolved; });
    return hasText ? "its templates come to white space alone"
                   : wordsOf(RuleId::BlankValue, "white space and references");
}

std::string ofBlank(const LoadEvent& event) {
    if (!event.fault->path.empty()) {
        return "the environment file " + named(event.fault->path) +
               " has a name or the value asked for of white space alone: every request fails";
    }
    if (!event.templates.empty()) {
        return ofBlankTemplates(event);
    }
    return event.place.file.empty() ? "it is white space alone"
                                    : wordsOf(RuleId::BlankValue, "white space");
}

std::string ofFile(const LoadEvent& event) {
    const OpenedFile file = openRegularFile(std::string(event.place.file));
    if (file.descriptor < 0) {
        return "cannot be read: " + file.problem;
    }
    close(file.descriptor);
    return "cannot be read";
}

struct ReasonRow {
    Problem problem;
    std::string (*words)(const LoadEvent& event);
};
constexpr std::array kReasons{
    ReasonRow{Problem::UnexpectedLine, ofLine<RuleId::UnexpectedLine>},
    ReasonRow{Problem::GroupNotClosed, ofLine<RuleId::GroupNotClosed>},
    ReasonRow{Problem::GroupCharacters, ofLine<RuleId::GroupCharacters>},
    ReasonRow{Problem::KeyWithoutValue, ofLine<RuleId::KeyWithoutValue>},
    ReasonRow{Problem::KeyCharacters, ofLine<RuleId::KeyCharacters>},
    ReasonRow{Problem::TemplateDollar, ofForm<RuleId::TemplateDollar>},
    ReasonRow{Problem::TemplateNotClosed, notClosed},
    ReasonRow{Problem::UnknownVariable, unknownVariable},
    ReasonRow{Problem::UnknownSource, unknownSource},
    ReasonRow{Problem::ReferenceForm, ofForm<RuleId::ReferenceForm>},
    ReasonRow{Problem::EnvironmentFileForm, ofForm<RuleId::EnvironmentFileForm>},
    ReasonRow{Problem::EnvironmentMissing, ofEnvironment},
    ReasonRow{Problem::EnvironmentFileMissing, ofEnvironmentFile},
    ReasonRow{Problem::PathMissing, ofPath},
    ReasonRow{Problem::DconfMissing, ofDconf},
    ReasonRow{Problem::PropertyMissing, ofProperty},
    ReasonRow{Problem::CommandFailed, ofCommand},
    ReasonRow{Problem::PieceEmpty, [](const LoadEvent&) { return std::string("empty"); }},
    ReasonRow{Problem::ValueEmpty,
              [](const LoadEvent&) { return std::string("its templates come to an empty text"); }},
    ReasonRow{Problem::ValueBlank, ofBlank},
    ReasonRow{Problem::FileUnreadable, ofFile},
};

}  // namespace

std::string reasonOf(const LoadEvent& event) {
    const auto row = std::find_if(kReasons.begin(), kReasons.end(), [&](const ReasonRow& each) {
        return each.problem == event.fault->problem;
    });
    return row == kReasons.end() ? logText(*event.fault) : row->words(event);
}

}  // namespace Tarnwick::Parser::ConfigTool
