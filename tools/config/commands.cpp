#include <array>

#include "config/command.h"

namespace Tarnwick::Parser::ConfigTool {

std::span<const Command> commands() {
    static constexpr std::array kCommands{
        Command{"check", "Find every fault in files, running and reading nothing else", addCheck},
        Command{"files", "List the files that are read, in order", addFiles},
        Command{"get", "Print values, many keys from one load", addGet},
        Command{"show", "Show the effective configuration, with origins", addShow},
        Command{"explain", "Tell the life of one key, assignment by assignment", addExplain},
        Command{"expand", "Show what a text with templates comes to", addExpand},
    };
    return kCommands;
}

}  // namespace Tarnwick::Parser::ConfigTool
