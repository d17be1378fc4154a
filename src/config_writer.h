#pragma once

#include <concepts>
#include <fstream>
#include <string>
#include <type_traits>

#include "api.h"

namespace Tarnwick::Parser {

/// A type that is neither a truth value nor a text, but that the language would turn into a bool
/// without a word: a number, an enumerator, a pointer to anything but characters. Braces refuse
/// all of these but, with some compilers, enumerators.
template <typename T>
concept QuietlyBool = std::convertible_to<T, bool> && !std::convertible_to<T, std::string> &&
                      (std::is_enum_v<T> || !requires(const T& value) { bool{value}; });

/// Writes a configuration file of comments and key lines.
///
///     ConfigWriter writer("/run/example.conf.d/50-generated.conf", false);
///     writer.writeComment("generated, do not edit");   // # generated, do not edit
///     writer.writeRaw("[Features]");                   // [Features]
///     writer.writeKeyValue("CameraEnabled", true);     // CameraEnabled=true
///
/// Every line is flushed as it is written; see `writeRaw` for its own rule. Nothing is checked,
/// quoted or escaped. A file that could not be opened, or a write that failed, is not reported:
/// later writes do nothing. One thread at a time.
class TARNWICK_API ConfigWriter {
public:
    /// Opens `path` and empties it. A file made here has mode 0600 whatever the umask; a file
    /// that exists keeps its mode. The umask is the process's and is 077 for the moment of the
    /// open, so no other thread may create files meanwhile.
    ///
    /// With `spaced` a key and its value are separated by " = ", otherwise by "=". Note that the
    /// reader keeps the blanks: a spaced "K = v" is read as the key "K " with the value " v".
    ConfigWriter(const std::string& path, bool spaced);

    /// Writes "# TEXT".
    void writeComment(const std::string& text);

    /// Writes a key line.
    void writeKeyValue(const std::string& key, const std::string& value);
    /// As above. A null value is a logic error: it throws `std::logic_error`.
    void writeKeyValue(const std::string& key, const char* value);
    /// As above with "true" or "false".
    void writeKeyValue(const std::string& key, bool value);
    /// Does not compile: a number, an enumerator or another pointer would be written as "true".
    /// Convert it to a text or a bool first.
    template <QuietlyBool T>
    void writeKeyValue(const std::string& key, const T& value) = delete;

    /// Writes a line feed alone.
    void writeEmptyLine();

    /// Writes the text as it stands, and a line feed unless it ends in one. An empty text gives
    /// one line feed. A text that ends in a line feed is not flushed: it is in the file after the
    /// next flush, or when the writer goes.
    void writeRaw(const std::string& text);

private:
    std::ofstream stream_;
    bool spaced_;
};

}  // namespace Tarnwick::Parser
