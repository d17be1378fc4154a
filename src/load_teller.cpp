#include "load_teller.h"

#include <algorithm>

namespace Tarnwick::Parser {
namespace {

using Kind = LoadEvent::Kind;

}  // namespace

void LoadTeller::tellFile(const std::string& path) {
    current_ = {.kind = Kind::File, .place = {.file = path}};
    listener_(current_);
}

void LoadTeller::notePiece(const ConfigFileIterator& entry, std::string_view piece) {
    current_.group = entry.group();
    current_.key = entry.key();
    current_.entry = entry.value();
    const std::size_t valueColumn = entry.key().size() + 2;
    const auto offset = static_cast<std::size_t>(piece.data() - entry.value().data());
    placePiece(piece, entry.lineNumber(), valueColumn + offset);
}

void LoadTeller::beginText(std::string_view text) {
    current_.entry = text;
    placePiece(text, 0, 1);
}

void LoadTeller::placePiece(std::string_view piece, std::uint32_t line, std::size_t column) {
    const std::size_t length = std::max<std::size_t>(piece.size(), 1);
    current_.piece = piece;
    current_.place.line = line;
    current_.place.firstColumn = static_cast<std::uint32_t>(column);
    current_.place.lastColumn = static_cast<std::uint32_t>(column + length - 1);
    outcomes_.clear();
}

void LoadTeller::tellFault(const Diagnostic& found) {
    const bool isOfPiece = found.place.file.empty();
    LoadEvent event = isOfPiece ? current_ : LoadEvent{.kind = Kind::Fault};
    event.kind = Kind::Fault;
    lastFault_ = found;
    if (isOfPiece) {
        lastFault_.place = placeInFile(found.place);
    }
    event.place = lastFault_.place;
    event.fault = &lastFault_;
    if (found.problem == Problem::ValueBlank) {
        tellPiece(event);  // its last event: an exception follows
        return;
    }
    listener_(event);
}

void LoadTeller::tellRemoved(const ConfigFileIterator& entry, std::size_t count) {
    notePiece(entry, entry.value());
    LoadEvent event = current_;
    event.kind = Kind::Removed;
    event.count = count;
    listener_(event);
}

void LoadTeller::tellStored(const ConfigValue* value, Problem otherwise) {
    if (value == nullptr) {
        tellDropped(otherwise);
        return;
    }
    LoadEvent event = current_;
    event.kind = Kind::Stored;
    event.value = value;
    tellPiece(event);
}

void LoadTeller::tellDropped() {
    LoadEvent event = current_;
    event.kind = Kind::Dropped;
    event.fault = &lastFault_;
    tellPiece(event);
}

void LoadTeller::tellDropped(Problem reason) {
    lastFault_ = {.problem = reason, .place = current_.place, .text = current_.piece};
    tellDropped();
}

void LoadTeller::tellPiece(LoadEvent event) {
    const std::uint32_t before = current_.place.firstColumn - 1;
    for (TemplateOutcome& outcome : outcomes_) {
        outcome.firstColumn += before;
        outcome.lastColumn += before;
    }
    event.templates = outcomes_;
    listener_(event);
}

// The place of a part of the piece; without columns it is the whole piece.
Place LoadTeller::placeInFile(const Place& inPiece) const {
    if (inPiece.firstColumn == 0) {
        return current_.place;
    }
    const std::uint32_t before = current_.place.firstColumn - 1;
    return {current_.place.file, current_.place.line, inPiece.firstColumn + before,
            inPiece.lastColumn + before};
}

}  // namespace Tarnwick::Parser
