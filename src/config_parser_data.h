#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "config_parser.h"
#include "key_table.h"

namespace Tarnwick::Parser {

/// Hash of a (group, key) pair in 32-bit arithmetic, the same for strings and views of them.
struct KeyPairHash {
    using is_transparent = void;

    std::size_t operator()(const std::pair<std::string_view, std::string_view>& pair) const;
};

/// Equality of (group, key) pairs, whether of strings or of views.
struct KeyPairEqual {
    using is_transparent = void;
    using Pair = std::pair<std::string_view, std::string_view>;

    bool operator()(const Pair& left, const Pair& right) const { return left == right; }
};

using GroupMap = std::unordered_map<std::string, KeyTable>;

/// What a parser holds. `variables` and `userId` are what templates are expanded with.
///
/// Entries are many and live until the parser goes, so they and their lists take their memory
/// from one arena: an allocation is a few instructions, and neighbours in time are neighbours in
/// memory.
struct ConfigParserData {
    std::pmr::monotonic_buffer_resource arena;  // outlives what is taken from it
    GroupMap values;
    std::unordered_map<std::pair<std::string, std::string>, KeyMode, KeyPairHash, KeyPairEqual>
        registry;
    std::map<std::string, std::string> variables;
    std::int32_t userId = -1;
    /// The group that was stored to last: files store long runs of keys into one group. Groups
    /// are never removed, so it stays valid.
    GroupMap::value_type* lastGroup = nullptr;

    /// The key's list, or null when the key has no entry. Makes no entry and says nothing.
    [[nodiscard]] const ValueList* find(const std::string& group, const std::string& key) const;

    /// The key's list; makes the entries that are missing.
    [[nodiscard]] ValueList& listOf(const std::string& group, const std::string& key);

    /// Whether any key of the group is registered.
    [[nodiscard]] bool registersGroup(const std::string& group) const;
};

}  // namespace Tarnwick::Parser
