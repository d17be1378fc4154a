#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "config_value.h"
#include "diagnostic.h"
#include "parser_types.h"

namespace Tarnwick::Parser {

/// What one template of a piece came to.
struct TemplateOutcome {
    std::string_view name;          ///< all between the braces
    std::uint32_t firstColumn = 0;  ///< of the '$', in the file's line or in the text expanded
    std::uint32_t lastColumn = 0;   ///< of the '}'
    TemplateResult result = TemplateResult::Failed;  ///< what came of it
    std::string text = {};                           ///< Resolved: the replacement
    std::string_view group = {};                     ///< Reference: the group it names
    std::string_view key = {};                       ///< Reference: the key it names
};

/// What a load tells its listener, in the order of reading.
struct LoadEvent {
    /// What happened.
    enum class Kind {
        File,     ///< a file is about to be read
        Stored,   ///< a piece became a value of its key
        Removed,  ///< an empty value removed the key
        Dropped,  ///< a piece was not stored; `fault` says why
        Fault,    ///< something was found; it has been logged, if its problem has words
    };

    Kind kind;  ///< what happened; it decides which of the others are set
    /// File, and line and columns of the piece; of a fault, the place of the fault.
    Place place = {};
    std::string_view group = {};  ///< the group of the line
    std::string_view key = {};    ///< the key of the line
    std::string_view entry = {};  ///< all behind the '=' of the line
    std::string_view piece = {};  ///< the part of `entry` between two ';' that this is about
    /// Stored: the value as it stands in the store.
    const ConfigValue* value = nullptr;
    /// Fault: what was found. Dropped: why, a fault that was told before or one that is not logged.
    const Diagnostic* fault = nullptr;
    /// Stored and Dropped: the piece's templates from the left, as far as they were looked at.
    std::span<const TemplateOutcome> templates = {};
    /// Removed: how many values went.
    std::size_t count = 0;
};

/// Hears what a load does. Everything that an event points to is valid until the listener returns.
/// A listener must not touch the parser that is loading. What it throws ends the load and reaches
/// the caller unchanged. Entries of keys that are not registered are not told.
using LoadListener = std::function<void(const LoadEvent& event)>;

}  // namespace Tarnwick::Parser
