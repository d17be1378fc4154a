#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "config/check/fault.h"
#include "config/check/names.h"
#include "config/check/reference_graph.h"
#include "config/check/value_checker.h"
#include "config_file.h"
#include "support/line_reader.h"

namespace Tarnwick::Parser::ConfigTool {

/// Judges files line by line, with the lines that the library's parser sees.
class FileChecker {
public:
    /// Names, graph and sink have to outlive the checker.
    FileChecker(const KnownNames& names, ReferenceGraph& graph, const FaultSink& sink);

    /// Reads a file to its end; the path has to outlive the graph. `pause` is called whenever
    /// more of the file has to be read, and returns whether to go on. Returns false when reading
    /// failed.
    [[nodiscard]] bool check(std::string_view path, LineReader& reader,
                             const std::function<bool()>& pause);

    /// Returns whether a group header was rejected, so that nobody knows all keys that are set.
    [[nodiscard]] bool hasRejectedGroup() const { return hasRejectedGroup_; }

private:
    /// A fault that is told once a file, where it is found first, with the count of its lines.
    struct Repeated {
        RuleId rule;
        std::optional<Fault> first = {};
        std::uint64_t count = 0;
    };

    void beginFile(std::string_view path);
    void endFile();
    void takeLine(std::string_view text, bool isTerminated);
    void noteBytes(const SourceLine& line);
    static void note(Repeated& repeated, const SourceLine& line, std::size_t offset);
    void tellRepeated(Repeated& repeated);
    void reject(const SourceLine& line, const ConfigLine& parsed);
    void takeGroup(const SourceLine& line, const ConfigLine& parsed);
    void takeEntry(const SourceLine& line, const ConfigLine& parsed);
    void checkKey(const SourceLine& line, std::string_view key);
    void checkAccepted(const SourceLine& line, bool isTerminated);

    const KnownNames& names_;
    const FaultSink& sink_;
    ValueChecker values_;
    bool hasRejectedGroup_ = false;

    std::string_view path_;
    std::uint32_t number_ = 0;
    std::string group_;
    bool hasGroup_ = false;         // a header stands above
    bool isGroupRejected_ = false;  // the header above is none
    bool isGroupKnown_ = false;
    bool hasKeyWithoutGroup_ = false;
    Repeated returns_{RuleId::CarriageReturn};
    Repeated invalid_{RuleId::NotUtf8};
};

}  // namespace Tarnwick::Parser::ConfigTool
