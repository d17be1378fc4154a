#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config_value.h"
#include "diagnostic.h"
#include "load_event.h"

namespace Tarnwick::Parser {

/// Tells a listener what happens, and knows the place of it. Without a listener every operation
/// does nothing, so that a load that nobody hears costs no more than a few tests of a pointer.
class LoadTeller {
public:
    /// The listener, which may be empty, has to outlive the teller, and so has all that is told.
    explicit LoadTeller(const LoadListener& listener) : listener_(listener) {}

    /// Tells that the file is about to be read.
    void file(const std::string& path) {
        if (listener_) {
            tellFile(path);
        }
    }

    /// Notes, and does not tell, what the following is about: an entry, whose value begins at a
    /// column of its line, and a piece, which is a part of the value.
    void beginEntry(std::uint32_t line, std::uint32_t valueColumn, std::string_view group,
                    std::string_view key, std::string_view value) {
        if (listener_) {
            noteEntry(line, valueColumn, group, key, value);
        }
    }
    void beginPiece(std::string_view piece) {
        if (listener_) {
            notePiece(piece);
        }
    }

    /// Where the outcomes of the piece's templates are collected; null when nobody listens.
    [[nodiscard]] std::vector<TemplateOutcome>* outcomes() {
        return listener_ ? &outcomes_ : nullptr;
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
        if (listener_) {
            tellFault(found);
        }
    }

    /// Tells that the entry removed its key with so many values.
    void removed(std::size_t count) {
        if (listener_) {
            tellRemoved(count);
        }
    }

    /// Tells that the piece became this value, which replaced so many others.
    void stored(const ConfigValue& value, std::size_t replaced = 0) {
        if (listener_) {
            tellStored(value, replaced);
        }
    }

    /// Tells that the piece was dropped, for the fault that was told last or for another reason.
    void dropped() {
        if (listener_) {
            tellDropped();
        }
    }
    void dropped(Problem reason) {
        if (listener_) {
            tellDropped(reason);
        }
    }

private:
    void tellFile(const std::string& path);
    void noteEntry(std::uint32_t line, std::uint32_t valueColumn, std::string_view group,
                   std::string_view key, std::string_view value);
    void notePiece(std::string_view piece);
    void tellFault(const Diagnostic& found);
    void tellRemoved(std::size_t count);
    void tellStored(const ConfigValue& value, std::size_t replaced);
    void tellDropped();
    void tellDropped(Problem reason);
    void tellPiece(LoadEvent event);
    [[nodiscard]] Place placeInFile(const Place& inPiece) const;

    const LoadListener& listener_;
    LoadEvent current_{LoadEvent::Kind::File};  // where the load is
    std::uint32_t valueColumn_ = 1;
    std::vector<TemplateOutcome> outcomes_;
    Diagnostic lastFault_{Problem::ValueEmpty};
};

}  // namespace Tarnwick::Parser
