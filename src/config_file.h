#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "diagnostic.h"
#include "support/line_reader.h"

namespace Tarnwick::Parser {

/// What one line of a configuration file is. The views are parts of the line.
///
///     file  = { line LF }
///     line  = "" | ("#" | ";") anything        blank, comment: skipped
///           | "[" name "]"                     group of the keys that follow
///           | key "=" value                    one entry; the value is all after the first "="
///     key   = mark name
///     name  = { " " | mark }
///     mark  = "-" | "." | "0".."9" | "A".."Z" | "_" | "a".."z"
///
/// The first character alone decides what a line is. Nothing is trimmed, quoted or continued.
struct ConfigLine {
    enum class Kind { Blank, Comment, Group, Entry, Fault };

    Kind kind = Kind::Blank;
    Problem problem = Problem::UnexpectedLine;  ///< Fault: what is wrong
    /// Group: its name. Entry: its key. Fault: the bytes at fault; empty, but in its place in the
    /// line, where something is missing.
    std::string_view name = {};
    std::string_view value = {};  ///< Entry: all behind the first '='
};

/// Returns what the line, without its line feed, is. With `LineReader`, which tells how each line
/// ends, it shows every line of a file, also those that are no entries.
[[nodiscard]] ConfigLine parseConfigLine(std::string_view line);

/// One configuration file while it is read. The loader owns the record; readers point to it.
struct ConfigFile {
    explicit ConfigFile(std::string filePath) : path(std::move(filePath)) {}

    /// Used to open the file and quoted in every message.
    std::string path;
    /// Set on the first syntax or read error, and never cleared by a reader.
    bool failed = false;
};

/// Walks the key entries of one configuration file. Keys before the first header have the empty
/// group.
///
/// A bad line is told to the sink, sets the file's `failed` flag, and yields no entry; reading
/// goes on after it. A file that cannot be opened or read sets the flag as well.
class ConfigFileIterator {
public:
    /// Opens the file and stands on its first entry, if it has one.
    explicit ConfigFileIterator(ConfigFile& file, DiagnosticSink sink = logDiagnostic);

    /// Returns the iterator that stands at the end of the file. It reads no line.
    [[nodiscard]] static ConfigFileIterator end(ConfigFile& file);

    /// Reads on to the next entry. At the end of the file the iterator becomes equal to `end`;
    /// after a last line without a line feed it stays where it is for good.
    ConfigFileIterator& operator++();

    /// Returns whether the last advance stopped on an entry. It tells an entry from the leftover
    /// of one, which is what the accessors show after an unterminated last line.
    [[nodiscard]] bool hasEntry() const { return hasEntry_; }

    [[nodiscard]] const std::string& group() const { return group_; }
    /// Valid until the next advance.
    [[nodiscard]] std::string_view key() const { return key_; }
    [[nodiscard]] std::string_view value() const { return value_; }

    /// Returns the number of the line read last, counted from 1.
    [[nodiscard]] std::uint32_t lineNumber() const { return lineNumber_; }

    /// Returns whether both point to the same record and stand at the same offset.
    [[nodiscard]] bool operator==(const ConfigFileIterator& other) const {
        return file_ == other.file_ && position_ == other.position_;
    }

private:
    struct AtEnd {};
    ConfigFileIterator(ConfigFile& file, AtEnd);

    enum class State {
        Open,          // more lines may follow
        Unterminated,  // the last line had no line feed: none follows
        Failed,        // the file could not be opened, or reading failed
    };

    void readToNextEntry();
    [[nodiscard]] bool nextLine(std::string_view& line);
    [[nodiscard]] bool readLine(std::string_view& line);
    void saveEntry();
    void takeLine(std::string_view line);
    void fail();
    void reject(const ConfigLine& fault, std::string_view line);

    LineReader reader_;
    ConfigFile* file_;  // not owned
    DiagnosticSink sink_;
    std::int64_t position_ = 0;  // where the line read last begins, or the end of the file
    std::uint32_t lineNumber_ = 0;
    State state_ = State::Open;
    bool hasEntry_ = false;
    std::string group_;
    // Views of the reader's buffer, and of saved_ once the reader has used the buffer again.
    std::string_view key_;
    std::string_view value_;
    std::string saved_;
    bool isSaved_ = true;
};

}  // namespace Tarnwick::Parser
