#include "logging/log_record.h"

#include <array>
#include <cerrno>
#include <iostream>
#include <numeric>
#include <utility>

#include "logging/journal.h"
#include "logging/logger_state.h"

namespace Tarnwick::Parser::Logging {

/// `stream` is not owned; a disabled record has the target TargetFile and no stream.
struct LogRecordData {
    LoggerConfig::Level level;
    std::vector<std::string> pieces;
    LoggerConfig::Target target;
    std::ostream* stream;
};

namespace {

struct LevelRow {
    std::string_view label;
    int priority;  // of syslog(3); 5, notice, is not used
};
// Row n describes level n.
constexpr std::array<LevelRow, 5> kLevels{{
    {"CRITICAL", 2},
    {"ERROR", 3},
    {"WARNING", 4},
    {"INFO", 6},
    {"DEBUG", 7},
}};

const LevelRow& rowOf(LoggerConfig::Level level) {
    return kLevels.at(static_cast<std::size_t>(level));
}

std::ostream* streamOf(const LoggerState& logger) {
    switch (logger.target) {
        case LoggerConfig::TargetStdout:
            return &std::cout;
        case LoggerConfig::TargetStderr:
            return &std::cerr;
        case LoggerConfig::TargetSystemd:
        case LoggerConfig::TargetFile:
            break;
    }
    return logger.stream.get();
}

void writeToJournal(const LogRecordData& record) {
    sendToJournal(rowOf(record.level).priority,
                  std::accumulate(record.pieces.begin(), record.pieces.end(), std::string()));
}

void writeLine(const LogRecordData& record) {
    std::ostream& stream = *record.stream;
    stream << rowOf(record.level).label << ": ";
    for (const std::string& piece : record.pieces) {
        stream << piece;
    }
    stream << std::endl;  // Each line is flushed: the process may be gone the next moment.
}

void write(const LogRecordData& record) {
    if (record.pieces.empty()) {
        return;
    }
    if (record.target == LoggerConfig::TargetSystemd) {
        writeToJournal(record);
    } else if (record.stream != nullptr && record.stream->good()) {
        writeLine(record);
    }
}

// Logging never fails visibly, whatever a stream or the memory has come to, and leaves errno to
// those who want to tell why they failed.
void writeOrLose(const LogRecordData* record) noexcept {
    const int cause = errno;
    try {
        if (record != nullptr) {
            write(*record);
        }
    } catch (...) {
    }
    errno = cause;
}

}  // namespace

LogRecord::LogRecord(LoggerConfig* logger, LoggerConfig::Level level)
    : data_(new LogRecordData{level, {}, LoggerConfig::TargetFile, nullptr}) {
    if (logger == nullptr || !logger->isEnabled(level)) {
        return;
    }
    // Read without the lock: the target settles before threads start, see LoggerConfig.
    data_->target = logger->state_->target;
    data_->stream = streamOf(*logger->state_);
}

LogRecord::~LogRecord() {
    writeOrLose(data_.get());
}

LogRecord::LogRecord(LogRecord&& other) noexcept = default;

LogRecord& LogRecord::operator=(LogRecord&& other) noexcept {
    if (this != &other) {
        writeOrLose(data_.get());
        data_ = std::move(other.data_);
    }
    return *this;
}

LogRecord& LogRecord::operator<<(const char* text) {
    return addPiece(text != nullptr ? text : "(null)");
}

LogRecord& LogRecord::operator<<(const std::string& text) {
    return addPiece(text);
}

LogRecord& LogRecord::operator<<(bool value) {
    return addPiece(value ? "true" : "false");
}

LogRecord& LogRecord::operator<<(char value) {
    return addPiece(std::string(1, value));
}

LogRecord& LogRecord::operator<<(signed char value) {
    return *this << static_cast<char>(value);
}

LogRecord& LogRecord::operator<<(unsigned char value) {
    return *this << static_cast<char>(value);
}

LogRecord& LogRecord::operator<<(const void* address) {
    std::ostringstream text;
    text << address;
    return addPiece(text.str());
}

LogRecord& LogRecord::addPiece(std::string piece) {
    if (data_ != nullptr) {
        data_->pieces.push_back(std::move(piece));
    }
    return *this;
}

LoggerConfig::Level LogRecord::level() const {
    return data_ != nullptr ? data_->level : LoggerConfig::LogCritical;
}

LogRecord logCritical(const std::shared_ptr<LoggerConfig>& logger) {
    return {logger.get(), LoggerConfig::LogCritical};
}

LogRecord logError(const std::shared_ptr<LoggerConfig>& logger) {
    return {logger.get(), LoggerConfig::LogError};
}

LogRecord logWarning(const std::shared_ptr<LoggerConfig>& logger) {
    return {logger.get(), LoggerConfig::LogWarning};
}

LogRecord logInfo(const std::shared_ptr<LoggerConfig>& logger) {
    return {logger.get(), LoggerConfig::LogInfo};
}

LogRecord logDebug(const std::shared_ptr<LoggerConfig>& logger) {
    return {logger.get(), LoggerConfig::LogDebug};
}

}  // namespace Tarnwick::Parser::Logging
