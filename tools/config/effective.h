#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "config/stored_values.h"
#include "config_parser.h"

namespace Tarnwick::Parser::ConfigTool {

/// The groups and keys that a command line asks for.
class Selection {
public:
    /// Each name is GROUP or GROUP/KEY. Without any, every key is selected.
    explicit Selection(const std::vector<std::string>& names);
    Selection(const Selection&) = delete;  // a part of it points into another
    Selection& operator=(const Selection&) = delete;
    ~Selection() = default;

    /// Returns whether the key is selected, and notes what has selected it.
    [[nodiscard]] bool takes(const std::string& group, const std::string& key);

    /// Returns the names that have selected no key so far.
    [[nodiscard]] std::vector<std::string> missing() const;

private:
    // A name that was typed; several can say the same.
    struct Item {
        std::string name;
        const bool* isFound;
    };
    struct Group {
        bool isWhole = false;  // selected with all its keys
        bool isFound = false;
        std::unordered_map<std::string, bool> keys;  // those selected, and whether they were found
    };
    std::unordered_map<std::string, Group> groups_;
    std::vector<Item> items_;  // in the order of the command line; they point into `groups_`
};

/// Whether texts are shown with their templates, as they were written.
enum class Texts { Expanded, AsWritten };

/// One value: its text, or the reason why it has none.
struct ShownValue {
    const ValueOrigin* origin;
    std::string_view text = {};
    std::string_view problem = {};  ///< empty: none

    [[nodiscard]] bool hasFailed() const { return !problem.empty(); }
};

/// One key with all its values. The texts are valid until the next key is visited.
struct ShownKey {
    const StoredKey& stored;
    const std::vector<ShownValue>& values;  ///< the last one is current
};

/// The configuration that a load left, key by key.
class Effective {
public:
    /// The others have to outlive this object.
    Effective(ConfigParser& parser, const StoredValues& stored, Selection& selection, Texts kind)
        : parser_(parser), stored_(stored), selection_(selection), kind_(kind) {}

    /// Is called for a key; returns whether to go on.
    using Show = std::function<bool(const ShownKey& key)>;

    /// Calls `show` for each selected key, in the order of the first value of each.
    void visit(const Show& show) const;

private:
    using Filled = std::deque<std::string>;  // its texts stay where they are when it grows

    ShownValue valueAt(const StoredKey& key, std::size_t index, Filled& filled) const;

    ConfigParser& parser_;
    const StoredValues& stored_;
    Selection& selection_;
    Texts kind_;
};

}  // namespace Tarnwick::Parser::ConfigTool
