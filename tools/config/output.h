#pragma once

namespace Tarnwick::Parser::ConfigTool {

/// Says on the error stream that the write that set `errno` failed, unless the reader is gone: it
/// has seen enough.
void complainOfOutput();

/// Writes out what the standard output has been given. Returns false when not all of it could be
/// written, and complains of that.
[[nodiscard]] bool finishOutput();

}  // namespace Tarnwick::Parser::ConfigTool
