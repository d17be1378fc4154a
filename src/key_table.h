#pragma once

#include <cstdint>
#include <deque>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "config_parser.h"

namespace Tarnwick::Parser {

/// The keys of one group with their values.
///
/// A hash table with linear probing. A slot holds the key's hash beside the number of its entry,
/// so that adding a key to millions touches a slot and no other entry, and growing touches slots
/// alone. A list stays where it is as long as the table, whatever comes and goes beside it.
class KeyTable {
public:
    /// Entries and lists are taken from `arena`, which has to outlive the table.
    explicit KeyTable(std::pmr::memory_resource* arena);

    /// Returns the key's list, or null when there is no such key.
    [[nodiscard]] const ValueList* find(std::string_view key) const;

    /// Returns the key's list; adds the key, with an empty list, when it is missing.
    [[nodiscard]] ValueList& obtain(std::string_view key);

    /// Removes the key with its values, if there is such a key.
    void erase(std::string_view key);

private:
    struct Entry {
        Entry(std::string_view name, std::pmr::memory_resource* arena)
            : key(copyOf(name, arena)), values(arena) {}

        std::string_view key;  // in the arena
        ValueList values;
    };

    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t entry : 31 = kFree;
        std::uint32_t isErased : 1 = 0;  // The entry stays, in case the key comes back.
    };
    static constexpr std::uint32_t kFree = (1U << 31U) - 1;

    [[nodiscard]] static std::string_view copyOf(std::string_view text,
                                                 std::pmr::memory_resource* arena);
    [[nodiscard]] std::size_t locate(std::string_view key, std::uint32_t hash) const;
    [[nodiscard]] std::size_t home(std::uint32_t hash) const { return hash & (slots_.size() - 1); }
    void grow();

    std::pmr::deque<Entry> entries_;
    std::vector<Slot> slots_;  // a power of two; not from the arena, which would keep old ones
};

}  // namespace Tarnwick::Parser
