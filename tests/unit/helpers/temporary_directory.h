#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace Tarnwick::Parser::Testing {

/// A directory of its own for one test, removed with all it holds. Its path has no capital
/// letter, because loggers open their files in lower case.
class TemporaryDirectory {
public:
    TemporaryDirectory() : path_(makeDirectory()) {}
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Returns the path of `name` in the directory, whether it exists or not.
    [[nodiscard]] std::string path(const std::string& name) const { return path_ + '/' + name; }

    /// Writes a file, with the directories above it, and returns its path.
    std::string write(const std::string& name, std::string_view content) const {
        const std::filesystem::path file = path(name);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    /// Makes a directory and returns its path.
    std::string makeDirectory(const std::string& name) const {
        std::filesystem::create_directories(path(name));
        return path(name);
    }

private:
    static std::string makeDirectory() {
        static int counter = 0;
        std::string path;
        do {
            path =
                "/tmp/tarnwick-unit-" + std::to_string(getpid()) + '-' + std::to_string(counter++);
        } while (!std::filesystem::create_directory(path));
        return path;
    }

    std::string path_;
};

/// Returns all of a file's bytes; the empty text for a file that is not there.
inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace Tarnwick::Parser::Testing
