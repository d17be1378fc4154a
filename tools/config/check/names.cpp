#include "config/check/names.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "logging/logger_state.h"
#include "template_text.h"
#include "template_variables.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

constexpr std::size_t kLongestName = 40;  // no longer one is like a name of the vocabulary

// A letter in the other case costs 1, any other edit more than all letters of a name.
constexpr std::size_t kEdit = kLongestName + 1;

char lowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::size_t costOf(char left, char right) {
    if (left == right) {
        return 0;
    }
    return lowerCase(left) == lowerCase(right) ? 1 : kEdit;
}

using Row = std::array<std::size_t, kLongestName + 1>;

// The edit distance in which two neighbours that have changed places count as one edit; any number
// beyond `most` when it is farther than that.
std::size_t distance(std::string_view left, std::string_view right, std::size_t most) {
    std::array<Row, 3> rows{};  // a row is built from the two before it
    for (std::size_t column = 0; column <= right.size(); ++column) {
        rows[0][column] = column * kEdit;
    }
    std::size_t nearest = 0;  // of the last row
    for (std::size_t row = 1; row <= left.size(); ++row) {
        Row& current = rows[row % 3];
        const Row& last = rows[(row + 2) % 3];
        const Row& beforeLast = rows[(row + 1) % 3];
        current[0] = row * kEdit;
        const std::size_t nearestBefore = nearest;
        nearest = current[0];
        for (std::size_t column = 1; column <= right.size(); ++column) {
            const std::size_t replaced =
                last[column - 1] + costOf(left[row - 1], right[column - 1]);
            current[column] =
                std::min({last[column] + kEdit, current[column - 1] + kEdit, replaced});
            if (row > 1 && column > 1 && left[row - 1] == right[column - 2] &&
                left[row - 2] == right[column - 1]) {
                current[column] = std::min(current[column], beforeLast[column - 2] + kEdit);
            }
            nearest = std::min(nearest, current[column]);
        }
        if (std::min(nearest, nearestBefore) > most) {
            return most + 1;
        }
    }
    return rows[left.size() % 3][right.size()];
}

bool mayBeNear(std::string_view name, std::string_view candidate, std::size_t least) {
    const std::size_t longer = std::max(name.size(), candidate.size());
    const std::size_t shorter = std::min(name.size(), candidate.size());
    return longer <= kLongestName && (longer - shorter) * kEdit <= least;
}

// One edit in a short name, one in three letters of a long one; any number of letters' cases.
std::size_t farthest(std::size_t length) {
    return std::max<std::size_t>(1, length / 3) * kEdit + kLongestName;
}

}  // namespace

std::string_view nearestName(std::string_view name, const std::vector<std::string_view>& names) {
    if (name.empty() || name.size() > kLongestName) {
        return {};
    }
    std::string_view nearest;
    std::size_t least = farthest(name.size()) + 1;
    for (const std::string_view candidate : names) {
        if (!mayBeNear(name, candidate, least)) {
            continue;
        }
        const std::size_t far = distance(name, candidate, least);
        const std::size_t edits = far / kEdit;
        const bool isNear = edits < std::max(name.size(), candidate.size());
        if (isNear && (far < least || (far == least && candidate < nearest))) {
            least = far;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string suggestion(std::string_view name, const std::vector<std::string_view>& names) {
    const std::string_view nearest = nearestName(name, names);
    return nearest.empty() ? "" : "; did you mean '" + std::string(nearest) + "'?";
}

std::string suggestedVariable(std::string_view name) {
    std::vector<std::string_view> names;
    for (const Tool::TemplateVariable& variable : Tool::templateVariables()) {
        names.push_back(variable.name);
    }
    return suggestion(name, names);
}

std::string suggestedSource(std::string_view name) {
    return suggestion(name, {templateSourceNames().begin(), templateSourceNames().end()});
}

KnownNames::KnownNames() {
    for (const VocabularyGroup& group : vocabularyGroups()) {
        for (const VocabularyKey& key : group.keys) {
            groups_[*group.name].keys.insert(*key.name);
        }
    }
    groups_[Logging::kLoggingGroup].hasEveryKey = true;
}

void KnownNames::add(const std::string& name) {
    const std::size_t slash = name.find('/');
    Group& group = groups_[name.substr(0, slash)];
    if (slash == name.npos) {
        group.hasEveryKey = true;
    } else {
        group.keys.insert(name.substr(slash + 1));
    }
}

bool KnownNames::hasKey(const std::string& group, const std::string& key) const {
    const auto known = groups_.find(group);
    return known != groups_.end() &&
           (known->second.hasEveryKey || known->second.keys.contains(key));
}

bool KnownNames::lists(const std::string& group, const std::string& key) const {
    const auto known = groups_.find(group);
    return known != groups_.end() && known->second.keys.contains(key);
}

std::vector<std::string_view> KnownNames::groups() const {
    std::vector<std::string_view> names;
    for (const auto& [name, group] : groups_) {
        names.push_back(name);
    }
    return names;
}

std::vector<std::string_view> KnownNames::keys(const std::string& group) const {
    const auto known = groups_.find(group);
    if (known == groups_.end()) {
        return {};
    }
    return {known->second.keys.begin(), known->second.keys.end()};
}

}  // namespace Tarnwick::Parser::ConfigTool
