#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "config_value.h"
#include "diagnostic.h"
#include "template_text.h"

namespace Tarnwick::Parser {

/// What a load tells its listener, in the order of reading. Only the library makes events: later
/// versions may add fields at the end.
///
/// The fields that each kind fills, besides `kind` and `place`:
///
///     File     none; the place is the file
///     Stored   group, key, entry, piece, value, templates
///     Removed  group, key, count; the place is behind the '='
///     Dropped  group, key, entry, piece, fault, templates
///     Fault    fault; of a template or a blank value also group, key, entry, piece; of a blank
///              value also templates
///
/// A piece that a fault of a template drops is told twice: the fault, then the piece as dropped. A
/// blank value is told as a fault alone, since its exception follows.
struct LoadEvent {
    /// What happened.
    enum class Kind : std::int32_t {
        File,     ///< a file is about to be read
        Stored,   ///< a piece became a value of its key
        Removed,  ///< an empty value removed the key
        Dropped,  ///< a piece was not stored; `fault` says why
        Fault,    ///< something was found; it has been logged, if its problem has words
    };

    Kind kind;  ///< what happened; it decides which of the others are set
    /// File, line and columns of the piece; of a fault, the place of the fault.
    Place place = {};
    std::string_view group = {};  ///< the group of the line
    std::string_view key = {};    ///< the key of the line
    std::string_view entry = {};  ///< all behind the '=' of the line
    std::string_view piece = {};  ///< the part of `entry` between two ';' that this is about
    /// The value as it stands in the store.
    const ConfigValue* value = nullptr;
    /// What was found. Of a dropped piece: why, a fault that was told before or one without words.
    const Diagnostic* fault = nullptr;
    /// The piece's templates from the left, as far as they were looked at.
    std::span<const TemplateOutcome> templates = {};
    /// How many values an empty value removed.
    std::size_t count = 0;
};

/// Hears what a load does. Everything that an event points to is valid until the listener returns.
/// A listener must not touch the parser that is loading. What it throws ends the load and reaches
/// the caller unchanged. Entries of keys that are not registered are not told.
using LoadListener = std::function<void(const LoadEvent& event)>;

}  // namespace Tarnwick::Parser
