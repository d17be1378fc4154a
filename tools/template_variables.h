#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "config_parser.h"

namespace Tarnwick::Parser::Tool {

/// Whose configuration is read.
struct User {
    std::int32_t id = -1;
    std::string name;
    std::string home;
    std::string instance;
};

/// A template variable that the files may name, and where its text comes from.
struct TemplateVariable {
    std::string_view name;
    std::string (*text)(const User& user);
};

/// Returns the template variables, in the order in which they are set.
[[nodiscard]] std::span<const TemplateVariable> templateVariables();

/// Sets every template variable for this user.
void setVariables(ConfigParser& parser, const User& user);

}  // namespace Tarnwick::Parser::Tool
