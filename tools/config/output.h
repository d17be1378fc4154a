#pragma once

namespace Tarnwick::Parser::ConfigTool {

/// Writes out what the standard output has been given. Returns false when not all of it could be
/// written, which is said on the error stream, unless the reader is gone: it has seen enough.
[[nodiscard]] bool finishOutput();

}  // namespace Tarnwick::Parser::ConfigTool
