#include "config/explain/unexpanded.h"

#include <filesystem>
#include <system_error>

#include "config_file.h"
#include "config_loader.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

/// Reads files one after the other until one fails.
class Reading {
public:
    Reading(const KeyName& name, const LoadFailure* failure, std::vector<Assignment>& assignments)
        : name_(name), failure_(failure), assignments_(assignments) {}

    /// Returns whether a request would read on. A pipe was read already, and is empty now.
    [[nodiscard]] bool read(const std::string& path) {
        std::error_code ignored;
        if (!std::filesystem::is_regular_file(path, ignored)) {
            return failure_ == nullptr || path != *failure_->origin.path;
        }
        ConfigFile file(path);
        const DiagnosticSink nobody = [](const Diagnostic&) {};
        for (ConfigFileIterator entry(file, nobody); entry.hasEntry() && !file.failed; ++entry) {
            if (isBehindFailure(path, entry.lineNumber())) {
                return false;
            }
            take(entry, path);
        }
        return !file.failed;
    }

private:
    [[nodiscard]] bool isBehindFailure(const std::string& path, std::uint32_t line) const {
        return failure_ != nullptr && path == *failure_->origin.path &&
               line > failure_->origin.line;
    }

    void take(const ConfigFileIterator& entry, const std::string& path) {
        if (entry.group() != name_.group || entry.key() != name_.key) {
            return;
        }
        Assignment assignment{.origin = {&path, entry.lineNumber()},
                              .text = std::string(entry.value())};
        assignment.pieces.push_back({.length = assignment.text.size(),
                                     .column = static_cast<std::uint32_t>(name_.key.size() + 2)});
        assignments_.push_back(std::move(assignment));
    }

    const KeyName& name_;
    const LoadFailure* failure_;
    std::vector<Assignment>& assignments_;
};

}  // namespace

std::vector<Assignment> readUnexpanded(const std::vector<std::string>& directories,
                                       const KeyName& name, const LoadFailure* failure,
                                       std::deque<std::string>& paths) {
    std::vector<Assignment> assignments;
    Reading reading(name, failure, assignments);
    for (const std::string& directory : directories) {
        for (std::string& path : listConfigFiles(directory)) {
            if (!reading.read(paths.emplace_back(std::move(path)))) {
                return assignments;
            }
        }
    }
    return assignments;
}

}  // namespace Tarnwick::Parser::ConfigTool
