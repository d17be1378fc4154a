#pragma once

#include <string>
#include <vector>

#include "config/loading.h"
#include "config_parser.h"

namespace Tarnwick::Parser::ConfigTool {

/// Returns keys that have a value and a like name: the nearest one of the same group, and that very
/// key of other groups. For a group without values, the nearest key of every group.
[[nodiscard]] std::vector<std::string> nearKeys(const ConfigParser& parser, const KeyName& name);

}  // namespace Tarnwick::Parser::ConfigTool
