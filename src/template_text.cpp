#include "template_text.h"

#include <algorithm>
#include <array>

#include "support/split_string.h"

namespace Tarnwick::Parser {
namespace {

using Kind = TemplateToken::Kind;

TemplateToken fault(Problem problem) {
    TemplateToken token;
    token.kind = Kind::Fault;
    token.problem = problem;
    return token;
}

TemplateToken literal(std::string_view text) {
    TemplateToken token;
    token.text = text;
    return token;
}

// --- The forms of arguments ---

TemplateToken readReference(std::string_view argument) {
    TemplateToken token;
    token.kind = Kind::Reference;
    std::string_view rest = argument;
    const bool hasBoth =
        takePiece(rest, '/', token.group) && takePiece(rest, '/', token.key) && rest.empty();
    if (!hasBoth || token.group.empty() || token.key.empty()) {
        return fault(Problem::ReferenceForm);
    }
    return token;
}

template <TemplateSource source>
TemplateToken readSource(std::string_view) {
    TemplateToken token;
    token.kind = Kind::Source;
    token.source = source;
    return token;
}

TemplateToken readEnvironmentFile(std::string_view argument) {
    const std::size_t colon = argument.find(':');
    if (colon == argument.npos) {
        return fault(Problem::EnvironmentFileForm);
    }
    TemplateToken token = readSource<TemplateSource::EnvFile>(argument);
    token.path = argument.substr(0, colon);
    token.variable = argument.substr(colon + 1);
    return token;
}

struct SourceRow {
    std::string_view name;
    TemplateToken (*read)(std::string_view argument);
};
constexpr std::array kSources{
    SourceRow{"config", readReference},
    SourceRow{"env", readSource<TemplateSource::Env>},
    SourceRow{"envfile", readEnvironmentFile},
    SourceRow{"realpath", readSource<TemplateSource::RealPath>},
    SourceRow{"dconf", readSource<TemplateSource::Dconf>},
    SourceRow{"prop", readSource<TemplateSource::Prop>},
    SourceRow{"system", readSource<TemplateSource::System>},
};

TemplateToken classifySource(std::string_view source, std::string_view argument) {
    for (const SourceRow& row : kSources) {
        if (row.name == source) {
            return row.read(argument);
        }
    }
    return fault(Problem::UnknownSource);
}

TemplateToken classify(std::string_view name) {
    const std::size_t colon = name.find(':');
    if (colon == name.npos) {
        TemplateToken token;
        token.kind = Kind::Variable;
        return token;
    }
    const std::string_view argument = name.substr(colon + 1);
    TemplateToken token = classifySource(name.substr(0, colon), argument);
    token.argument = argument;
    return token;
}

}  // namespace

TemplateToken classifyTemplate(std::string_view name) {
    TemplateToken token = classify(name);
    token.name = name;
    token.end = name.size();
    return token;
}

std::span<const std::string_view> templateSourceNames() {
    static constexpr auto kNames = [] {
        std::array<std::string_view, kSources.size()> names;
        std::transform(kSources.begin(), kSources.end(), names.begin(),
                       [](const SourceRow& row) { return row.name; });
        return names;
    }();
    return kNames;
}

bool TemplateCursor::next(TemplateToken& token) {
    if (position_ == text_.size()) {
        return false;
    }
    token = text_[position_] == '$' ? readDollar() : readLiteral();
    return true;
}

TemplateToken TemplateCursor::readLiteral() {
    const std::size_t end = std::min(text_.find('$', position_), text_.size());
    return take(literal(text_.substr(position_, end - position_)), end);
}

TemplateToken TemplateCursor::readDollar() {
    const std::string_view rest = text_.substr(position_);
    if (rest.starts_with("$$")) {
        return take(literal(rest.substr(0, 1)), position_ + 2);
    }
    if (!rest.starts_with("${")) {
        return take(fault(Problem::TemplateDollar), position_ + 1);
    }
    const std::size_t brace = rest.find('}');
    if (brace == rest.npos) {
        return take(fault(Problem::TemplateNotClosed), text_.size());
    }
    return take(classifyTemplate(rest.substr(2, brace - 2)), position_ + brace + 1);
}

TemplateToken TemplateCursor::take(TemplateToken token, std::size_t end) {
    token.first = position_;
    token.end = end;
    position_ = end;
    return token;
}

}  // namespace Tarnwick::Parser
