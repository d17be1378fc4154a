#include "key_table.h"

#include <functional>
#include <utility>

namespace Tarnwick::Parser {
namespace {

constexpr std::size_t kFirstSize = 64;

std::uint32_t hashOf(std::string_view key) {
    return static_cast<std::uint32_t>(std::hash<std::string_view>{}(key));
}

}  // namespace

KeyTable::KeyTable(std::pmr::memory_resource* arena) : entries_(arena), slots_(kFirstSize) {}

const ValueList* KeyTable::find(std::string_view key) const {
    const Slot& slot = slots_[locate(key, hashOf(key))];
    return slot.entry == kFree || slot.isErased ? nullptr : &entries_[slot.entry].values;
}

ValueList& KeyTable::obtain(std::string_view key) {
    const std::uint32_t hash = hashOf(key);
    Slot* slot = &slots_[locate(key, hash)];
    if (slot->entry != kFree) {
        slot->isErased = 0;
        return entries_[slot->entry].values;
    }
    if (2 * entries_.size() >= slots_.size()) {
        grow();
        slot = &slots_[locate(key, hash)];
    }
    entries_.emplace_back(key, entries_.get_allocator().resource());
    slot->hash = hash;
    slot->entry = static_cast<std::uint32_t>(entries_.size() - 1) & kFree;
    return entries_.back().values;
}

void KeyTable::erase(std::string_view key) {
    Slot& slot = slots_[locate(key, hashOf(key))];
    if (slot.entry != kFree) {
        slot.isErased = 1;
        entries_[slot.entry].values.clear();
    }
}

std::string_view KeyTable::copyOf(std::string_view text, std::pmr::memory_resource* arena) {
    auto* const copy = static_cast<char*>(arena->allocate(text.size(), 1));
    text.copy(copy, text.size());
    return {copy, text.size()};
}

// The slot of the key, or the free one where it belongs. At least half of the slots are free.
std::size_t KeyTable::locate(std::string_view key, std::uint32_t hash) const {
    std::size_t index = home(hash);
    while (slots_[index].entry != kFree &&
           (slots_[index].hash != hash || entries_[slots_[index].entry].key != key)) {
        index = (index + 1) & (slots_.size() - 1);
    }
    return index;
}

void KeyTable::grow() {
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    for (const Slot& slot : old) {
        if (slot.entry != kFree) {
            std::size_t index = home(slot.hash);
            while (slots_[index].entry != kFree) {
                index = (index + 1) & (slots_.size() - 1);
            }
            slots_[index] = slot;
        }
    }
}

}  // namespace Tarnwick::Parser
