#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "config/check/fault.h"
#include "config/check/names.h"

namespace Tarnwick::Parser::ConfigTool {

/// What trimming does to a value with references.
struct Shift {
    Severity severity;
    std::uint32_t reference;  ///< the number of the reference that shows it, counted from 0
};

/// A reference, as it stands in a line.
struct FoundReference {
    std::string_view group;
    std::string_view key;
    Span span;  ///< in the line
};

/// The values that are left at the end of a load, as far as they refer to others: what is wrong
/// with them shows only then. Holds the lines of such values, the names of all keys, and less
/// than a hundred bytes for each key and value; values that refer to nothing are not kept. This is
/// all that grows with a configuration, to less than twenty times the size of its files.
class ReferenceGraph {
public:
    /// Keeps a line in which values stand that refer to others, for `add`. Its path has to outlive
    /// the graph.
    [[nodiscard]] std::uint32_t keepLine(const SourceLine& line);

    /// Adds a value to the key that has no references, or a fault that hides them.
    void addPlain(const std::string& group, const std::string& key);

    /// Adds a value that refers to others.
    void add(const std::string& group, const std::string& key, std::uint32_t line,
             const std::vector<FoundReference>& references, std::optional<Shift> shift);

    /// Takes all of the key's values away.
    void unset(const std::string& group, const std::string& key);

    /// Tells every fault of the values that are left, in the order of their reading. References
    /// to keys without a value are faults only when `hasAllFiles`; near ones among the names are
    /// suggested. Takes time and memory in proportion to the references, and no recursion.
    void judge(bool hasAllFiles, const KnownNames& names, const FaultSink& sink) const;

private:
    friend class Judgement;

    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

    struct Line {
        std::string_view path;
        std::uint32_t number;
        std::string text;
    };
    struct Target {
        std::uint32_t key;
        std::uint32_t first;  // where the reference stands in the line
        std::uint32_t end;
    };
    struct Value {
        std::uint32_t line = 0;
        std::uint32_t key = 0;
        std::size_t firstTarget = 0;
        std::size_t endTarget = 0;
        std::optional<Shift> shift;
    };
    enum class KeyState : std::uint8_t { Untouched, Set, Unset };
    struct Key {
        KeyState state = KeyState::Untouched;  // what the files said last
        std::uint32_t firstValue = 0;          // those before it were taken away
        std::uint32_t lastValue = kNone;       // kNone: it refers to nothing, or there is none
    };

    [[nodiscard]] std::uint32_t keyNumber(std::string_view group, std::string_view key);

    std::unordered_map<std::string, std::uint32_t> numbers_;  // of keys, by "GROUP/KEY"
    // These grow without being moved: they may be as many as the files have room for.
    std::deque<const std::string*> names_;  // of keys
    std::deque<Key> keys_;
    std::deque<Line> lines_;
    std::deque<Value> values_;  // in the order of reading
    std::deque<Target> targets_;
};

}  // namespace Tarnwick::Parser::ConfigTool
