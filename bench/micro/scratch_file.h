#pragma once

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>

/// A temporary file with the given text, gone with the object.
class ScratchFile {
public:
    explicit ScratchFile(std::string_view text) {
        const int descriptor = mkstemp(path_.data());
        const bool isWritten = descriptor >= 0 && write(descriptor, text.data(), text.size()) ==
                                                      static_cast<ssize_t>(text.size());
        if (!isWritten || close(descriptor) != 0) {
            std::abort();  // nothing to measure
        }
    }
    ~ScratchFile() { unlink(path_.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_ = "/tmp/benchmark-XXXXXX";
};
