#pragma once

#include <string>

namespace Tarnwick::Parser {

/// Returns whether `entry` is a mount entry that the container may get: the six fields of an
/// fstab(5) line, separated by single blanks, with
///
/// - a source that begins with '/' or is "tmpfs" or "none",
/// - a file system type that is "none", "tmpfs" or "devpts",
/// - "0" for dump and for pass.
///
/// Mount point and options are not looked at, and fields are not trimmed. The first rule that is
/// broken is logged at the error level.
///
///     isValidMountEntry("/dev/shm /dev/shm tmpfs rw 0 0")  // true
///     isValidMountEntry("/a /b ext4 rw 0 0")               // false: the type
///     isValidMountEntry("/a  /b tmpfs rw 0 0")             // false: seven fields
[[nodiscard]] bool isValidMountEntry(const std::string& entry);

/// Returns the words of the first rule that `entry` breaks, without the entry itself, or an empty
/// text when it is valid. Logs nothing.
[[nodiscard]] std::string findMountFault(const std::string& entry);

}  // namespace Tarnwick::Parser
