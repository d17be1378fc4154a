// The keys and values that reading configuration does without, and the table of all names.

#include <array>

#include "vocabulary.h"

namespace Tarnwick::Parser {

#define TARNWICK_DEFINE_KEY(name) const std::string kKey##name = #name;
#define TARNWICK_DEFINE_VALUE(name, text) const std::string kValue##name = text;
TARNWICK_AUDIO_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_CONFIG_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_DEVICES_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_FEATURES_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_NETWORK_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_VALUES(TARNWICK_DEFINE_VALUE)

std::span<const VocabularyGroup> vocabularyGroups() {
    using Key = const std::string*;
#define TARNWICK_KEY_POINTER(name) &kKey##name,
    static constexpr Key kAudio[] = {TARNWICK_AUDIO_KEYS(TARNWICK_KEY_POINTER)};
    static constexpr Key kConfig[] = {TARNWICK_CONFIG_KEYS(TARNWICK_KEY_POINTER)};
    static constexpr Key kDevices[] = {TARNWICK_DEVICES_KEYS(TARNWICK_KEY_POINTER)};
    static constexpr Key kFeatures[] = {TARNWICK_FEATURES_KEYS(TARNWICK_KEY_POINTER)};
    static constexpr Key kGeneratedConfig[] = {
        TARNWICK_GENERATED_CONFIG_KEYS(TARNWICK_KEY_POINTER)};
    static constexpr Key kNetwork[] = {TARNWICK_NETWORK_KEYS(TARNWICK_KEY_POINTER)};
#define TARNWICK_GROUP_ROW(name) VocabularyGroup{&kGroup##name, k##name},
    static constexpr std::array kGroups{TARNWICK_GROUPS(TARNWICK_GROUP_ROW)};
    return kGroups;
}

}  // namespace Tarnwick::Parser
