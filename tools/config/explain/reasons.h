#pragma once

#include <string>

#include "load_event.h"

namespace Tarnwick::Parser::ConfigTool {

/// Says why the event's fault came about, in words that a person can act on: "HOM is not set".
[[nodiscard]] std::string reasonOf(const LoadEvent& event);

}  // namespace Tarnwick::Parser::ConfigTool
