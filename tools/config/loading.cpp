#include "config/loading.h"

#include "config/command.h"
#include "logging/log_record.h"
#include "logging/logger_config.h"
#include "request.h"
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

std::unique_ptr<ConfigParser> load(const Context& context, const LoadListener& listener) {
    const std::vector<std::string> directories = directoriesOf(context);
    Tool::User user{context.userId, "", "", context.instance};
    try {
        if (!Tool::settleUser(user, directories)) {
            return nullptr;
        }
        auto parser = std::make_unique<ConfigParser>(user.id);
        return Tool::loadForUser(*parser, user, directories, listener) ? std::move(parser)
                                                                       : nullptr;
    } catch (const std::exception& error) {  // it names file, line, group and key
        Logging::logCritical(Logging::parserLogger)
            << "Cannot load the configuration: " << error.what();
        return nullptr;
    }
}

}  // namespace Tarnwick::Parser::ConfigTool
