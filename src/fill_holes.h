#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config_value.h"

namespace Tarnwick::Parser {

/// What `value.applyReferences` returns, for texts that stay where they are.
[[nodiscard]] std::string fillHoles(const ConfigValue& value,
                                    const std::vector<std::string_view>& texts);

}  // namespace Tarnwick::Parser
