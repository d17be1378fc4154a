#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "load_event.h"

namespace Tarnwick::Parser::ConfigTool {

/// Where one value stands, and how it was written. Valid as long as the `StoredValues`.
struct ValueOrigin {
    std::string_view file;
    std::uint32_t line = 0;
    std::string_view raw;
    std::string_view text;  ///< the value; with references, without their texts
    bool hasReferences = false;
};

/// One key that a load left with values, and the origins of these in their order.
struct StoredKey {
    const std::string& group;
    const std::string& key;
    const std::vector<ValueOrigin>& origins;
};

/// The origins of the values that a load leaves. It listens to the load, since a parser keeps none.
/// A million values take about as much memory here as in the parser.
class StoredValues {
public:
    StoredValues() = default;
    StoredValues(const StoredValues&) = delete;  // keys point to each other
    StoredValues& operator=(const StoredValues&) = delete;
    ~StoredValues() = default;

    /// Returns what listens to the load. It refers to this object.
    [[nodiscard]] LoadListener listener();

    /// Calls `visit` for each key, in the order of the first value that each has left, until it
    /// returns false.
    void forEachKey(const std::function<bool(const StoredKey& key)>& visit) const;

private:
    static constexpr auto kNone = std::numeric_limits<std::uint32_t>::max();

    /// The values of a key are a chain through `values_`.
    struct Key {
        const std::string* group = nullptr;
        std::uint32_t first = kNone;
        std::uint32_t last = kNone;
    };
    using Keys = std::pmr::unordered_map<std::string, Key>;

    /// A part of `texts_`.
    struct Text {
        std::size_t start = 0;
        std::size_t length = 0;
    };

    struct Value {
        const Keys::value_type* owner = nullptr;
        Text raw = {};
        Text text = {};          // where nothing was expanded, the same
        std::uint32_t file = 0;  // in files_
        std::uint32_t line = 0;
        std::uint32_t next = kNone;  // value of the same key
        bool hasReferences = false;
    };

    void hear(const LoadEvent& event);
    void add(const LoadEvent& event);
    [[nodiscard]] Keys::value_type& find(const LoadEvent& event);
    [[nodiscard]] Text keep(std::string_view text);
    [[nodiscard]] std::string_view textOf(const Text& text) const;
    [[nodiscard]] ValueOrigin originOf(const Value& value) const;

    std::vector<std::string> files_;
    std::string texts_;
    std::vector<Value> values_;  // in the order in which they were stored, those removed since too
    std::pmr::monotonic_buffer_resource pool_;  // to free a million nodes takes its time
    std::pmr::unordered_map<std::string, Keys> groups_{&pool_};
    std::pair<const std::string, Keys>* group_ = nullptr;  // of the last value
};

}  // namespace Tarnwick::Parser::ConfigTool
