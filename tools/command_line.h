#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tarnwick::Parser::Tool {

/// What the command line asks for, with the defaults of what it leaves open.
struct Options {
    std::vector<std::string> directories;
    std::string group;
    std::string key;
    std::string instance;
    std::string logLevel;      // empty: as it is
    std::int32_t userId = -1;  // -1: to be found out
    bool list = false;
};

/// Reads the arguments. On a fault prints its message on the error stream and, where the fault
/// calls for it, the usage text on standard output, and returns nothing. A fault is reported
/// where it stands, before anything after it is looked at.
///
/// Reading stops without a word at the first argument that is not "--" and something more.
[[nodiscard]] std::optional<Options> parseCommandLine(int count, const char* const* arguments);

/// Reads a user id as `--user-id` does: a number, with or without anything behind it. Returns
/// nothing, and sets `problem` to the message, when there is none or it is out of range.
[[nodiscard]] std::optional<std::int32_t> parseUserId(const std::string& text,
                                                      std::string& problem);

/// Prints the usage text on standard output; `programName` as the program was called.
void printUsage(const std::string& programName);

/// Returns the program's name as it was called, or an empty text when it was given none.
[[nodiscard]] std::string programName(int count, const char* const* arguments);

}  // namespace Tarnwick::Parser::Tool
