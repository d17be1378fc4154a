#include "logging/logger_config.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iostream>
#include <mutex>
#include <string_view>
#include <utility>

#include "logging/log_record.h"
#include "logging/logger_state.h"
#include "support/assertion.h"
#include "support/character_set.h"
#include "support/value_conversion.h"

namespace Tarnwick::Parser::Logging {

// In this order: the parser's logger registers itself, and is destroyed first.
std::shared_mutex registryLock;
std::vector<std::shared_ptr<LoggerConfig>> loggerRegistry;
const std::string kLoggingGroup = "Logging";
const std::shared_ptr<LoggerConfig> parserLogger =
    LoggerConfig::create("com.vexmoor.tarnwick.lib.ConfigParser", LoggerConfig::LogWarning);

namespace {

using Level = LoggerConfig::Level;
using Target = LoggerConfig::Target;

// Row n names level n.
constexpr std::array<std::string_view, 5> kLevelNames{"critical", "error", "warning", "info",
                                                      "debug"};

struct TargetRow {
    std::string_view name;
    Target target;
};
constexpr std::array kTargets{
    TargetRow{"systemd", LoggerConfig::TargetSystemd},
    TargetRow{"stdout", LoggerConfig::TargetStdout},
    TargetRow{"stderr", LoggerConfig::TargetStderr},
};

void lowerCase(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
}

Level convertLevelFromInt(int level) {
    TARNWICK_ASSERT(static_cast<int>(LoggerConfig::LogCritical) <= level &&
                    level <= static_cast<int>(LoggerConfig::LogDebug));
    return static_cast<Level>(level);
}

int convertLevelFromString(std::string& text) {
    lowerCase(text);
    const auto row = std::find(kLevelNames.begin(), kLevelNames.end(), text);
    return row == kLevelNames.end() ? -1 : static_cast<int>(row - kLevelNames.begin());
}

std::unique_ptr<std::ofstream> openLogFile(const std::string& path) {
    auto stream = std::make_unique<std::ofstream>(path);
    return stream->is_open() ? std::move(stream) : nullptr;
}

// The row of a name in lower case, or the end.
auto findTarget(std::string_view name) {
    return std::find_if(kTargets.begin(), kTargets.end(),
                        [&](const TargetRow& each) { return each.name == name; });
}

// One unsigned comparison refuses negative numbers too.
bool isLevelNumber(int number, bool isNumber) {
    return isNumber && static_cast<unsigned>(number) <= LoggerConfig::LogDebug;
}

// A target that cannot be had is TargetFile without a stream.
std::pair<Target, std::unique_ptr<std::ofstream>> convertTargetFromString(std::string& text) {
    lowerCase(text);
    const auto row = findTarget(text);
    if (row != kTargets.end()) {
        return {row->target, nullptr};
    }
    // The path has been lowered too: the file is opened in lower case, and callers depend on it.
    return {LoggerConfig::TargetFile, text.starts_with('/') ? openLogFile(text) : nullptr};
}

bool isUsable(Target target, const std::ofstream* file) {
    switch (target) {
        case LoggerConfig::TargetSystemd:
            return true;
        case LoggerConfig::TargetStdout:
            return std::cout.good();
        case LoggerConfig::TargetStderr:
            return std::cerr.good();
        case LoggerConfig::TargetFile:
            return file != nullptr && file->good();
    }
    return false;
}

bool hasDot(std::string_view text) {
    return text.find('.') != text.npos;
}

bool identIsValid(std::string_view ident) {
    static constexpr CharacterSet kPermitted(
        "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");
    return consistsOf(ident, kPermitted) && hasDot(ident);
}

}  // namespace

LoggerConfig::LoggerConfig(std::unique_ptr<LoggerState> state) : state_(std::move(state)) {}

LoggerConfig::~LoggerConfig() = default;

std::shared_ptr<LoggerConfig> LoggerConfig::create(Ident ident, Level level) {
    TARNWICK_ASSERT(identIsValid(ident));
    if (auto existing = findLogger(ident)) {
        logWarning(existing) << "Reusing logger for identity: " << ident;
        existing->setLevel(level);
        return existing;
    }
    // Not looked for again under the exclusive lock: of two threads that create one identity at
    // the same moment both may add it, and the first one is found from then on.
    const std::lock_guard guard(registryLock);
    return loggerRegistry.emplace_back(
        std::make_shared<LoggerConfig>(std::make_unique<LoggerState>(ident, level)));
}

std::shared_ptr<LoggerConfig> LoggerConfig::findLogger(Ident ident) {
    const std::shared_lock guard(registryLock);
    const auto found = std::find_if(loggerRegistry.begin(), loggerRegistry.end(),
                                    [&](const std::shared_ptr<LoggerConfig>& logger) {
                                        return logger->state_->identity == ident;
                                    });
    return found == loggerRegistry.end() ? nullptr : *found;
}

bool LoggerConfig::setLevel(Level level) {
    const std::lock_guard guard(state_->lock);
    state_->level = level;
    return true;
}

bool LoggerConfig::setLevel(const std::string& value) {
    if (storeLevelName(value)) {
        return true;
    }
    bool isNumber = false;
    const int number = parseInt(value, &isNumber);
    if (storeLevelNumber(number, isNumber)) {
        return true;
    }
    LogRecord(this, LogError) << "Invalid logging level '" << value << '\'';
    return false;
}

bool LoggerConfig::setTarget(Target target) {
    if (target == TargetFile) {
        LogRecord(this, LogError)
            << "Cannot set file logging target with LoggerConfig::setTarget(Target)";
        return false;
    }
    const std::lock_guard guard(state_->lock);
    state_->target = target;
    state_->stream.reset();
    return true;
}

bool LoggerConfig::setTarget(const std::string& value) {
    if (storeTargetName(value)) {
        return true;
    }
    LogRecord(this, LogError) << "Invalid logging target '" << value << '\'';
    return false;
}

bool LoggerConfig::isLevel(const std::string& text) {
    std::string name = text;
    if (convertLevelFromString(name) >= 0) {
        return true;
    }
    bool isNumber = false;
    const int number = parseInt(text, &isNumber);
    return isLevelNumber(number, isNumber);
}

bool LoggerConfig::isTarget(const std::string& text) {
    std::string name = text;
    lowerCase(name);
    return name.starts_with('/') || findTarget(name) != kTargets.end();
}

bool LoggerConfig::isEnabled(Level level) const {
    const std::shared_lock guard(state_->lock);
    return level <= state_->level;
}

LoggerConfig::Target LoggerConfig::target() const {
    const std::shared_lock guard(state_->lock);
    return state_->target;
}

bool LoggerConfig::storeLevelName(std::string name) {
    const int level = convertLevelFromString(name);
    return level >= 0 && setLevel(convertLevelFromInt(level));
}

bool LoggerConfig::storeLevelNumber(int number, bool isNumber) {
    return isLevelNumber(number, isNumber) && setLevel(convertLevelFromInt(number));
}

bool LoggerConfig::storeTargetName(std::string name) {
    auto [target, stream] = convertTargetFromString(name);
    if (!isUsable(target, stream.get())) {
        return false;
    }
    const std::lock_guard guard(state_->lock);
    state_->target = target;
    state_->stream = std::move(stream);
    return true;
}

}  // namespace Tarnwick::Parser::Logging
