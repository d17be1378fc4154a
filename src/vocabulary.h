#pragma once

#include <span>
#include <string>

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

// Groups: kGroupConfig is "Config", and so on. Keys: kKeyUserId is "UserId", and so on.
#define TARNWICK_DECLARE_GROUP(name) TARNWICK_API extern const std::string kGroup##name;
#define TARNWICK_DECLARE_KEY(name) TARNWICK_API extern const std::string kKey##name;
#define TARNWICK_DECLARE_VALUE(name, text) TARNWICK_API extern const std::string kValue##name;
TARNWICK_GROUPS(TARNWICK_DECLARE_GROUP)
TARNWICK_AUDIO_KEYS(TARNWICK_DECLARE_KEY)
TARNWICK_CONFIG_KEYS(TARNWICK_DECLARE_KEY)
TARNWICK_DEVICES_KEYS(TARNWICK_DECLARE_KEY)
TARNWICK_FEATURES_KEYS(TARNWICK_DECLARE_KEY)
TARNWICK_GENERATED_CONFIG_KEYS(TARNWICK_DECLARE_KEY)
TARNWICK_NETWORK_KEYS(TARNWICK_DECLARE_KEY)
TARNWICK_VALUES(TARNWICK_DECLARE_VALUE)
#undef TARNWICK_DECLARE_GROUP
#undef TARNWICK_DECLARE_KEY
#undef TARNWICK_DECLARE_VALUE

/// A group and its keys, in their order of definition.
struct VocabularyGroup {
    const std::string* name;                   ///< never null
    std::span<const std::string* const> keys;  ///< none is null
};

/// Returns all groups with their keys, in their order of definition.
[[nodiscard]] TARNWICK_API std::span<const VocabularyGroup> vocabularyGroups();

}  // namespace Tarnwick::Parser
