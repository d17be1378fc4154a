#pragma once

#include <string>
#include <vector>

namespace Tarnwick::Parser {

/// Returns the texts with `separator` between neighbours.
[[nodiscard]] std::string joinStrings(const std::vector<std::string>& texts, char separator);

}  // namespace Tarnwick::Parser
