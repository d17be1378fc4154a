#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Tarnwick::Parser::ConfigTool {

/// Returns the name of the list that is nearest to `name`, or nothing when none is near. Letter
/// case counts less than letters do.
[[nodiscard]] std::string_view nearestName(std::string_view name,
                                           const std::vector<std::string_view>& names);

/// Returns "; did you mean 'NAME'?" with the nearest name, or nothing when none is near.
[[nodiscard]] std::string suggestion(std::string_view name,
                                     const std::vector<std::string_view>& names);

/// @{
/// The same for the template variables and for the sources of templates.
[[nodiscard]] std::string suggestedVariable(std::string_view name);
[[nodiscard]] std::string suggestedSource(std::string_view name);
/// @}

/// The groups and keys that a reader knows: the vocabulary, the group of the loggers, and names of
/// one's own.
class KnownNames {
public:
    KnownNames();

    /// Adds GROUP, with all keys it may have, or GROUP/KEY.
    void add(const std::string& name);

    [[nodiscard]] bool hasGroup(const std::string& group) const { return groups_.contains(group); }
    [[nodiscard]] bool hasKey(const std::string& group, const std::string& key) const;
    /// Returns whether the key is known by its name, and not because its group has every key.
    [[nodiscard]] bool lists(const std::string& group, const std::string& key) const;

    [[nodiscard]] std::vector<std::string_view> groups() const;
    [[nodiscard]] std::vector<std::string_view> keys(const std::string& group) const;

private:
    struct Group {
        bool hasEveryKey = false;
        std::unordered_set<std::string> keys;
    };
    std::unordered_map<std::string, Group> groups_;
};

}  // namespace Tarnwick::Parser::ConfigTool
