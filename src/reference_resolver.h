#pragma once

#include <string>
#include <utility>

#include "config_store.h"
#include "config_value.h"
#include "diagnostic.h"

namespace Tarnwick::Parser {

/// How many values one resolution may visit, the first among them. Visits are counted, not the
/// depth of a chain: at most so many values take part, however they are arranged.
inline constexpr int kMostVisits = 33;

/// Fills the references of values from a store. Every call resolves afresh.
class ReferenceResolver {
public:
    /// A (group, key) pair.
    using KeyName = std::pair<std::string, std::string>;

    /// The store has to outlive the resolver.
    ReferenceResolver(const ConfigStore& store, DiagnosticSink sink)
        : store_(store), sink_(std::move(sink)) {}

    /// Sets `out` to the value's text with every reference replaced by the last value of the key
    /// it names, and so on. A key that does not exist, or has no value, gives an empty text. A
    /// value whose `hasReferences` is neither 0 nor 1 leaves `out` as it was.
    ///
    /// Returns false when the references lead in a circle or to more than 32 other values: the
    /// sink is told TooManyReferences, and `out` is empty.
    ///
    /// Throws `std::out_of_range` for a reference whose position lies past the end of its text,
    /// with the name of the key whose value is at fault. `owner` names the key of `value` itself;
    /// it is null when that is not known.
    bool resolve(const ConfigValue& value, std::string& out, const KeyName* owner = nullptr) const;

private:
    const ConfigStore& store_;
    DiagnosticSink sink_;
};

}  // namespace Tarnwick::Parser
