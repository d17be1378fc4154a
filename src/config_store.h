#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "config_value.h"
#include "parser_types.h"

namespace Tarnwick::Parser {

/// Hash of a (group, key) pair in 32-bit arithmetic.
struct KeyPairHash {
    std::size_t operator()(const std::pair<std::string, std::string>& pair) const;
};

/// The values of all keys by group and key, and the registry of the keys that the caller declared.
///
/// Names are compared byte for byte. One thread at a time.
class ConfigStore {
public:
    // --- Registry ---

    /// Registers the key with `mode`. A key that is registered already keeps its first mode.
    void addKey(const std::string& group, const std::string& key, KeyMode mode);

    /// Returns whether any key is registered. If none is, every key is taken.
    [[nodiscard]] bool hasRegistry() const { return !registry_.empty(); }

    /// Returns whether any key of the group is registered.
    [[nodiscard]] bool registersGroup(const std::string& group) const;

    /// Returns the registered mode as a number, or -1 when the key is not registered.
    [[nodiscard]] std::int32_t keyMode(const std::string& group, const std::string& key) const;

    /// Logs at the warning level "GROUP/KEY has not been added to the parser" when keys are
    /// registered but not this one.
    void checkKeyAdded(const std::string& group, const std::string& key) const;

    // --- Presence ---

    /// Calls `checkKeyAdded`, then returns whether there is an entry for the key, be it empty.
    [[nodiscard]] bool hasKey(const std::string& group, const std::string& key) const;

    [[nodiscard]] bool hasGroup(const std::string& group) const;

    /// Returns the names of the groups, in byte order.
    [[nodiscard]] std::vector<std::string> groups() const;

    /// Returns the names of the group's keys, in byte order.
    [[nodiscard]] std::vector<std::string> keys(const std::string& group) const;

    // --- Values ---

    /// Returns the key's values, or null when the key has no entry. Adds no entry, logs nothing.
    [[nodiscard]] const std::vector<ConfigValue>* find(const std::string& group,
                                                       const std::string& key) const;

    /// Returns the key's values in the order in which they were stored; adds the entry when it is
    /// missing. The reference is valid until the key is removed.
    [[nodiscard]] std::vector<ConfigValue>& valueList(const std::string& group,
                                                      const std::string& key);

    /// Adds the value to the key's list and returns it as it stands there. An empty value is not
    /// added, and the result is null.
    ConfigValue* appendValue(const std::string& group, const std::string& key, ConfigValue&& value);

    /// Makes the value, also an empty one, the key's only value and returns it as it stands there.
    ConfigValue& replaceValues(const std::string& group, const std::string& key, ConfigValue value);

    /// Removes the key and returns how many values went with it. The group stays.
    std::size_t removeKey(const std::string& group, const std::string& key);

private:
    std::unordered_map<std::string, std::unordered_map<std::string, std::vector<ConfigValue>>>
        values_;
    std::unordered_map<std::pair<std::string, std::string>, KeyMode, KeyPairHash> registry_;
};

}  // namespace Tarnwick::Parser
