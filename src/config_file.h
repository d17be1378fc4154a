#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "support/line_reader.h"

namespace Tarnwick::Parser {

/// One configuration file while it is read. The loader owns the record; readers point to it.
struct ConfigFile {
    explicit ConfigFile(std::string filePath) : path(std::move(filePath)) {}

    /// Used to open the file and quoted in every message.
    std::string path;
    /// Set on the first syntax or read error, and never cleared by a reader.
    bool failed = false;
};

/// Walks the key entries of one configuration file.
///
///     file  = { line LF }
///     line  = "" | ("#" | ";") anything        blank, comment: skipped
///           | "[" name "]"                     group of the keys that follow
///           | key "=" value                    one entry; the value is all after the first "="
///     key   = mark name
///     name  = { " " | mark }
///     mark  = "-" | "." | "0".."9" | "A".."Z" | "_" | "a".."z"
///
/// The first character alone decides what a line is. Nothing is trimmed, quoted or continued; keys
/// before the first header have the empty group.
///
/// A bad line is logged at the error level, sets the file's `failed` flag, and yields no entry;
/// reading goes on after it. Each message ends in " (N): 'LINE'" behind the path, N being the one
/// character whose code is the low 8 bits of the line number: line 65 shows as "A". Readers of
/// the log depend on it. A file that cannot be opened or read sets the flag without a message.
class ConfigFileIterator {
public:
    /// Opens the file and stands on its first entry, if it has one.
    explicit ConfigFileIterator(ConfigFile& file);

    /// Returns the iterator that stands at the end of the file. It reads no line.
    [[nodiscard]] static ConfigFileIterator end(ConfigFile& file);

    /// Reads on to the next entry. At the end of the file the iterator becomes equal to `end`;
    /// after a last line without a line feed it stays where it is for good.
    ConfigFileIterator& operator++();

    /// Returns whether the last advance stopped on an entry. It tells an entry from the leftover
    /// of one, which is what the accessors show after an unterminated last line.
    [[nodiscard]] bool hasEntry() const { return hasEntry_; }

    [[nodiscard]] const std::string& group() const { return group_; }
    /// The line of the header that named the group, counted from 1; 0 before the first header.
    [[nodiscard]] std::uint32_t groupLine() const { return groupLine_; }
    /// Valid until the next advance.
    [[nodiscard]] std::string_view key() const { return key_; }
    [[nodiscard]] std::string_view value() const { return value_; }

    /// Returns whether both point to the same record and stand at the same offset.
    [[nodiscard]] bool operator==(const ConfigFileIterator& other) const {
        return file_ == other.file_ && position_ == other.position_;
    }

private:
    struct AtEnd {};
    ConfigFileIterator(ConfigFile& file, AtEnd);

    void readToNextEntry();
    [[nodiscard]] bool readOn(std::string_view& line);
    void keepEntry();
    void readLine(std::string_view line);
    void readGroup(std::string_view line);
    void readKey(std::string_view line);
    void reject(const char* problem, std::string_view line);

    LineReader reader_;
    ConfigFile* file_;           // not owned
    std::int64_t position_ = 0;  // where the line read last begins, or the end of the file
    std::uint32_t lineNumber_ = 0;
    bool isExhausted_ = false;   // the last line had no line feed
    bool isUnreadable_ = false;  // the file could not be opened, or reading failed
    bool hasEntry_ = false;
    std::string group_;
    std::uint32_t groupLine_ = 0;
    // The entry's parts stand in the reader's buffer, and in kept_ once the buffer goes on.
    std::string_view key_;
    std::string_view value_;
    std::string kept_;
    bool isKept_ = true;
};

}  // namespace Tarnwick::Parser
