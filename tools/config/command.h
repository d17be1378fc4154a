#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tarnwick::Parser::ConfigTool {

enum ExitStatus : int {
    ExitSuccess = 0,
    ExitFailure = 1,      ///< what was asked for has a fault
    ExitUnavailable = 2,  ///< what was asked for is not there, or cannot be read or written
    ExitUsage = 64,       ///< the command line is wrong
};

enum class Color { Auto, Always, Never };

/// What stands before or after every command.
struct Context {
    std::vector<std::string> directories;
    std::string instance;
    std::string logLevel;      // empty: as it is
    std::int32_t userId = -1;  // -1: to be found out
    Color color = Color::Auto;

    /// Returns whether the standard output gets colours.
    [[nodiscard]] bool hasColor() const;
};

/// Runs a command whose options have been read.
using Run = std::function<ExitStatus(const Context& context)>;

/// One command: a file of its own, and a row of the table in commands.cpp.
struct Command {
    const char* name;
    const char* summary;
    Run (*add)(CLI::App& app);  ///< declares options and operands; returns what runs the command
};

/// Returns all commands, in the order of the help text.
[[nodiscard]] std::span<const Command> commands();

/// @{
/// One function for each command; see the table.
[[nodiscard]] Run addCheck(CLI::App& app);
[[nodiscard]] Run addExpand(CLI::App& app);
[[nodiscard]] Run addExplain(CLI::App& app);
[[nodiscard]] Run addFiles(CLI::App& app);
[[nodiscard]] Run addGet(CLI::App& app);
[[nodiscard]] Run addShow(CLI::App& app);
/// @}

}  // namespace Tarnwick::Parser::ConfigTool
