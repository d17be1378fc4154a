#pragma once

#include <iostream>
#include <sstream>
#include <string>

#include "logging/logger_config.h"

namespace Tarnwick::Parser::Testing {

/// Collects what is written to a standard stream as long as it lives.
class CapturedStream {
public:
    explicit CapturedStream(std::ostream& stream)
        : stream_(stream), saved_(stream.rdbuf(text_.rdbuf())) {}
    ~CapturedStream() { stream_.rdbuf(saved_); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    /// Returns what was written since the last call.
    std::string take() {
        std::string text = text_.str();
        text_.str("");
        return text;
    }

private:
    std::ostream& stream_;
    std::ostringstream text_;
    std::streambuf* saved_;
};

/// Collects the records of the configuration code's logger. Afterwards that logger is at its
/// start level and writes to the error stream.
class CapturedLog {
public:
    explicit CapturedLog(Logging::LoggerConfig::Level level = Logging::LoggerConfig::LogWarning)
        : errors_(std::cerr) {
        Logging::parserLogger->setTarget(Logging::LoggerConfig::TargetStderr);
        Logging::parserLogger->setLevel(level);
    }
    ~CapturedLog() {
        Logging::parserLogger->setTarget(Logging::LoggerConfig::TargetStderr);
        Logging::parserLogger->setLevel(Logging::LoggerConfig::LogWarning);
    }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// Returns the records since the last call, a line each.
    std::string take() { return errors_.take(); }

private:
    CapturedStream errors_;
};

}  // namespace Tarnwick::Parser::Testing
