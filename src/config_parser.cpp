#include "config_parser.h"

#include "config_parser_data.h"

namespace Tarnwick::Parser {

ConfigParser::ConfigParser(std::int32_t userId)
    : data_(std::make_unique<ConfigParserData>(ConfigParserData{{}, {}, userId})) {}

ConfigParser::~ConfigParser() = default;

// --- Registry and store ---

void ConfigParser::addKey(const std::string& group, const std::string& key, KeyMode mode) {
    data_->store.addKey(group, key, mode);
}

std::int32_t ConfigParser::keyMode(const std::string& group, const std::string& key) const {
    return data_->store.keyMode(group, key);
}

void ConfigParser::checkKeyAdded(const std::string& group, const std::string& key) const {
    data_->store.checkKeyAdded(group, key);
}

bool ConfigParser::hasKey(const std::string& group, const std::string& key) const {
    return data_->store.hasKey(group, key);
}

bool ConfigParser::hasGroup(const std::string& group) const {
    return data_->store.hasGroup(group);
}

std::vector<ConfigValue>& ConfigParser::valueList(const std::string& group,
                                                  const std::string& key) {
    return data_->store.valueList(group, key);
}

void ConfigParser::appendValue(const std::string& group, const std::string& key,
                               const ConfigValue& value) {
    data_->store.appendValue(group, key, value);
}

void ConfigParser::appendValue(const std::string& group, const std::string& key,
                               ConfigValue&& value) {
    data_->store.appendValue(group, key, std::move(value));
}

void ConfigParser::replaceValues(const std::string& group, const std::string& key,
                                 const ConfigValue& value) {
    data_->store.replaceValues(group, key, value);
}

void ConfigParser::replaceValues(const std::string& group, const std::string& key,
                                 ConfigValue&& value) {
    data_->store.replaceValues(group, key, std::move(value));
}

void ConfigParser::removeKey(const std::string& group, const std::string& key) {
    data_->store.removeKey(group, key);
}

// --- Templates ---

void ConfigParser::setVariable(const std::string& name, const std::string& value) {
    data_->variables.try_emplace(name, value);
}

}  // namespace Tarnwick::Parser
