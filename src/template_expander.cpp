#include "template_expander.h"

#include "environment_file.h"
#include "support/trim.h"
#include "value_sources.h"

namespace Tarnwick::Parser {
namespace {

using Kind = TemplateToken::Kind;

// --- Sources: the text, or nothing ---

std::optional<std::string> unlessEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> fromEnv(const TemplateToken& from, std::int32_t) {
    return unlessEmpty(readEnv(std::string(from.argument).c_str(), ""));
}

std::optional<std::string> fromEnvFile(const TemplateToken& from, std::int32_t) {
    return readEnvFile(std::string(from.path), std::string(from.variable), false);
}

std::optional<std::string> fromRealPath(const TemplateToken& from, std::int32_t) {
    return unlessEmpty(resolvePath(std::string(from.argument)));
}

std::optional<std::string> fromDconf(const TemplateToken& from, std::int32_t userId) {
    return unlessEmpty(readDconf(std::string(from.argument), userId));
}

std::optional<std::string> fromProp(const TemplateToken& from, std::int32_t) {
    return unlessEmpty(readProperty(std::string(from.argument)));
}

std::optional<std::string> fromSystem(const TemplateToken& from, std::int32_t) {
    int status = -1;
    const std::string output = runCommand(std::string(from.argument), {}, &status);
    return status == 0 ? std::optional(trim(output)) : std::nullopt;
}

struct SourceRow {
    TemplateSource source;
    SourceReader read;
    Problem missing;  // what is found when the source has no text
};
constexpr std::array kSources{
    SourceRow{TemplateSource::Env, fromEnv, Problem::EnvironmentMissing},
    SourceRow{TemplateSource::EnvFile, fromEnvFile, Problem::EnvironmentFileMissing},
    SourceRow{TemplateSource::RealPath, fromRealPath, Problem::PathMissing},
    SourceRow{TemplateSource::Dconf, fromDconf, Problem::DconfMissing},
    SourceRow{TemplateSource::Prop, fromProp, Problem::PropertyMissing},
    SourceRow{TemplateSource::System, fromSystem, Problem::CommandFailed},
};

static_assert(
    [] {
        std::size_t index = 0;
        for (const SourceRow& row : kSources) {
            if (static_cast<std::size_t>(row.source) != index++) {
                return false;
            }
        }
        return index == std::tuple_size_v<SourceReaders>;
    }(),
    "misplaced row");

constexpr SourceReaders readersOf(const decltype(kSources)& rows) {
    SourceReaders readers{};
    for (std::size_t index = 0; index < rows.size(); ++index) {
        readers[index] = rows[index].read;
    }
    return readers;
}

std::size_t indexOf(TemplateSource source) {
    return static_cast<std::size_t>(source);
}

// What is wrong with a token that has no text.
Problem problemOf(const TemplateToken& token) {
    switch (token.kind) {
        case Kind::Variable:
            return Problem::UnknownVariable;
        case Kind::Source:
            return kSources.at(indexOf(token.source)).missing;
        default:
            return token.problem;
    }
}

Place placeOf(const TemplateToken& token) {
    return {.firstColumn = static_cast<std::uint32_t>(token.first + 1),
            .lastColumn = static_cast<std::uint32_t>(token.end)};
}

TemplateOutcome outcomeOf(const TemplateToken& token, TemplateResult result,
                          const std::string& text) {
    const Place place = placeOf(token);
    return {token.name, place.firstColumn, place.lastColumn, result, text, token.group, token.key};
}

}  // namespace

constinit const SourceReaders kSourceReaders = readersOf(kSources);

bool TemplateExpander::expand(std::string_view text, ConfigValue& out,
                              std::vector<TemplateOutcome>* outcomes) const {
    if (text.find('$') == text.npos) {
        out.text = trimmed(text);  // what most values are
        return true;
    }
    Expansion expansion{{}, out, outcomes};
    TemplateCursor cursor(text);
    for (TemplateToken token; cursor.next(token);) {
        if (!append(token, text, expansion)) {
            return false;
        }
    }
    // Trimmed after the positions were noted: white space removed in front is not subtracted
    // from them, so later insertions move right by as much. Callers depend on it.
    out.text = trim(expansion.text);
    return true;
}

bool TemplateExpander::append(const TemplateToken& token, std::string_view whole,
                              Expansion& expansion) const {
    if (token.kind == Kind::Literal) {
        expansion.text += token.text;
        return true;
    }
    std::string text;
    const TemplateResult result = resolve(token, whole, text);
    if (expansion.outcomes != nullptr) {
        expansion.outcomes->push_back(outcomeOf(token, result, text));
    }
    if (result == TemplateResult::Reference) {
        expansion.value.addReference(std::string(token.group), std::string(token.key),
                                     static_cast<std::uint32_t>(expansion.text.size()));
    }
    expansion.text += text;
    return result != TemplateResult::Failed;
}

TemplateResult TemplateExpander::resolve(const TemplateToken& token, std::string_view whole,
                                         std::string& text) const {
    if (token.kind == Kind::Reference) {
        return TemplateResult::Reference;
    }
    std::optional<std::string> found = find(token);
    if (!found) {
        report(token, whole);
        return TemplateResult::Failed;
    }
    text = std::move(*found);
    return TemplateResult::Resolved;
}

// The text that the token stands for, or nothing.
std::optional<std::string> TemplateExpander::find(const TemplateToken& token) const {
    if (token.kind == Kind::Variable) {
        const auto variable = context_.variables.find(std::string(token.name));
        return variable == context_.variables.end() ? std::nullopt
                                                    : std::optional(variable->second);
    }
    if (token.kind == Kind::Source) {
        return context_.readers.at(indexOf(token.source))(token, context_.userId);
    }
    return std::nullopt;
}

void TemplateExpander::report(const TemplateToken& token, std::string_view whole) const {
    const Problem problem = problemOf(token);
    sink_({.problem = problem,
           .place = placeOf(token),
           .text = whole,
           .name = token.name,
           .argument = problem == Problem::EnvironmentFileMissing ? token.variable : token.argument,
           .path = token.path});
}

}  // namespace Tarnwick::Parser
