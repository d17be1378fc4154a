#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "api.h"

namespace Tarnwick::Parser {

/// The holes of one value: what to insert, and where.
struct ReferenceBlock {
    /// The (group, key) pairs to draw on, in the order of their templates in the text.
    std::vector<std::pair<std::string, std::string>> targets;
    /// Byte offsets into the value's text as it is without any insertion, one per target. White
    /// space trimmed from the start of the text is not subtracted; callers depend on it.
    std::vector<std::uint32_t> positions;
};

/// One stored value: a text whose templates are expanded, apart from references to other keys,
/// which are kept as holes and filled at lookup.
///
/// "x${config:A/B}y" is stored as the text "xy" with one reference to (A, B) at position 1.
struct TARNWICK_API ConfigValue {
    /// Null as long as the value has no references.
    std::unique_ptr<ReferenceBlock> references;
    /// The text without the referenced texts.
    std::string text;
    /// 0: plain text. 1: text with references. Anything else: resolution finds no text.
    std::int32_t hasReferences = 0;

    /// @{
    /// Copies are deep. A value that was moved from can be cleared, assigned to or destroyed.
    ConfigValue() = default;
    ConfigValue(const ConfigValue& other);
    ConfigValue(ConfigValue&& other) noexcept = default;
    ConfigValue& operator=(const ConfigValue& other);
    ConfigValue& operator=(ConfigValue&& other) noexcept = default;
    ~ConfigValue() = default;
    /// @}

    /// Returns whether references and texts are equal. `hasReferences` deliberately does not
    /// count, and a block without targets equals no block.
    [[nodiscard]] bool operator==(const ConfigValue& other) const;

    /// Returns whether there is nothing to store: no text, no references, `hasReferences` not 1.
    [[nodiscard]] bool isEmpty() const {
        return hasReferences != 1 && text.empty() && (!references || references->targets.empty());
    }

    /// Makes the value plain and empty.
    void clear();

    /// Adds a hole at `position` for the value of (group, key).
    void addReference(const std::string& group, const std::string& key,
                      const std::uint32_t& position);

    /// Returns the text with `resolved[i]` inserted at position i, each position counted without
    /// the insertions before it.
    ///
    /// A list of another length than the positions leaves the text as it is and is reported as
    /// "ConfigValue references size N mismatch with resolve list size M" at the warning level,
    /// each size as the one character with the code of its low 8 bits. A position past the end
    /// of the text throws `std::out_of_range`.
    [[nodiscard]] std::string applyReferences(const std::vector<std::string>& resolved) const;
};

}  // namespace Tarnwick::Parser
