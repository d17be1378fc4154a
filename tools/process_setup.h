#pragma once

namespace Tarnwick::Parser::Tool {

/// Makes the process robust against what its caller left it, before anything else happens:
///
/// - Standard descriptors that are closed are filled, so that no file opened later takes their
///   number and receives the value or a log record. Writing to a filled one still fails.
/// - A pipe whose reader is gone, and a file that has reached the limit on its size, make writing
///   fail instead of ending the process. Commands that the process runs keep the usual behaviour,
///   and so does a process whose caller ignores the signal.
void prepareProcess();

/// Returns whether the caller left the standard input closed. What fills it ends at once, like an
/// empty file.
[[nodiscard]] bool wasInputClosed();

}  // namespace Tarnwick::Parser::Tool
