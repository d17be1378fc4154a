#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Fuzz {

/// The one temporary directory of this process, below TMPDIR. It is the working directory from
/// the first call on, so that relative paths in the inputs lead nowhere else, and it goes when the
/// process exits in good order.
const std::filesystem::path& scratchDirectory();

/// Writes a file below the scratch directory and returns its path.
std::string writeScratchFile(const std::string& name, std::string_view content);

}  // namespace Fuzz
