#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "config/command.h"
#include "config/explain/assignments.h"
#include "config/explain/load_history.h"
#include "config/loading.h"

namespace Tarnwick::Parser::ConfigTool {

/// A key of the generated group that says whose configuration is read.
struct UserKey {
    std::string name;
    std::string text;
    LineOrigin origin;  ///< without a path: no file sets it
};

/// The life of one key. Lines point into what made it.
struct Explanation {
    KeyName name;
    ExitStatus status = ExitFailure;           ///< of a request for the key
    std::optional<std::string> value = {};     ///< what a request prints
    std::size_t valueCount = 0;                ///< how many values `--list` has
    std::string problem = {};                  ///< why a request ends with status 1
    std::vector<LoadFailure> failures = {};    ///< the lines that made the load fail
    std::size_t fileCount = 0;                 ///< how many files were read
    std::optional<std::int32_t> userId = {};   ///< whose configuration it is, if that is known
    std::string userOrigin = {};               ///< how it was found out
    std::vector<UserKey> userKeys = {};        ///< generated keys that decided it
    std::string userRemark = {};               ///< why generated keys did not
    std::vector<Assignment> assignments = {};  ///< in the order of reading
    std::vector<std::string> near = {};        ///< keys with a value that have a like name
};

/// Prints it for people.
void printText(const Explanation& explanation, bool hasColor);

/// Prints it for programs.
void printJson(const Explanation& explanation);

}  // namespace Tarnwick::Parser::ConfigTool
