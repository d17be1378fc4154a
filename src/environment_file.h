#pragma once

#include <optional>
#include <string>

#include "support/trim.h"

namespace Tarnwick::Parser {

/// Thrown for a name or a value of white space alone in an environment file.
class BlankAssignment : public BlankText {
public:
    /// `path` is the file's, `cause` says what is wrong.
    BlankAssignment(const std::string& path, const std::string& cause)
        : BlankText("environment file '" + path + "': " + cause), path_(path) {}

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// Returns the value of the variable `name` in a file of NAME=value lines, or nothing when no
/// line assigns it. The last assignment wins; the value may be empty.
///
/// Everything before the first '=' of a line is the name and everything after it the value, both
/// trimmed; a value of more than one character then loses one pair of surrounding double quotes.
/// There are no comments, no escapes, no "export" and no continuation; lines without '=' are
/// ignored.
///
///     NAME = "hello world"      gives "hello world"
///     NAME=a=b                  gives "a=b"
///     NAME='x'                  gives "'x'", quotes included
///
/// With `report`, a file that cannot be opened or read is logged as "Reading environment file
/// 'PATH' failed", and a variable missing from a file that was read without fault as "No 'NAME'
/// variable specified in environment file 'PATH'", both at the error level. Without it nothing
/// is logged.
///
/// Throws `BlankAssignment` for an assignment whose name is white space
/// alone, and for one of `name` whose value is (see `trim`).
[[nodiscard]] std::optional<std::string> readEnvFile(const std::string& path,
                                                     const std::string& name, bool report);

}  // namespace Tarnwick::Parser
