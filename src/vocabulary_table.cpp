// The table of all names, for programs that list them.

#include <array>

#include "vocabulary.h"

namespace Tarnwick::Parser {

std::string_view valueTypeName(ValueType type) {
    // Row n names type n.
    static constexpr std::array<std::string_view, 4> kNames{"text", "boolean", "number",
                                                            "mount entries"};
    return kNames.at(static_cast<std::size_t>(type));
}

std::span<const VocabularyGroup> vocabularyGroups() {
#define TARNWICK_KEY_ROW(name, type) VocabularyKey{&kKey##name, ValueType::type},
#define TARNWICK_KEYS_OF_GROUP(name, KEYS) \
    static constexpr std::array k##name{KEYS(TARNWICK_KEY_ROW)};
#define TARNWICK_GROUP_ROW(name, KEYS) VocabularyGroup{&kGroup##name, k##name},
    TARNWICK_GROUPS(TARNWICK_KEYS_OF_GROUP)
    static constexpr std::array kGroups{TARNWICK_GROUPS(TARNWICK_GROUP_ROW)};
    return kGroups;
}

}  // namespace Tarnwick::Parser
