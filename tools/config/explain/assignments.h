#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/explain/last_words.h"
#include "config/explain/reference_trace.h"
#include "config/loading.h"
#include "load_event.h"

namespace Tarnwick::Parser::ConfigTool {

/// What became of a piece of a value.
enum class Outcome : std::uint8_t {
    Read,     ///< nothing: the request ended before values were expanded
    Stored,   ///< it is a value of the key
    Current,  ///< it is the last value of the key, which a request answers
    Unset,    ///< it was stored, and an empty value unset the key later
    Dropped,  ///< it was not stored
    Fatal,    ///< it ended the request
};

/// A part of an assignment's text between two ';'.
struct Piece {
    std::size_t first = 0;   ///< offset in the assignment's text
    std::size_t length = 0;  ///< in bytes
    std::uint32_t column = 0;
    Outcome outcome = Outcome::Read;
    std::string reason = {};  ///< Dropped, Fatal: why; Stored, Current: what is wrong with it
    bool isFilled = true;     ///< Stored, Current: its references have texts
    std::vector<TemplateRecord> templates = {};
    std::vector<Trace> traces = {};  ///< of the templates, once everything was read
};

/// One line that assigns the key.
struct Assignment {
    LineOrigin origin;
    std::string text;                         ///< all behind the '='
    std::vector<Piece> pieces = {};           ///< none when the text is empty
    std::optional<std::size_t> removed = {};  ///< how many values an empty text removed

    [[nodiscard]] std::string_view textOf(const Piece& piece) const {
        return std::string_view(text).substr(piece.first, piece.length);
    }
};

/// Collects the assignments of one key while configuration is loaded that appends values.
class AssignmentCollector {
public:
    explicit AssignmentCollector(KeyName name) : name_(std::move(name)) {}

    /// Takes what a load tells. `file` counts the files: the same one can be read twice.
    void note(const LoadEvent& event, const LineOrigin& origin, std::size_t file);

    /// The assignments, in the order of reading.
    [[nodiscard]] std::vector<Assignment>& assignments() { return assignments_; }

private:
    [[nodiscard]] Assignment& assignmentOf(const LoadEvent& event, const LineOrigin& origin,
                                           std::size_t file);
    static void addPiece(const LoadEvent& event, Assignment& assignment);
    void unsetBefore();

    KeyName name_;
    std::vector<Assignment> assignments_;
    std::size_t file_ = 0;       // of the last assignment
    std::size_t firstLeft_ = 0;  // the first assignment that no later one unset
};

}  // namespace Tarnwick::Parser::ConfigTool
