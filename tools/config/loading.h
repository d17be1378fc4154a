#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "config_parser.h"
#include "load_event.h"

namespace Tarnwick::Parser::ConfigTool {

struct Context;

/// A key as the command line names it.
struct KeyName {
    std::string group;
    std::string key;

    [[nodiscard]] bool operator==(const KeyName& other) const = default;
};

/// Reads GROUP/KEY, or KEY alone for the group "Config".
[[nodiscard]] KeyName parseKeyName(std::string_view text);

/// Returns the directories of the context, or the default one when it names none.
[[nodiscard]] std::vector<std::string> directoriesOf(const Context& context);

/// Sends log records where the boot tool sends them: to the error stream, unless the environment
/// names another target, from the level that the environment or `--log-level` names.
void setUpLogging(const Context& context);

/// Loads the configuration of the context as the boot tool does, after `setUpLogging`. Returns
/// nothing when there is no such user or a file failed to load; the cause has been logged or said
/// on the error stream by then. The listener hears the load of the values alone.
[[nodiscard]] std::unique_ptr<ConfigParser> load(const Context& context,
                                                 const LoadListener& listener = {});

}  // namespace Tarnwick::Parser::ConfigTool
