#pragma once

#include <string>
#include <vector>

#include "config/loading.h"
#include "config_parser.h"

namespace Tarnwick::Parser::ConfigTool {

/// Returns keys that have a value and whose names are near to this one: the nearest of its own
/// group first, then those of other groups.
[[nodiscard]] std::vector<std::string> nearKeys(const ConfigParser& parser, const KeyName& name);

}  // namespace Tarnwick::Parser::ConfigTool
