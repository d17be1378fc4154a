#pragma once

#include <span>
#include <string_view>

namespace Fuzz {

/// How a command comes to its end.
enum class CommandEnd {
    Exit,        ///< with the code of the row
    Signal,      ///< of the number in the row
    CannotOpen,  ///< `popen` fails
    CannotWait,  ///< `pclose` fails
};

/// A command that `popen` knows in the fuzz targets, which run no other.
struct FixedCommand {
    std::string_view line;
    std::string_view output;
    std::string_view read;  // the output as it is to be read: a NUL hides the rest of its line
    CommandEnd end;
    int code;
};

std::span<const FixedCommand> fixedCommands();

/// The row of a command line, or the last one, for a command that is not found.
const FixedCommand& fixedCommand(std::string_view line);

}  // namespace Fuzz
