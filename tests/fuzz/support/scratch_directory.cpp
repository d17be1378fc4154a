#include "scratch_directory.h"

#include <cstdlib>
#include <fstream>

#include "check.h"

namespace Fuzz {
namespace {

struct ScratchDirectory {
    ScratchDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "tarnwick-fuzz-XXXXXX";
        check(mkdtemp(name.data()) != nullptr, "a temporary directory can be made");
        path = name;
        std::filesystem::current_path(path);
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::filesystem::path path;
};

}  // namespace

const std::filesystem::path& scratchDirectory() {
    static const ScratchDirectory directory;
    return directory.path;
}

std::string writeScratchFile(const std::string& name, std::string_view content) {
    const std::filesystem::path path = scratchDirectory() / name;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content << std::flush;
    check(file.good(), "the file " + shown(name) + " can be written");
    return path;
}

}  // namespace Fuzz
