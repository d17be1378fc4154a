#pragma once

#include <fstream>
#include <memory>
#include <shared_mutex>
#include <string>
#include <utility>
#include <vector>

#include "logging/logger_config.h"

namespace Tarnwick::Parser::Logging {

/// What a logger holds. `lock` guards level, target and stream.
struct LoggerState {
    LoggerState(std::string ident, LoggerConfig::Level threshold)
        : identity(std::move(ident)), level(threshold) {}

    const std::string identity;
    LoggerConfig::Level level;
    LoggerConfig::Target target = LoggerConfig::TargetSystemd;
    std::unique_ptr<std::ofstream> stream;  // non-null only while the target is TargetFile
    std::shared_mutex lock;
};

/// Every logger of the process in creation order; entries stay until exit. Lock order:
/// `registryLock` first, then a logger's own lock.
extern std::vector<std::shared_ptr<LoggerConfig>> loggerRegistry;
extern std::shared_mutex registryLock;

/// The configuration's group of logging settings: "Logging".
extern const std::string kLoggingGroup;
/// Its key for the target of all loggers; every other key is a logger's identity.
inline constexpr const char* kTargetKey = "LogTarget";

}  // namespace Tarnwick::Parser::Logging
