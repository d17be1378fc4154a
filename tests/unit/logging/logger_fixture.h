#pragma once

#include <gtest/gtest.h>

#include "helpers/captured_stream.h"
#include "helpers/temporary_directory.h"
#include "logging/journal_stand_in.h"
#include "logging/log_record.h"

namespace Tarnwick::Parser::Logging {

using LoggerPointer = std::shared_ptr<LoggerConfig>;

/// A logger of its own for every test, and the streams that it can write to.
class LoggerTest : public testing::Test {
protected:
    LoggerTest() { Testing::journal.clear(); }

    /// An identity that no other logger of the process has. Loggers keep a copy of it.
    static std::string newIdentity() {
        static int counter = 0;
        return "test.logger-" + std::to_string(counter++);
    }

    /// A logger at the level warning that writes to the error stream.
    static LoggerPointer newLogger(const std::string& identity = newIdentity()) {
        LoggerPointer logger = LoggerConfig::create(identity.c_str(), LoggerConfig::LogWarning);
        logger->setTarget(LoggerConfig::TargetStderr);
        return logger;
    }

    static LoggerConfig::Level levelOf(const LoggerPointer& logger) {
        int level = LoggerConfig::LogCritical;
        while (logger->isEnabled(static_cast<LoggerConfig::Level>(level + 1)) && level < 4) {
            ++level;
        }
        return static_cast<LoggerConfig::Level>(level);
    }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedStream output_{std::cout};
    Testing::CapturedStream errors_{std::cerr};
    LoggerPointer logger_ = newLogger();
};

}  // namespace Tarnwick::Parser::Logging
