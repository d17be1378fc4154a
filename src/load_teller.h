#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config_file.h"
#include "config_value.h"
#include "diagnostic.h"
#include "load_event.h"

namespace Tarnwick::Parser {

/// Tells a listener what happens, and knows the place of it. Without a listener every operation
/// does nothing, so that a load that nobody hears costs no more than a few tests of a flag.
class LoadTeller {
public:
    /// The listener, which may be empty, has to outlive the teller, and so has all that is told.
    explicit LoadTeller(const LoadListener& listener)
        : listener_(listener), isHeard_(listener != nullptr) {}

    /// Tells that the file is about to be read.
    void file(const std::string& path) {
        if (isHeard_) [[unlikely]] {
            tellFile(path);
        }
    }

    /// Notes, and does not tell, what the following is about: a piece of the entry's value.
    void beginPiece(const ConfigFileIterator& entry, std::string_view piece) {
        if (isHeard_) [[unlikely]] {
            notePiece(entry, piece);
        }
    }

    /// As above for a text that stands in no file.
    void beginText(std::string_view text);

    /// Where the outcomes of the piece's templates are collected; null when nobody listens.
    [[nodiscard]] std::vector<TemplateOutcome>* outcomes() {
        return isHeard_ ? &outcomes_ : nullptr;
    }

    /// Returns a sink that logs and then tells. It refers to the teller.
    [[nodiscard]] DiagnosticSink sink() {
        return [this](const Diagnostic& found) {
            logDiagnostic(found);
            fault(found);
        };
    }

    /// Tells a fault. One without a file is of the piece, and its columns are those of the piece.
    void fault(const Diagnostic& found) {
        if (isHeard_) [[unlikely]] {
            tellFault(found);
        }
    }

    /// Tells that the entry removed its key with so many values.
    void removed(const ConfigFileIterator& entry, std::size_t count) {
        if (isHeard_) [[unlikely]] {
            tellRemoved(entry, count);
        }
    }

    /// Tells that the piece became this value, or, if it is null, was dropped for this reason.
    void stored(const ConfigValue* value, Problem otherwise) {
        if (isHeard_) [[unlikely]] {
            tellStored(value, otherwise);
        }
    }

    /// Tells that the piece was dropped, for the fault that was told last or for another reason.
    void dropped() {
        if (isHeard_) [[unlikely]] {
            tellDropped();
        }
    }
    void dropped(Problem reason) {
        if (isHeard_) [[unlikely]] {
            tellDropped(reason);
        }
    }

private:
    void tellFile(const std::string& path);
    void notePiece(const ConfigFileIterator& entry, std::string_view piece);
    void placePiece(std::string_view piece, std::uint32_t line, std::size_t column);
    void tellFault(const Diagnostic& found);
    void tellRemoved(const ConfigFileIterator& entry, std::size_t count);
    void tellStored(const ConfigValue* value, Problem otherwise);
    void tellDropped();
    void tellDropped(Problem reason);
    void tellPiece(LoadEvent event);
    [[nodiscard]] Place placeInFile(const Place& inPiece) const;

    const LoadListener& listener_;
    bool isHeard_;
    LoadEvent current_{LoadEvent::Kind::File};  // where the load is
    std::vector<TemplateOutcome> outcomes_;
    Diagnostic lastFault_{Problem::ValueEmpty};
};

}  // namespace Tarnwick::Parser
