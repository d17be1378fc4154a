#include "config_parser.h"

#include "config_loader.h"
#include "config_parser_data.h"
#include "reference_resolver.h"
#include "template_expander.h"
#include "template_text.h"

namespace Tarnwick::Parser {
namespace {

TemplateContext contextOf(const ConfigParserData& data) {
    return {data.variables, data.userId};
}

}  // namespace

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

std::vector<std::string> ConfigParser::groups() const {
    return data_->store.groups();
}

std::vector<std::string> ConfigParser::keys(const std::string& group) const {
    return data_->store.keys(group);
}

std::vector<ConfigValue>& ConfigParser::valueList(const std::string& group,
                                                  const std::string& key) {
    return data_->store.valueList(group, key);
}

void ConfigParser::appendValue(const std::string& group, const std::string& key,
                               const ConfigValue& value) {
    data_->store.appendValue(group, key, ConfigValue(value));
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

void ConfigParser::setVariable(const std::string& name, const std::string& value) {
    data_->variables.try_emplace(name, value);
}

// --- Loading ---

LoadResult ConfigParser::loadConfigs(const std::vector<std::string>& dirs,
                                     const LoadListener& listener) {
    return ConfigLoader(data_->store, contextOf(*data_), listener).loadConfigs(dirs);
}

bool ConfigParser::loadDirectory(const std::string& dir, const LoadListener& listener) {
    return ConfigLoader(data_->store, contextOf(*data_), listener).loadDirectory(dir);
}

bool ConfigParser::loadFile(const std::string& path, const LoadListener& listener) {
    return ConfigLoader(data_->store, contextOf(*data_), listener).loadFile(path);
}

// --- Templates ---

bool ConfigParser::parseTemplates(std::string_view valueText, ConfigValue& out,
                                  const LoadListener& listener) const {
    return expandText(valueText, contextOf(*data_), listener, out);
}

TemplateResult ConfigParser::resolveTemplate(const std::string& name, std::string& text,
                                             std::pair<std::string, std::string>& target) const {
    const TemplateToken token = classifyTemplate(name);
    if (token.kind == TemplateToken::Kind::Reference) {
        text.clear();
        target = {std::string(token.group), std::string(token.key)};
    }
    return resolveToken(token, name, contextOf(*data_), text);
}

bool ConfigParser::reparseValue(ConfigValue& value) const {
    const std::string text = value.text;
    if (!parseTemplates(text, value)) {
        value.clear();
        return false;
    }
    return true;
}

void ConfigParser::resolveValue(const ConfigValue& value, std::string& out) const {
    ReferenceResolver(data_->store, logDiagnostic).resolve(value, out);
}

}  // namespace Tarnwick::Parser
