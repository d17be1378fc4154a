#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Tarnwick::Parser::Tool {

/// Whose configuration is read.
struct User {
    std::int32_t id;
    std::string name;
    std::string home;
    std::string instance;
};

/// A variable that the files may name, such as "HOME", and the text that it has for a user.
struct TemplateVariable {
    std::string_view name;
    std::string (*text)(const User& user);
};

/// Returns the variables, in the order in which they are set.
[[nodiscard]] std::span<const TemplateVariable> templateVariables();

}  // namespace Tarnwick::Parser::Tool
