#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "config_store.h"

namespace Tarnwick::Parser {

/// What a parser holds: the store, and what templates are expanded with.
struct ConfigParserData {
    ConfigStore store;
    std::map<std::string, std::string> variables;
    std::int32_t userId;  // -1: none
};

}  // namespace Tarnwick::Parser
