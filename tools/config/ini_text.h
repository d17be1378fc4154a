#pragma once

#include <string>
#include <string_view>

namespace Tarnwick::Parser::ConfigTool {

/// Returns why no line of a configuration file loads as this one value, or an empty text when one
/// does: a value is cut at ';', ends with its line, loses the white space at its ends, and an empty
/// one removes its key.
[[nodiscard]] std::string_view iniProblem(std::string_view value);

/// Returns how such a value is written: with every '$' doubled.
[[nodiscard]] std::string iniText(std::string_view value);

}  // namespace Tarnwick::Parser::ConfigTool
