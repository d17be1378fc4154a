#pragma once

#include <span>
#include <string_view>

#include "config/command.h"
#include "config/effective.h"

namespace Tarnwick::Parser::ConfigTool {

/// What the form of one value a line may have besides.
struct LineOptions {
    bool hasOrigin = false;  ///< "file:line", and a tab, in front
    bool endsInNul = false;  ///< and prints bytes as they are
};

/// A form of the effective configuration.
struct ShowForm {
    std::string_view name;
    /// Prints it on the standard output. What is at fault is named on the error stream, and makes
    /// the result `ExitFailure`.
    ExitStatus (*show)(const Effective& effective, const LineOptions& options);
};

/// Returns the forms; the first one, of one value a line, alone heeds the options.
[[nodiscard]] std::span<const ShowForm> showForms();

}  // namespace Tarnwick::Parser::ConfigTool
