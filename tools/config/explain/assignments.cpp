#include "config/explain/assignments.h"

#include "config/explain/reasons.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

using Kind = LoadEvent::Kind;

Outcome outcomeOf(Kind kind) {
    switch (kind) {
        case Kind::Stored:
            return Outcome::Stored;
        case Kind::Dropped:
            return Outcome::Dropped;
        default:
            return Outcome::Fatal;
    }
}

// A template's fault is told once more as the reason of the dropped piece.
bool concernsPiece(const LoadEvent& event) {
    return event.kind != Kind::File &&
           (event.kind != Kind::Fault || event.fault->problem == Problem::ValueBlank);
}

}  // namespace

void AssignmentCollector::note(const LoadEvent& event, const LineOrigin& origin, std::size_t file) {
    if (!concernsPiece(event) || event.key != name_.key || event.group != name_.group) {
        return;
    }
    Assignment& assignment = assignmentOf(event, origin, file);
    if (event.kind == Kind::Removed) {
        assignment.removed = event.count;
        unsetBefore();
    } else {
        addPiece(event, assignment);
    }
}

Assignment& AssignmentCollector::assignmentOf(const LoadEvent& event, const LineOrigin& origin,
                                              std::size_t file) {
    const bool isSame =
        !assignments_.empty() && file == file_ && assignments_.back().origin.line == origin.line;
    if (!isSame) {
        assignments_.push_back({.origin = origin, .text = std::string(event.entry)});
        file_ = file;
    }
    return assignments_.back();
}

void AssignmentCollector::addPiece(const LoadEvent& event, Assignment& assignment) {
    assignment.pieces.push_back(
        {.first = static_cast<std::size_t>(event.piece.data() - event.entry.data()),
         .length = event.piece.size(),
         .column = event.place.firstColumn,
         .outcome = outcomeOf(event.kind),
         .reason = event.fault != nullptr ? reasonOf(event) : "",
         .templates = recordsOf(event.templates)});
}

void AssignmentCollector::unsetBefore() {
    for (; firstLeft_ < assignments_.size(); ++firstLeft_) {
        for (Piece& piece : assignments_[firstLeft_].pieces) {
            if (piece.outcome == Outcome::Stored) {
                piece.outcome = Outcome::Unset;
            }
        }
    }
}

}  // namespace Tarnwick::Parser::ConfigTool
