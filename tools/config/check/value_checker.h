#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/check/fault.h"
#include "config/check/names.h"
#include "config/check/reference_graph.h"
#include "config_value.h"
#include "template_text.h"

namespace Tarnwick::Parser::ConfigTool {

/// One entry of a file. The views point into the line.
struct Entry {
    SourceLine line;
    const std::string& group;
    std::string key;
    std::string_view value;
    bool isOfKnownGroup;  ///< false below a header that was rejected: nobody knows whose it is
};

/// Judges values as a load would store them, if every source and every variable yielded a word
/// without white space. Reads and runs nothing.
class ValueChecker {
public:
    /// Graph and sink have to outlive the checker.
    ValueChecker(ReferenceGraph& graph, const FaultSink& sink);

    void check(const Entry& entry);

private:
    /// What the templates of a piece of a value amount to.
    struct Piece {
        std::string_view text;
        std::size_t first = 0;  // offset in the line
        bool hasTemplates = false;
        bool isFaulty = false;
        std::vector<FoundReference> references;
        std::size_t lastWord = 0;      // offset behind the last template that yields a word
        bool hasText = false;          // anything but references
        bool beginsWithSpace = false;  // the text without the references
    };

    void checkQuotes(const Entry& entry);
    bool reportQuoted(const Entry& entry, std::string_view text);
    void checkPiece(const Entry& entry, std::string_view text);
    void readTemplates(const Entry& entry, Piece& piece);
    void takeToken(const Entry& entry, Piece& piece, const TemplateToken& token);
    void takeVariable(const Entry& entry, Piece& piece, const TemplateToken& token);
    void takeFault(const Entry& entry, Piece& piece, const TemplateToken& token);
    [[nodiscard]] bool hasBraceBehind(const Entry& entry, std::size_t offset);
    void checkComment(const Entry& entry, const Piece& piece, const TemplateToken& literal);
    void store(const Entry& entry, const Piece& piece);
    void keep(const Entry& entry, const Piece& piece, const ConfigValue& value);
    void keepFaulty(const Entry& entry);
    [[nodiscard]] static std::optional<Shift> shiftOf(const Piece& piece, const ConfigValue& value);
    void report(RuleId rule, const Entry& entry, Span span, std::string_view name = {});
    void reportWithHint(RuleId rule, const Entry& entry, Span span, std::string_view name,
                        std::string_view hint);

    ReferenceGraph& graph_;
    const FaultSink& sink_;
    const std::map<std::string, std::string> variables_;
    std::optional<std::uint32_t> line_;    // the entry's in the graph, once a value needs it
    std::optional<std::size_t> braceEnd_;  // behind the entry's last '}', once a fault asks
    bool hasComment_ = false;              // in the entry at hand, told already
};

}  // namespace Tarnwick::Parser::ConfigTool
