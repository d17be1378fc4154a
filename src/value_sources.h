#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

// GLib's value type, named here so that no GLib header is needed.
using GVariant = struct _GVariant;

namespace Tarnwick::Parser {

/// Returns the environment variable's text, also when it is empty, or `defaultText` when it is
/// not set (`getenv(3)`).
[[nodiscard]] std::string readEnv(const char* name, const std::string& defaultText);

/// Returns the canonical absolute path (`realpath(3)`), or an empty text when a component is
/// missing or may not be searched.
[[nodiscard]] std::string resolvePath(const std::string& path);

/// Looks `uid` up in the password database (`getpwuid(3)`). Sets those outputs that are not null
/// and returns 1 when there is an entry; otherwise returns 0 with errno as the lookup left it,
/// which is 0 for an account that is simply not there.
[[nodiscard]] int getUserInfoForUid(std::int32_t uid, std::string* userName, std::string* home,
                                    gid_t* groupId);

/// Returns the value at a dconf key path as text (see `variantToString`), or an empty text when
/// there is none, the client library is not installed, or the type has no text.
///
/// With a user id other than -1, XDG_CONFIG_HOME is the ".config" directory of that user's home
/// while the database is read. Afterwards it has its old text again, and is left set to the empty
/// text when it was unset before: intended, callers depend on it. The environment is the
/// process's, so no other thread may use it meanwhile.
///
/// GLib remembers the configuration directory at its first use in a process: the first read
/// decides whose database the process reads. Use one process per user.
[[nodiscard]] std::string readDconf(const std::string& key, std::int32_t userId);

/// Returns the text of a GLib value of a basic type and releases the value: "true" or "false",
/// integers and handles in decimal, a double with six significant digits, a string as it is. A
/// byte is the one character with that code. A null value gives an empty text. Any other type is
/// logged as "Unsupported GVariant type 'TYPE'" at the warning level and gives an empty text.
[[nodiscard]] std::string variantToString(GVariant* value);

/// Returns an Android property's value, or an empty text when the property is not set or the
/// property library is not there. The library is looked for once per process.
[[nodiscard]] std::string readProperty(const std::string& name);

/// Runs a shell command line (`popen(3)`) and returns what it wrote to its standard output,
/// unchanged but for NUL bytes: a NUL hides the rest of its line, or of the 1023 bytes read at
/// once. Every argument is appended in single quotes; quotes inside it are not escaped. Waits
/// until the command ends.
///
/// `*status`, when given, is the wait status (`wait(2)`), or -1. Logged: "Failed to execute
/// 'COMMAND': REASON" and "COMMAND pclose() exited with failure: REASON" at the error level, and
/// at the warning level "COMMAND exited with non-zero status: " with the exit code as the one
/// character with that code; readers of the log depend on it. A command that a signal ended is
/// not reported. The output is returned in every case.
[[nodiscard]] std::string runCommand(const std::string& command,
                                     const std::vector<std::string>& arguments, int* status);

}  // namespace Tarnwick::Parser
