#include "config/loading.h"

#include "config/command.h"
#include "logging/logger_config.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {

KeyName parseKeyName(std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash == text.npos) {
        return {kGroupConfig, std::string(text)};
    }
    return {std::string(text.substr(0, slash)), std::string(text.substr(slash + 1))};
}

std::vector<std::string> directoriesOf(const Context& context) {
    if (context.directories.empty()) {
        return {kDefaultConfigDirectory};
    }
    return context.directories;
}

void setUpLogging(const Context& context) {
    using Logging::LoggerConfig;
    using Logging::parserLogger;
    parserLogger->setTarget(LoggerConfig::TargetStderr);
    LoggerConfig::configureAll(nullptr);
    if (!context.logLevel.empty()) {
        (void)parserLogger->setLevel(context.logLevel);
    }
}

}  // namespace Tarnwick::Parser::ConfigTool
