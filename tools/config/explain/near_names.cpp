#include "config/explain/near_names.h"

#include "config/check/names.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

constexpr std::size_t kMostNames = 5;

std::string nearestKey(const ConfigParser& parser, const std::string& group,
                       const std::string& key) {
    const std::vector<std::string> keys = parser.keys(group);
    return std::string(nearestName(key, {keys.begin(), keys.end()}));
}

}  // namespace

std::vector<std::string> nearKeys(const ConfigParser& parser, const KeyName& name) {
    const bool isGroupKnown = parser.hasGroup(name.group) && !parser.keys(name.group).empty();
    std::vector<std::string> found;
    for (const std::string& group : parser.groups()) {
        const bool mayDiffer = group == name.group || !isGroupKnown;
        const std::string near = mayDiffer ? nearestKey(parser, group, name.key) : name.key;
        if (!near.empty() && parser.hasKey(group, near) && found.size() < kMostNames) {
            found.emplace_back(group).append(1, '/').append(near);
        }
    }
    return found;
}

}  // namespace Tarnwick::Parser::ConfigTool
