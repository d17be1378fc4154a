#pragma once

#include <string>

#include "active_user.h"
#include "config/explain/last_words.h"
#include "template_variables.h"

namespace Tarnwick::Parser::ConfigTool {

/// Whose configuration it is, and how that was found out.
struct UserStory {
    Tool::User user;
    Tool::UserOrigins origins = {};
    LineOrigin userIdLine = {};    ///< of the generated user id
    LineOrigin instanceLine = {};  ///< of the generated instance, if it has one
};

/// Says where the user id came from.
[[nodiscard]] std::string userIdText(const UserStory& story);

/// Says where the text of a template came from, by the template's name.
[[nodiscard]] std::string sourceText(const std::string& name, const UserStory& story);

}  // namespace Tarnwick::Parser::ConfigTool
