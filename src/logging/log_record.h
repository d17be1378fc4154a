#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "../api.h"
#include "logger_config.h"

namespace Tarnwick::Parser::Logging {

struct LogRecordData;

/// @{
/// Opening texts of the debug form of a list; a type without a row cannot be inserted as a list.
template <typename T>
inline constexpr std::string_view kListOpening{};
// clang-format off
template <> inline constexpr std::string_view kListOpening<bool>               = "vector<bool>{";
template <> inline constexpr std::string_view kListOpening<char>               = "vector<char>{";
template <> inline constexpr std::string_view kListOpening<signed char>        = "vector<signed char>{";
template <> inline constexpr std::string_view kListOpening<unsigned char>      = "vector<unsigned char>{";
template <> inline constexpr std::string_view kListOpening<short>              = "vector<short int>{";
template <> inline constexpr std::string_view kListOpening<unsigned short>     = "vector<unsigned short int>{";
template <> inline constexpr std::string_view kListOpening<int>                = "vector<int>{";
template <> inline constexpr std::string_view kListOpening<unsigned int>       = "vector<unsigned int>{";
template <> inline constexpr std::string_view kListOpening<long>               = "vector<long int>{";
template <> inline constexpr std::string_view kListOpening<unsigned long>      = "vector<unsigned long int>{";
template <> inline constexpr std::string_view kListOpening<long long>          = "vector<long long int>{";
template <> inline constexpr std::string_view kListOpening<unsigned long long> = "vector<unsigned long long int>{";
template <> inline constexpr std::string_view kListOpening<float>              = "vector<float>{";
template <> inline constexpr std::string_view kListOpening<double>             = "vector<double>{";
template <> inline constexpr std::string_view kListOpening<std::string>        = "vector<string>{";
// clang-format on
/// @}

/// An element type whose lists can be inserted into a record.
template <typename T>
concept ListElement = !kListOpening<T>.empty();

/// A number that a record shows as text, in the way of a default-formatted string stream.
template <typename T>
concept RecordNumber = std::same_as<T, short> || std::same_as<T, int> || std::same_as<T, long> ||
    std::same_as<T, long long> || std::same_as<T, unsigned short> ||
    std::same_as<T, unsigned int> || std::same_as<T, unsigned long> ||
    std::same_as<T, unsigned long long> || std::same_as<T, float> || std::same_as<T, double>;

/// One log message in the making: collects pieces by stream-style insertion and writes them once,
/// when it is destroyed.
///
///     logWarning(parserLogger) << "No value for '" << key << '\'';
///
/// writes "WARNING: No value for 'K'" and a line feed to a stream or file, and to the journal the
/// message alone with the priority of its level (critical 2, error 3, warning 4, info 6, debug 7;
/// the numbers of syslog(3)). Nothing is put between pieces. A record into which nothing was
/// inserted writes nothing.
///
/// Whether the record is written, and where, is settled when it is made: a null logger, or a
/// level above the logger's, disables it, and a later change of the target does not redirect it.
/// Nothing fails visibly: a stream in error, a closed file or an absent journal loses the message.
/// Writing leaves errno as it was.
///
/// Threads: a record belongs to the thread that made it. It points at its logger's file, so no
/// thread may change that logger's target while the record exists, and no two threads may let
/// records of one logger with a file target end at the same time: the file has no lock.
class TARNWICK_API LogRecord {
public:
    /// Starts a record for `logger`, which may be null. `logError` and its like are shorter.
    LogRecord(LoggerConfig* logger, LoggerConfig::Level level);
    /// Writes the message.
    ~LogRecord();
    /// Takes over the other's message; the other then writes nothing.
    LogRecord(LogRecord&& other) noexcept;
    /// Writes this record's own message before it takes over the other's.
    LogRecord& operator=(LogRecord&& other) noexcept;

    /// @{
    /// Each insertion adds one piece and returns the record. A null text shows as "(null)", a
    /// bool as "true" or "false", an address and a number as in a default-formatted stream.
    LogRecord& operator<<(const char* text);
    LogRecord& operator<<(const std::string& text);
    LogRecord& operator<<(bool value);
    LogRecord& operator<<(const void* address);
    /// A view alone, and nothing that converts to one: what converts to a text or a pointer as
    /// well stays unambiguous.
    template <std::same_as<std::string_view> T>
    LogRecord& operator<<(T text) {
        return addPiece(std::string(text));
    }
    template <RecordNumber T>
    LogRecord& operator<<(T value) {
        std::ostringstream text;
        text << value;
        return addPiece(text.str());
    }
    /// @}

    /// @{
    /// Bytes show as the one character with that code, not as a number; line numbers and exit
    /// codes in messages rely on it.
    LogRecord& operator<<(char value);
    LogRecord& operator<<(signed char value);
    LogRecord& operator<<(unsigned char value);
    /// @}

    /// Inserts a list: "[a, b]", or in a debug record with the element type, "vector<int>{1, 2}".
    /// Elements appear as they would alone; texts are neither quoted nor escaped, so an element
    /// that holds ", " cannot be told from two.
    ///
    ///     logError(logger) << std::vector<int>{1, 2};           // ERROR: [1, 2]
    ///     logDebug(logger) << std::vector<int>{1, 2};           // DEBUG: vector<int>{1, 2}
    ///     logError(logger) << std::vector<std::string>{"", ""}; // ERROR: [, ]
    ///     logError(logger) << std::vector<unsigned char>{65};   // ERROR: [A]
    template <ListElement T>
    LogRecord& operator<<(const std::vector<T>& list) {
        const bool namesType = level() == LoggerConfig::LogDebug;
        addPiece(std::string(namesType ? kListOpening<T> : "["));
        for (std::size_t index = 0; index < list.size(); ++index) {
            if (index > 0) {
                addPiece(", ");
            }
            const T& element = list[index];  // A proxy becomes a bool here.
            *this << element;
        }
        return addPiece(namesType ? "}" : "]");
    }

private:
    LogRecord& addPiece(std::string piece);
    [[nodiscard]] LoggerConfig::Level level() const;

    std::unique_ptr<LogRecordData> data_;
};

/// @{
/// Each of these starts a record of its level for `logger`, which may be empty.
[[nodiscard]] TARNWICK_API LogRecord logCritical(const std::shared_ptr<LoggerConfig>& logger);
[[nodiscard]] TARNWICK_API LogRecord logError(const std::shared_ptr<LoggerConfig>& logger);
[[nodiscard]] TARNWICK_API LogRecord logWarning(const std::shared_ptr<LoggerConfig>& logger);
[[nodiscard]] TARNWICK_API LogRecord logInfo(const std::shared_ptr<LoggerConfig>& logger);
[[nodiscard]] TARNWICK_API LogRecord logDebug(const std::shared_ptr<LoggerConfig>& logger);
/// @}

}  // namespace Tarnwick::Parser::Logging
