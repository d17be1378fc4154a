#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "../api.h"

namespace Tarnwick::Parser {
class ConfigParser;
}

/// Loggers and their records. They need no parser, but take settings from one.
namespace Tarnwick::Parser::Logging {

class LogRecord;
struct LoggerState;

/// A number or the literal `nullptr`. The number 0 is a null pointer as well.
template <typename T>
concept NumberOrNull = std::integral<T> || std::same_as<T, std::nullptr_t>;

/// The level and the output target of the log records of one component, its identity.
///
/// Loggers are shared objects. A process-wide registry holds every one of them from `create` to
/// the end of the process, so that `configureAll` reaches them all.
///
/// Threads: every operation may be called from any thread; the registry's lock is taken before a
/// logger's. A record, however, copies its logger's target and stream without holding the lock
/// (see `LogRecord`), so change the target of a logger only while no other thread makes or
/// destroys records of that logger: settle targets before threads start. Levels may change at
/// any time. The standard streams and the journal may be written to from many threads; of a
/// logger with a file target only one thread at a time may let records end, or call what may
/// report through it (`create` once more, a setter that refuses). A lock that reports a deadlock
/// throws `std::system_error`.
///
/// A setter that refuses says so in an error record through the logger itself, at its level and
/// to its target as they are at that moment.
class TARNWICK_API LoggerConfig {
public:
    /// The threshold: a record is written when its level is not above its logger's.
    enum Level : std::int32_t {
        LogCritical = 0,
        LogError = 1,
        LogWarning = 2,
        LogInfo = 3,
        LogDebug = 4,
    };

    /// Where records go.
    enum Target : std::int32_t {
        TargetSystemd = 0,  ///< the systemd journal
        TargetStdout = 1,   ///< the standard output stream, `std::cout`
        TargetStderr = 2,   ///< the standard error stream, `std::cerr`
        TargetFile = 3,     ///< a file that the logger opened
    };

    /// A NUL-terminated name such as "com.example.Component", compared byte for byte.
    using Ident = const char*;

    /// Returns the logger of `ident`, made with `level` and the target `TargetSystemd` when there
    /// is none yet. An existing logger gets the new level, keeps its target, and says so in a
    /// warning: "Reusing logger for identity: " and the identity.
    ///
    /// The identity holds only ASCII letters, digits, '-', '.' and '_', and at least one '.'.
    /// Anything else is a caller's mistake and aborts the process; null is not allowed. Two threads
    /// that create one new identity at the same moment can both add a logger for it; `findLogger`
    /// then returns the first.
    static std::shared_ptr<LoggerConfig> create(Ident ident, Level level);

    /// Returns the first logger registered for `ident`, which is not null, or an empty pointer.
    [[nodiscard]] static std::shared_ptr<LoggerConfig> findLogger(Ident ident);

    /// Applies the settings from outside to every registered logger, in the order in which they
    /// were created: the parser's settings when `parser` is not null (`setLevel` and `setTarget`
    /// below), then the environment, which therefore wins.
    ///
    /// TARNWICK_LOGGING holds items of the form IDENTITY=LEVEL, separated by ';'. The first item
    /// of a logger's identity decides, even when its level is empty or refused.
    /// TARNWICK_LOGGING_TARGET holds one target for all loggers. An unset variable counts as
    /// empty, and empty means no change. A refused text is reported by the logger it was meant
    /// for, and the pass goes on. A file target is opened, and truncated, once per logger. Throws
    /// `std::out_of_range` as `ConfigParser::getValue` does.
    static void configureAll(const ConfigParser* parser);

    /// For `create` alone: no other code has a state to hand over.
    explicit LoggerConfig(std::unique_ptr<LoggerState> state);
    ~LoggerConfig();
    LoggerConfig(const LoggerConfig&) = delete;
    LoggerConfig& operator=(const LoggerConfig&) = delete;

    /// Sets the level as it is given, without a range check. Returns true.
    bool setLevel(Level level);

    /// Sets the level from a name ("critical", "error", "warning", "info", "debug", in any letter
    /// case) or a number from 0 to 4 (also hexadecimal after "0x"). Any other text leaves the
    /// level as it was, is reported as "Invalid logging level 'TEXT'" at the error level through
    /// this logger, and yields false.
    bool setLevel(const std::string& value);

    /// Sets the level from group "Logging", key = this logger's identity. True, and no change,
    /// when the parser has no such key. Text that is no level is reported as "Invalid logging
    /// level 'TEXT' from config" and yields false. A null parser is a caller's mistake and aborts.
    /// Throws `std::out_of_range` as `ConfigParser::getValue` does.
    bool setLevel(const ConfigParser* config);

    /// Does not compile: 0 would be a parser that is not there. A level is one of `Level`, or a
    /// text.
    template <NumberOrNull T>
    bool setLevel(T value) = delete;

    /// Sends records to `target` from now on and closes the file of an earlier file target.
    /// `TargetFile` cannot be set this way, for want of a path: it is reported as "Cannot set
    /// file logging target with LoggerConfig::setTarget(Target)" and yields false; every other
    /// target yields true.
    bool setTarget(Target target);

    /// Sets the target from "systemd", "stdout", "stderr" (in any letter case) or an absolute
    /// path. The path is opened in lower case ("/var/log/Tool.log" writes /var/log/tool.log;
    /// callers depend on it) and truncated. Any other text, a file that cannot be opened, or a
    /// standard stream that has an error flag set leaves the target as it was, is reported as
    /// "Invalid logging target 'TEXT'", and yields false.
    bool setTarget(const std::string& value);

    /// Sets the target from group "Logging", key "LogTarget". True, and no change, when the
    /// parser has no such key or its value is empty. Text that is no target is reported as
    /// "Invalid logging target 'TEXT' from config" and yields false. A null parser aborts. Throws
    /// `std::out_of_range` as `ConfigParser::getValue` does.
    bool setTarget(const ConfigParser* config);

    /// Does not compile: 0 would be a parser that is not there. A target is one of `Target`, or a
    /// text.
    template <NumberOrNull T>
    bool setTarget(T value) = delete;

    /// Returns whether the setters of a level would take the text.
    [[nodiscard]] static bool isLevel(const std::string& text);

    /// Returns whether the setters of a target may take the text: one of the names, or an absolute
    /// path. The file is not looked at, so it may still be refused.
    [[nodiscard]] static bool isTarget(const std::string& text);

    /// Returns whether a record of `level` would be written.
    [[nodiscard]] bool isEnabled(Level level) const;

    /// Returns the current target.
    [[nodiscard]] Target target() const;

private:
    friend class LogRecord;

    [[nodiscard]] bool storeLevelName(std::string name);
    [[nodiscard]] bool storeLevelNumber(int number, bool isNumber);
    [[nodiscard]] bool storeTargetName(std::string name);

    std::unique_ptr<LoggerState> state_;
};

/// The logger of all configuration code: identity "com.vexmoor.tarnwick.lib.ConfigParser", level
/// warning. It exists before `main` runs, and its records go to the journal until a target is set.
TARNWICK_API extern const std::shared_ptr<LoggerConfig> parserLogger;

}  // namespace Tarnwick::Parser::Logging
