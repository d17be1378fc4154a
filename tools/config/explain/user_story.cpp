#include "config/explain/user_story.h"

#include <algorithm>
#include <array>

#include "template_expander.h"
#include "template_text.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Tool::UserOrigin;

std::string generated(const LineOrigin& line) {
    return "generated configuration" +
           (line.path != nullptr ? ", " + placeText(line) : std::string(", which does not set it"));
}

std::string ofInstance(const UserStory& story) {
    if (story.origins.instance == UserOrigin::GeneratedConfig) {
        return generated(story.instanceLine);
    }
    return story.user.instance == kDefaultInstance ? "the default" : "command line";
}

std::string ofPasswordEntry(const UserStory& story) {
    return "password database, user " + std::to_string(story.user.id);
}

std::string ofVendorDirectory(const UserStory&) {
    return "/odm where there is /odm/lib, otherwise /vendor";
}

struct VariableRow {
    std::string_view name;
    std::string (*origin)(const UserStory& story);
};
constexpr std::array kVariables{
    VariableRow{"HOME", ofPasswordEntry},      VariableRow{"USER", ofPasswordEntry},
    VariableRow{"USER_ID", userIdText},        VariableRow{"INSTANCE", ofInstance},
    VariableRow{"ODM_DIR", ofVendorDirectory},
};

std::string variableText(const std::string& name, const UserStory& story) {
    const auto row = std::find_if(kVariables.begin(), kVariables.end(),
                                  [&](const VariableRow& each) { return each.name == name; });
    return row == kVariables.end() ? "variable" : "variable: " + row->origin(story);
}

// Row n is of source n.
constexpr std::array<std::string_view, 6> kSources{
    "environment", "environment file", "canonical path", "dconf", "Android property", "command",
};
static_assert(kSources.size() == std::tuple_size_v<SourceReaders>, "missing row");

}  // namespace

std::string userIdText(const UserStory& story) {
    switch (story.origins.userId) {
        case UserOrigin::GeneratedConfig:
            return generated(story.userIdLine);
        case UserOrigin::Seat:
            return "session on seat0";
        default:
            return "command line";
    }
}

std::string sourceText(const std::string& name, const UserStory& story) {
    const TemplateToken token = classifyTemplate(name);
    if (token.kind == TemplateToken::Kind::Variable) {
        return variableText(name, story);
    }
    std::string text(kSources.at(static_cast<std::size_t>(token.source)));
    if (token.source == TemplateSource::Dconf) {
        text += ", user " + std::to_string(story.user.id);
    }
    return text;
}

}  // namespace Tarnwick::Parser::ConfigTool
