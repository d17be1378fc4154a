#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "api.h"
#include "vocabulary_names.h"

namespace Tarnwick::Parser {

// The fixed names of the configuration. Names are compared byte for byte, letter case included.
// All of these exist before `main` runs and never change.

/// The files of a configuration directory: "*.conf".
TARNWICK_API extern const std::string kFilePattern;
/// The directory that is read when none is given: "/etc/tarnwick.conf.d".
TARNWICK_API extern const std::string kDefaultConfigDirectory;
/// The container's name when none is given: "default".
TARNWICK_API extern const std::string kDefaultInstance;
/// The characters of group and key names, in ascending character-code order, the blank first.
TARNWICK_API extern const std::string kPermittedNameCharacters;

#define TARNWICK_DECLARE_KEY(name, type) TARNWICK_API extern const std::string kKey##name;
#define TARNWICK_DECLARE_GROUP(name, KEYS)              \
    TARNWICK_API extern const std::string kGroup##name; \
    KEYS(TARNWICK_DECLARE_KEY)
#define TARNWICK_DECLARE_VALUE(name, text) TARNWICK_API extern const std::string kValue##name;

/// @{
/// The groups and the keys: `kGroupConfig` is "Config", `kKeyUserId` is "UserId", and so on.
TARNWICK_GROUPS(TARNWICK_DECLARE_GROUP)
/// @}

/// @{
/// The fixed values: "bridge", "disable", "kestrune", "skip", "NoDots", "None".
TARNWICK_VALUES(TARNWICK_DECLARE_VALUE)
/// @}

#undef TARNWICK_DECLARE_KEY
#undef TARNWICK_DECLARE_GROUP
#undef TARNWICK_DECLARE_VALUE

/// What the value of a key is, or each of its values. The library checks no value against it.
enum class ValueType : std::int32_t {
    Text,          ///< any text
    Boolean,       ///< a truth value, see `ConfigParser::getValue` for its words
    Number,        ///< an integer
    MountEntries,  ///< lines of the form of fstab(5)
};

/// Returns the type's name: "text", "boolean", "number" or "mount entries".
[[nodiscard]] TARNWICK_API std::string_view valueTypeName(ValueType type);

/// A key of the vocabulary.
struct VocabularyKey {
    const std::string* name;  ///< never null
    ValueType type;           ///< of its value
};

/// A group and its keys, in their order of definition.
struct VocabularyGroup {
    const std::string* name;              ///< never null
    std::span<const VocabularyKey> keys;  ///< in the order of their rows
};

/// Returns all groups with their keys, in their order of definition.
[[nodiscard]] TARNWICK_API std::span<const VocabularyGroup> vocabularyGroups();

}  // namespace Tarnwick::Parser
