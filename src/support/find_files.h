#pragma once

#include <string>
#include <vector>

namespace Tarnwick::Parser {

/// Returns the paths that match a glob(7) pattern in ascending byte order ("10" before "9",
/// upper case before lower case), directories included and marked by a trailing '/'. Empty when
/// nothing matches or the matching fails, for instance for a directory that is not there.
[[nodiscard]] std::vector<std::string> findFiles(const std::string& pattern);

}  // namespace Tarnwick::Parser
