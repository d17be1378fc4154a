#include "support/find_files.h"

#include <glob.h>

#include <algorithm>

namespace Tarnwick::Parser {
namespace {

class GlobResult {
public:
    explicit GlobResult(const std::string& pattern)
        : failed_(glob(pattern.c_str(), GLOB_MARK | GLOB_NOSORT, nullptr, &result_) != 0) {}
    ~GlobResult() { globfree(&result_); }
    GlobResult(const GlobResult&) = delete;
    GlobResult& operator=(const GlobResult&) = delete;

    [[nodiscard]] std::vector<std::string> paths() const {
        if (failed_) {
            return {};
        }
        return {result_.gl_pathv, result_.gl_pathv + result_.gl_pathc};
    }

private:
    glob_t result_ = {};
    bool failed_;
};

}  // namespace

std::vector<std::string> findFiles(const std::string& pattern) {
    std::vector<std::string> paths = GlobResult(pattern).paths();
    // Not left to glob: it sorts by the locale.
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace Tarnwick::Parser
