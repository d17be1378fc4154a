#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "api.h"

namespace Tarnwick::Parser {

/// What can be found while configuration is read, expanded or looked up. New problems go to the
/// end: programs are built with these numbers.
enum class Problem : std::int32_t {
    // Of a file's lines: they make the file fail.
    UnexpectedLine,   ///< the first character begins no kind of line
    GroupNotClosed,   ///< a group header that does not end in ']'
    GroupCharacters,  ///< a character that no group's name may hold
    KeyWithoutValue,  ///< a key line without '='
    KeyCharacters,    ///< a character that no key may hold

    // Of a template's form: the piece of the value is dropped.
    TemplateDollar,       ///< a '$' before anything but '{' or '$'
    TemplateNotClosed,    ///< "${" without '}'
    UnknownVariable,      ///< "${NAME}" of a variable that is not set
    UnknownSource,        ///< "${SOURCE:ARGUMENT}" of an unknown source
    ReferenceForm,        ///< "${config:ARGUMENT}" without a group and a key
    EnvironmentFileForm,  ///< "${envfile:ARGUMENT}" without a ':' between path and variable

    // Of a template's source: it has no text, and the piece is dropped. Common and harmless.
    EnvironmentMissing,      ///< an environment variable that is not set, or empty
    EnvironmentFileMissing,  ///< a variable that no line of the environment file assigns
    PathMissing,             ///< a path that does not exist
    DconfMissing,            ///< a dconf key without a value
    PropertyMissing,         ///< an Android property without a value
    CommandFailed,           ///< a command that did not end with status 0

    // Of a piece of a value: it is not stored. Listeners alone are told, the first three only as
    // the
    // reason of a dropped piece.
    PieceEmpty,       ///< nothing between two ';', or before the first
    ValueEmpty,       ///< expanded to nothing, and values of the key are appended
    ModeWithoutName,  ///< the key is registered with a mode that stores nothing
    /// It, or a name or value of an environment file that it reads, whose path is given, is white
    /// space alone: `std::length_error` follows.
    ValueBlank,

    // Of files and directories.
    FileUnreadable,        ///< cannot be opened or read; told to listeners alone
    FileFailed,            ///< has a bad line, or is unreadable
    ConfigurationInvalid,  ///< loading directories stopped at this file
    DirectoryEmpty,        ///< a directory that holds no configuration file

    // Of a lookup.
    TooManyReferences,  ///< references that lead in a circle, or to more than 32 other values
};

/// Where something stands. Lines and columns count from 1, columns in bytes; 0 stands for none. A
/// thing that is missing stands one past the last byte before it.
struct Place {
    std::string_view file = {};     ///< a file's or a directory's path, or empty
    std::uint32_t line = 0;         ///< 0: the file as a whole
    std::uint32_t firstColumn = 0;  ///< of the first byte; 0: the line as a whole
    std::uint32_t lastColumn = 0;   ///< of the last byte
};

/// One thing that was found, with the texts that its problem needs; the others are empty. The
/// views are valid while the diagnostic is being told. Programs may make diagnostics, so the fields
/// stay as they are within a major version.
struct Diagnostic {
    Problem problem;                 ///< what was found
    Place place = {};                ///< where
    std::string_view text = {};      ///< the whole line, or the whole piece of the value
    std::string_view name = {};      ///< a template's name, all between its braces
    std::string_view argument = {};  ///< what the source was asked for: a variable, a path, a key
    std::string_view path = {};      ///< an environment file's path
};

/// Receives what is found, as soon as it is found.
using DiagnosticSink = std::function<void(const Diagnostic& found)>;

/// Returns the words of the diagnostic's log record, or an empty text for a problem that is told
/// to listeners alone. A line number stands in them as the one character whose code is its low 8
/// bits: readers of the log depend on it.
[[nodiscard]] TARNWICK_API std::string logText(const Diagnostic& found);

/// Logs the diagnostic through `Logging::parserLogger`, at the level of its problem: debug for a
/// source without a text, error for everything else. A problem without words is not logged.
TARNWICK_API void logDiagnostic(const Diagnostic& found);

}  // namespace Tarnwick::Parser
