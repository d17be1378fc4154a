#include "load_teller.h"

namespace Tarnwick::Parser {
namespace {

using Kind = LoadEvent::Kind;

}  // namespace

void LoadTeller::tellFile(const std::string& path) {
    current_ = {.kind = Kind::File, .place = {.file = path}};
    listener_(current_);
}

void LoadTeller::noteEntry(std::uint32_t line, std::uint32_t valueColumn, std::string_view group,
                           std::string_view key, std::string_view value) {
    current_.place.line = line;
    current_.group = group;
    current_.key = key;
    current_.entry = value;
    valueColumn_ = valueColumn;
    notePiece(value);
}

void LoadTeller::notePiece(std::string_view piece) {
    const auto offset = static_cast<std::uint32_t>(piece.data() - current_.entry.data());
    const auto length = static_cast<std::uint32_t>(piece.size());
    current_.piece = piece;
    current_.place.firstColumn = valueColumn_ + offset;
    current_.place.lastColumn = current_.place.firstColumn + (length > 0 ? length - 1 : 0);
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
    listener_(event);
}

void LoadTeller::tellRemoved(std::size_t count) {
    LoadEvent event = current_;
    event.kind = Kind::Removed;
    event.count = count;
    listener_(event);
}

void LoadTeller::tellStored(const ConfigValue& value, std::size_t replaced) {
    LoadEvent event = current_;
    event.kind = Kind::Stored;
    event.value = &value;
    event.count = replaced;
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
