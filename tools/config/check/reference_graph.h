#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "config/check/fault.h"

namespace Tarnwick::Parser::ConfigTool {

/// A line that is kept to the end, because what is judged then stands in it. Its path has to
/// outlive it.
struct KeptLine {
    std::string_view path;
    std::uint32_t number;
    std::string text;
};

/// What trimming does to a value with references.
struct Shift {
    Severity severity;
    std::size_t reference;  ///< the number of the reference that shows it, counted from 0
};

/// A reference, as it stands in a line.
struct FoundReference {
    std::string_view group;
    std::string_view key;
    Span span;  ///< in the line
};

/// The values that are left at the end of a load, as far as they refer to others: what is wrong
/// with them shows only then. Values that refer to nothing are not kept.
class ReferenceGraph {
public:
    /// Adds a value without references to the key.
    void addPlain(const std::string& group, const std::string& key);

    /// Adds a value that refers to others.
    void add(const std::string& group, const std::string& key,
             const std::shared_ptr<const KeptLine>& line,
             const std::vector<FoundReference>& references, std::optional<Shift> shift);

    /// Takes all of the key's values away.
    void unset(const std::string& group, const std::string& key);

    /// Tells every fault of the values that are left, in the order of their reading. References
    /// to keys without a value are faults only when `hasAllFiles`. Takes time and memory in
    /// proportion to the references, and no recursion.
    void judge(bool hasAllFiles, const FaultSink& sink);

private:
    friend class Judgement;

    struct Target {
        std::uint32_t key;
        std::uint32_t first;
        std::uint32_t end;
    };
    struct Value {
        std::shared_ptr<const KeptLine> line;
        std::uint32_t key;
        std::uint32_t number;  // in the order of reading
        std::optional<Shift> shift;
        std::vector<Target> targets;
    };
    struct Key {
        bool isSet = false;
        bool isLastPlain = false;
        std::vector<Value> values;
    };

    [[nodiscard]] std::uint32_t keyNumber(std::string_view group, std::string_view key);

    std::vector<Key> keys_;
    std::vector<const std::string*> names_;  // "GROUP/KEY" of each key
    std::unordered_map<std::string, std::uint32_t> numbers_;
    std::uint32_t nextValue_ = 0;
};

}  // namespace Tarnwick::Parser::ConfigTool
