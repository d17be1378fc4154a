#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "api.h"
#include "config_value.h"
#include "load_event.h"
#include "parser_types.h"

/// Reading, storing and generating configuration.
namespace Tarnwick::Parser {

struct ConfigParserData;

/// The configuration: the values of all files by group and key, the registry of the keys that the
/// caller declared, the template variables, and the user on whose behalf templates are expanded.
///
///     ConfigParser parser(1000);
///     parser.setVariable("HOME", "/home/user");
///     if (parser.loadConfigs({"/etc/tarnwick.conf.d"}) == LoadResult::Ok &&
///         parser.hasKey("Config", "StoragePath")) {
///         std::string path;
///         parser.getValue("Config", "StoragePath", path);
///     }
///
/// Use it in this order: construct; `addKey` for each key of interest, or for none to take every
/// key; `setVariable`; load; then `hasKey`, and `getValue` only when it returned true.
///
/// Names of groups and keys are compared byte for byte, letter case included. Failures are
/// results; their cause has been logged through `Logging::parserLogger` by then. One thread at a
/// time: nothing is synchronised.
class TARNWICK_API ConfigParser {
public:
    /// `userId` is -1 when no user is known; the dconf source reads that user's database.
    explicit ConfigParser(std::int32_t userId);
    ~ConfigParser();
    ConfigParser(const ConfigParser&) = delete;
    ConfigParser& operator=(const ConfigParser&) = delete;

    // --- Registry of keys ---

    /// Registers a key. Once a key is registered, loading takes registered keys alone. A pair
    /// that is registered already keeps its first mode. A mode without a name lets loading parse
    /// the key's values and drop them; -1 lets it skip them.
    void addKey(const std::string& group, const std::string& key, KeyMode mode);

    /// Returns the registered mode as a number, or -1 when the pair is not registered.
    [[nodiscard]] std::int32_t keyMode(const std::string& group, const std::string& key) const;

    /// Logs at the warning level "GROUP/KEY has not been added to the parser" when keys are
    /// registered but not this one.
    void checkKeyAdded(const std::string& group, const std::string& key) const;

    // --- Presence ---

    /// Calls `checkKeyAdded`, then returns whether there is an entry for the key. The entry's
    /// list can be empty, see `valueList`.
    [[nodiscard]] bool hasKey(const std::string& group, const std::string& key) const;

    /// Returns whether the group has an entry: since a key of it was stored, or asked for by
    /// `valueList` or a lookup of a list. It keeps the entry when its keys are removed.
    [[nodiscard]] bool hasGroup(const std::string& group) const;

    /// Returns the names of all groups that have an entry, in byte order.
    [[nodiscard]] std::vector<std::string> groups() const;

    /// Returns the names of the group's keys that have an entry, in byte order; none for an unknown
    /// group.
    [[nodiscard]] std::vector<std::string> keys(const std::string& group) const;

    // --- Template variables ---

    /// Sets the text of the template "${NAME}". The first text of a name stays. Variables must be
    /// in place before loading, which is when templates are expanded.
    void setVariable(const std::string& name, const std::string& value);

    // --- Store ---

    /// Returns the key's values in the order in which they were stored; the last one is current.
    /// A key without an entry gets an empty one, after which `hasKey` returns true for it. The
    /// reference is valid until the key is removed.
    [[nodiscard]] std::vector<ConfigValue>& valueList(const std::string& group,
                                                      const std::string& key);

    /// @{
    /// Adds a value to the key's list; an empty one is not added.
    void appendValue(const std::string& group, const std::string& key, const ConfigValue& value);
    void appendValue(const std::string& group, const std::string& key, ConfigValue&& value);
    /// @}

    /// @{
    /// Makes `value` the key's only value, also when it is empty: unlike an appended value, an
    /// empty one that replaces others is stored. Intended; callers depend on it.
    void replaceValues(const std::string& group, const std::string& key, const ConfigValue& value);
    void replaceValues(const std::string& group, const std::string& key, ConfigValue&& value);
    /// @}

    /// Removes the key with all its values. The group stays, also when it holds no key any more.
    void removeKey(const std::string& group, const std::string& key);

    // --- Loading ---
    //
    // Each operation tells an optional listener what it does, see load_event.h. A listener must
    // not touch the parser; what it throws ends the load and passes through unchanged.

    /// Loads the "*.conf" files of the directories: directories in order, the files of each by
    /// plain byte order of their paths. A directory's path becomes part of a glob(7) pattern as
    /// it stands; an empty one is "/". A missing directory counts as one without files.
    ///
    /// Stops at the first file that fails, logs "Invalid configuration in PATH" at the error
    /// level and returns `InvalidConfiguration`; what was stored so far stays stored.
    ///
    /// Throws, as `loadFile` and `loadDirectory` do, `std::length_error` for a value that
    /// expands to white space alone, or whose environment file has a name or the wanted value of
    /// white space alone. Its text names the file and the line, in decimal, the key and its
    /// group, and the environment file where it is one.
    [[nodiscard]] LoadResult loadConfigs(const std::vector<std::string>& dirs,
                                         const LoadListener& listener = {});

    /// Loads the "*.conf" files of one directory and goes on after a file that fails. Returns
    /// whether every file loaded; false also when there is none, which is logged as "No
    /// configuration to read in DIRECTORY/" at the error level.
    [[nodiscard]] bool loadDirectory(const std::string& dir, const LoadListener& listener = {});

    /// Loads one file. Each value is split at ';', every piece's templates are expanded, and the
    /// pieces that are not empty are stored by the key's mode; an empty value removes the key.
    /// A piece whose template fails is dropped.
    ///
    /// Returns whether the file was read to its end without a fault; otherwise "Failed to load
    /// config from 'PATH'" has been logged at the error level.
    [[nodiscard]] bool loadFile(const std::string& path, const LoadListener& listener = {});

    // --- Typed lookup ---

    /// @{
    /// A single value is the last one stored, with its references resolved. It is read only after
    /// `hasKey` returned true for a key with at least one value; an empty list is a caller's
    /// mistake and aborts.
    ///
    /// A list lookup appends to `values`, which is not cleared; a value that has references and
    /// resolves to an empty text is left out. A key that is missing gets an empty entry by it, as
    /// by `valueList`.
    ///
    /// `*ok` tells whether the text was a value of the type, or all of them were; a value that was
    /// not is delivered all the same, and `ok` may be null. "true" and "false" are the values of
    /// type bool, and any other text is false. A number is decimal, or hexadecimal after "0x" (not
    /// for double), and nothing may follow it: "12 " is 12 and not ok, a text without a number is
    /// 0, and a number out of range is the type's limit.
    ///
    /// References that lead in a circle, or to more than 32 other values, resolve to an empty text
    /// and are logged as "Max depth reached, possibly circular reference." at the error level. A
    /// reference whose position lies past the end of its text throws `std::out_of_range`, whose
    /// text names the key of the value at fault, which may be another than the one asked for.
    void getValue(const std::string& group, const std::string& key, std::string& value) const;
    void getValue(const std::string& group, const std::string& key,
                  std::vector<std::string>& values) const;

    void getValue(const std::string& group, const std::string& key, bool& value) const;
    void getValue(const std::string& group, const std::string& key, bool& value, bool* ok) const;
    void getValue(const std::string& group, const std::string& key,
                  std::vector<bool>& values) const;
    void getValue(const std::string& group, const std::string& key, std::vector<bool>& values,
                  bool* ok) const;

    void getValue(const std::string& group, const std::string& key, int& value,
                  bool* ok = nullptr) const;
    void getValue(const std::string& group, const std::string& key, std::vector<int>& values,
                  bool* ok = nullptr) const;

    void getValue(const std::string& group, const std::string& key, long long& value,
                  bool* ok = nullptr) const;
    void getValue(const std::string& group, const std::string& key, std::vector<long long>& values,
                  bool* ok = nullptr) const;

    void getValue(const std::string& group, const std::string& key, double& value,
                  bool* ok = nullptr) const;
    void getValue(const std::string& group, const std::string& key, std::vector<double>& values,
                  bool* ok = nullptr) const;
    /// @}

    // --- Templates ---

    /// Expands the templates of `valueText` into `out.text` and notes references to other keys in
    /// `out`, which is not reset first: a block it has is extended. Returns false when a template
    /// failed; the cause has been logged, `out.text` is as it was, and references met before the
    /// failure remain, so clear `out` before other use.
    ///
    /// "$$" stands for "$". "${NAME}" is a template variable, "${SOURCE:ARGUMENT}" draws on one
    /// of config, env, envfile, realpath, dconf, prop and system. The expanded text is trimmed.
    ///
    /// The listener is told each fault, and in the end Stored with `out` or Dropped with the cause,
    /// or, of a blank text, the fault alone. The text is the piece, which stands in no file.
    ///
    /// Throws `std::length_error` when the expanded text is white space alone, and as
    /// `resolveTemplate` does.
    [[nodiscard]] bool parseTemplates(std::string_view valueText, ConfigValue& out,
                                      const LoadListener& listener = {}) const;

    /// Resolves the template `name`, the text between "${" and "}". `Resolved` sets `text`;
    /// `Reference` empties `text` and sets `target` to (group, key); on `Failed` both are
    /// unspecified and the cause has been logged. Throws `std::length_error` when an environment
    /// file has a name, or the wanted value, of white space alone.
    [[nodiscard]] TemplateResult resolveTemplate(const std::string& name, std::string& text,
                                                 std::pair<std::string, std::string>& target) const;

    /// Expands the value's own text once more; a '$' that an earlier expansion left is scanned
    /// anew. On failure the value is cleared and false is returned. Throws as `parseTemplates`
    /// does.
    [[nodiscard]] bool reparseValue(ConfigValue& value) const;

    /// Sets `out` to the value's text with every reference replaced by the last value of the key
    /// it names, and so on. A key that does not exist gives an empty text. A value whose
    /// `hasReferences` is neither 0 nor 1 leaves `out` as it was. See "Typed lookup" for
    /// references that lead in a circle, and for `std::out_of_range`; `value` itself has no name
    /// there.
    void resolveValue(const ConfigValue& value, std::string& out) const;

private:
    std::unique_ptr<ConfigParserData> data_;
};

}  // namespace Tarnwick::Parser
