#pragma once

#include <string>
#include <vector>

#include "api.h"

namespace Tarnwick::Parser {
class ConfigWriter;
}

/// Building blocks of programs that generate configuration files.
///
///     ConfigWriter writer("/run/example.conf.d/50-generated.conf", false);
///     GeneratorHelpers::parseDefaults(writer, "/usr/share/example/defaults/*.conf");
///     writer.writeRaw("[Config]");
///     GeneratorHelpers::runMountHooks(writer, "/usr/lib/example/hooks/*", "Mounts", {"1000"});
///
/// No operation reports failure by a result; a writer whose file could not be opened writes
/// nothing. Files are taken in ascending byte order of their paths, as the loader takes them.
namespace Tarnwick::Parser::GeneratorHelpers {

/// Copies the files that match a glob(7) pattern into the writer, each behind an empty line and
/// between the comments "# PATH content" and "# end of PATH content". A file that cannot be
/// opened or read, or is a directory, is skipped without a message.
TARNWICK_API void parseDefaults(ConfigWriter& writer, const std::string& pattern);

/// Runs the programs that match a glob(7) pattern and writes each line of their output that is a
/// valid mount entry as a value of `key`. Each program is a shell command line, and each argument
/// is appended to it in single quotes; quotes inside an argument are not escaped.
///
/// A valid mount entry has the six fields of an fstab(5) line, separated by single blanks: a
/// source that begins with '/' or is "tmpfs" or "none", a type that is "none", "tmpfs" or
/// "devpts", and "0" for dump and for pass. Any other line, a blank one included, is logged as
/// "Invalid mount entry from PROGRAM: LINE" at the warning level, after the rule that it breaks at
/// the error level. A program that cannot be run or fails is logged too (see DIAGNOSTICS in
/// libtarnwick-parser(3)), and what it wrote is used all the same.
TARNWICK_API void runMountHooks(ConfigWriter& writer, const std::string& pattern,
                                const std::string& key, const std::vector<std::string>& arguments);

}  // namespace Tarnwick::Parser::GeneratorHelpers
