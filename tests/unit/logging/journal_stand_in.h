#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Tarnwick::Parser::Testing {

/// What the stand-in for libsystemd was told to write to the journal: priorities and texts.
extern std::vector<std::pair<int, std::string>> journal;

}  // namespace Tarnwick::Parser::Testing
