#pragma once

#include <iostream>
#include <sstream>
#include <string>

#include "logging/logger_config.h"

namespace Fuzz {

/// Collects what is written to one of the standard streams during its life.
class CapturedStream {
public:
    explicit CapturedStream(std::ostream& stream)
        : stream_(stream), original_(stream.rdbuf(&bytes_)) {}
    ~CapturedStream() { stream_.rdbuf(original_); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    [[nodiscard]] std::string text() const { return bytes_.str(); }

private:
    std::ostream& stream_;
    std::stringbuf bytes_;
    std::streambuf* original_;
};

/// Collects every record of the parser's logger, down to the debug level, one "LABEL: message"
/// and a line feed each.
class CapturedLog : public CapturedStream {
public:
    CapturedLog() : CapturedStream(std::cerr) {
        using Tarnwick::Parser::Logging::LoggerConfig;
        using Tarnwick::Parser::Logging::parserLogger;
        parserLogger->setTarget(LoggerConfig::TargetStderr);
        parserLogger->setLevel(LoggerConfig::LogDebug);
    }
};

}  // namespace Fuzz
