#include "config_parser.h"

#include <algorithm>

#include "config_parser_data.h"
#include "logging/log_record.h"

namespace Tarnwick::Parser {

std::size_t KeyPairHash::operator()(
    const std::pair<std::string_view, std::string_view>& pair) const {
    const std::hash<std::string_view> hash;
    const auto group = static_cast<std::uint32_t>(hash(pair.first));
    const auto key = static_cast<std::uint32_t>(hash(pair.second));
    return group ^ (key + 0x9e3779b9U + (group << 6U) + (group >> 2U));
}

const ValueList* ConfigParserData::find(const std::string& group, const std::string& key) const {
    const auto keys = values.find(group);
    return keys == values.end() ? nullptr : keys->second.find(key);
}

ValueList& ConfigParserData::listOf(const std::string& group, const std::string& key) {
    if (lastGroup == nullptr || lastGroup->first != group) {
        lastGroup = &*values.try_emplace(group, &arena).first;
    }
    return lastGroup->second.obtain(key);
}

bool ConfigParserData::registersGroup(const std::string& group) const {
    return std::any_of(registry.begin(), registry.end(),
                       [&](const auto& entry) { return entry.first.first == group; });
}

ConfigParser::ConfigParser(std::int32_t userId) : data_(std::make_unique<ConfigParserData>()) {
    data_->userId = userId;
}

ConfigParser::~ConfigParser() = default;

void ConfigParser::addKey(const std::string& group, const std::string& key, KeyMode mode) {
    data_->registry.try_emplace({group, key}, mode);
}

std::int32_t ConfigParser::keyMode(const std::string& group, const std::string& key) const {
    const auto entry = data_->registry.find(KeyPairEqual::Pair(group, key));
    return entry == data_->registry.end() ? -1 : static_cast<std::int32_t>(entry->second);
}

void ConfigParser::checkKeyAdded(const std::string& group, const std::string& key) const {
    if (!data_->registry.empty() && !data_->registry.contains(KeyPairEqual::Pair(group, key))) {
        Logging::logWarning(Logging::parserLogger)
            << group << "/" << key << " has not been added to the parser";
    }
}

bool ConfigParser::hasKey(const std::string& group, const std::string& key) const {
    checkKeyAdded(group, key);
    return data_->find(group, key) != nullptr;
}

bool ConfigParser::hasGroup(const std::string& group) const {
    return data_->values.contains(group);
}

void ConfigParser::setVariable(const std::string& name, const std::string& value) {
    data_->variables.try_emplace(name, value);
}

ValueList& ConfigParser::valueList(const std::string& group, const std::string& key) {
    return data_->listOf(group, key);
}

void ConfigParser::appendValue(const std::string& group, const std::string& key,
                               const ConfigValue& value) {
    appendValue(group, key, ConfigValue(value));
}

void ConfigParser::appendValue(const std::string& group, const std::string& key,
                               ConfigValue&& value) {
    if (!value.isEmpty()) {
        valueList(group, key).push_back(std::move(value));
    }
}

void ConfigParser::replaceValues(const std::string& group, const std::string& key,
                                 const ConfigValue& value) {
    replaceValues(group, key, ConfigValue(value));
}

void ConfigParser::replaceValues(const std::string& group, const std::string& key,
                                 ConfigValue&& value) {
    ConfigValue onlyValue = std::move(value);  // may be one of those that go
    ValueList& values = valueList(group, key);
    values.clear();
    values.push_back(std::move(onlyValue));
}

void ConfigParser::removeKey(const std::string& group, const std::string& key) {
    const auto keys = data_->values.find(group);
    if (keys != data_->values.end()) {
        keys->second.erase(key);
    }
}

}  // namespace Tarnwick::Parser
