#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

namespace Tarnwick::Parser::ConfigTool {

struct Context;

/// What a PATH of the command line is.
enum class PathKind { Directory, File, StandardInput, Unavailable };

/// One PATH of the command line.
struct ConfigurationPath {
    std::string path;
    PathKind kind;
    std::string problem = {};  ///< Unavailable: why
};

/// A name in a directory that looks meant but is not read.
struct IgnoredFile {
    std::string path;
    std::string_view reason;
};

/// Returns the paths of the context and of the command line, in this order, or the default
/// directory when there is none.
[[nodiscard]] std::vector<ConfigurationPath> configurationPaths(
    const Context& context, const std::vector<std::string>& operands);

/// Returns the names of a directory that look meant but are not read, in byte order of their
/// paths. Directories are never meant. Sets `problem` when the directory cannot be read.
[[nodiscard]] std::vector<IgnoredFile> findIgnoredFiles(const std::string& path,
                                                        std::string& problem);

/// A file that was opened.
struct OpenedFile {
    int descriptor = -1;       ///< -1: it was not
    std::string problem = {};  ///< why not
    mode_t mode = 0;
};

/// Opens a regular file for reading. Anything else is not even opened: a device might act on it,
/// and a pipe would wait.
[[nodiscard]] OpenedFile openRegularFile(const std::string& path);

}  // namespace Tarnwick::Parser::ConfigTool
