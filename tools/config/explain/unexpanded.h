#pragma once

#include <deque>
#include <string>
#include <vector>

#include "config/explain/assignments.h"
#include "config/explain/load_history.h"
#include "config/loading.h"

namespace Tarnwick::Parser::ConfigTool {

/// Reads the lines that assign the key, and expands nothing, up to where a request ended whose
/// user was not settled. `failure` is why, or null. The paths of the lines are added to `paths`.
[[nodiscard]] std::vector<Assignment> readUnexpanded(const std::vector<std::string>& directories,
                                                     const KeyName& name,
                                                     const LoadFailure* failure,
                                                     std::deque<std::string>& paths);

}  // namespace Tarnwick::Parser::ConfigTool
