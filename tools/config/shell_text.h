#pragma once

#include <string>
#include <string_view>

namespace Tarnwick::Parser::ConfigTool {

/// Returns the name with '_' for every character that no name of a shell variable holds.
/// "Net/my-key 1" gives "Net_my_key_1".
[[nodiscard]] std::string shellName(std::string_view name);

/// Returns whether a shell variable can have the name: letters, digits and '_', and no digit first.
[[nodiscard]] bool isShellName(std::string_view name);

/// Returns the text as one word for every POSIX shell. "it's" gives "'it'\''s'". The text holds no
/// NUL, which no shell takes.
[[nodiscard]] std::string shellQuoted(std::string_view text);

}  // namespace Tarnwick::Parser::ConfigTool
