// Logging settings from outside: the configuration's "Logging" group and the environment.

#include <optional>
#include <string>

#include "config_parser.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "logging/logger_state.h"
#include "support/assertion.h"
#include "support/split_string.h"
#include "value_sources.h"

namespace Tarnwick::Parser::Logging {
namespace {

std::optional<std::string> readText(const ConfigParser& config, const std::string& key) {
    config.checkKeyAdded(kLoggingGroup, key);
    if (!config.hasKey(kLoggingGroup, key)) {
        return std::nullopt;
    }
    std::string text;
    config.getValue(kLoggingGroup, key, text);
    return text;
}

// The first item of the identity decides, also when its level turns out to be empty or refused.
std::string levelTextFor(const std::string& identity, const std::vector<std::string>& items) {
    const std::string prefix = identity + '=';
    for (const std::string& item : items) {
        if (item.starts_with(prefix)) {
            return item.substr(prefix.size());
        }
    }
    return {};
}

}  // namespace

bool LoggerConfig::setLevel(const ConfigParser* config) {
    TARNWICK_ASSERT(config);
    const std::string& key = state_->identity;
    if (!config->hasKey(kLoggingGroup, key)) {
        return true;
    }
    const std::string value = readText(*config, key).value_or("");
    if (storeLevelName(value)) {
        return true;
    }
    int number = 0;
    bool isNumber = false;
    config->getValue(kLoggingGroup, key, number, &isNumber);
    if (storeLevelNumber(number, isNumber)) {
        return true;
    }
    LogRecord(this, LogError) << "Invalid logging level '" << value << "' from config";
    return false;
}

bool LoggerConfig::setTarget(const ConfigParser* config) {
    TARNWICK_ASSERT(config);
    const std::string value = readText(*config, kTargetKey).value_or("");
    if (value.empty() || storeTargetName(value)) {
        return true;
    }
    LogRecord(this, LogError) << "Invalid logging target '" << value << "' from config";
    return false;
}

void LoggerConfig::configureAll(const ConfigParser* parser) {
    const std::vector<std::string> levels =
        splitString(readEnv("TARNWICK_LOGGING", ""), ';', kNoSplitLimit, KeepEmpty);
    const std::string target = readEnv("TARNWICK_LOGGING_TARGET", "");

    const std::shared_lock guard(registryLock);
    for (const std::shared_ptr<LoggerConfig>& logger : loggerRegistry) {
        if (parser != nullptr) {
            logger->setLevel(parser);
            logger->setTarget(parser);
        }
        const std::string level = levelTextFor(logger->state_->identity, levels);
        if (!level.empty()) {
            logger->setLevel(level);
        }
        if (!target.empty()) {
            logger->setTarget(target);
        }
    }
}

}  // namespace Tarnwick::Parser::Logging
