#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tarnwick::Parser::ConfigTool {

struct Context;

/// A key as the command line names it.
struct KeyName {
    std::string group;
    std::string key;
};

/// Reads GROUP/KEY, or KEY alone for the group "Config".
[[nodiscard]] KeyName parseKeyName(std::string_view text);

/// Returns the directories of the context, or the default one when it names none.
[[nodiscard]] std::vector<std::string> directoriesOf(const Context& context);

/// Sends log records where the boot tool sends them: to the error stream, unless the environment
/// names another target, from the level that the environment or `--log-level` names.
void setUpLogging(const Context& context);

}  // namespace Tarnwick::Parser::ConfigTool
