#include "config_store.h"

#include <algorithm>
#include <functional>

#include "logging/log_record.h"

namespace Tarnwick::Parser {
namespace {

template <typename Map>
std::vector<std::string> sortedNames(const Map& map) {
    std::vector<std::string> names;
    names.reserve(map.size());
    for (const auto& [name, content] : map) {
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::size_t KeyPairHash::operator()(const std::pair<std::string, std::string>& pair) const {
    const std::hash<std::string> hash;
    const auto group = static_cast<std::uint32_t>(hash(pair.first));
    const auto key = static_cast<std::uint32_t>(hash(pair.second));
    return group ^ (key + 0x9e3779b9U + (group << 6U) + (group >> 2U));
}

void ConfigStore::addKey(const std::string& group, const std::string& key, KeyMode mode) {
    registry_.try_emplace({group, key}, mode);
}

std::int32_t ConfigStore::keyMode(const std::string& group, const std::string& key) const {
    const auto entry = registry_.find({group, key});
    return entry == registry_.end() ? -1 : static_cast<std::int32_t>(entry->second);
}

bool ConfigStore::registersGroup(const std::string& group) const {
    return std::any_of(registry_.begin(), registry_.end(),
                       [&](const auto& entry) { return entry.first.first == group; });
}

void ConfigStore::checkKeyAdded(const std::string& group, const std::string& key) const {
    if (hasRegistry() && !registry_.contains({group, key})) {
        Logging::logWarning(Logging::parserLogger)
            << group << "/" << key << " has not been added to the parser";
    }
}

bool ConfigStore::hasKey(const std::string& group, const std::string& key) const {
    checkKeyAdded(group, key);
    return find(group, key) != nullptr;
}

bool ConfigStore::hasGroup(const std::string& group) const {
    return values_.contains(group);
}

std::vector<std::string> ConfigStore::groups() const {
    return sortedNames(values_);
}

std::vector<std::string> ConfigStore::keys(const std::string& group) const {
    const auto keys = values_.find(group);
    return keys == values_.end() ? std::vector<std::string>() : sortedNames(keys->second);
}

const std::vector<ConfigValue>* ConfigStore::find(const std::string& group,
                                                  const std::string& key) const {
    const auto keys = values_.find(group);
    if (keys == values_.end()) {
        return nullptr;
    }
    const auto entry = keys->second.find(key);
    return entry == keys->second.end() ? nullptr : &entry->second;
}

std::vector<ConfigValue>& ConfigStore::valueList(const std::string& group, const std::string& key) {
    const auto keys = values_.find(group);  // for few groups a search without a hash
    return (keys != values_.end() ? keys->second : values_[group])[key];
}

ConfigValue* ConfigStore::appendValue(const std::string& group, const std::string& key,
                                      ConfigValue&& value) {
    if (value.isEmpty()) {
        return nullptr;
    }
    return &valueList(group, key).emplace_back(std::move(value));
}

ConfigValue& ConfigStore::replaceValues(const std::string& group, const std::string& key,
                                        ConfigValue value) {
    std::vector<ConfigValue>& values = valueList(group, key);
    values.clear();
    return values.emplace_back(std::move(value));
}

std::size_t ConfigStore::removeKey(const std::string& group, const std::string& key) {
    const auto keys = values_.find(group);
    if (keys == values_.end()) {
        return 0;
    }
    const auto entry = keys->second.extract(key);
    return entry ? entry.mapped().size() : 0;
}

}  // namespace Tarnwick::Parser
