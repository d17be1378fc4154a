#include "config/explain/near_names.h"

#include <algorithm>

#include "config/check/names.h"

namespace Tarnwick::Parser::ConfigTool {
namespace {

constexpr std::size_t kMostNames = 5;

}  // namespace

std::vector<std::string> nearKeys(const ConfigParser& parser, const KeyName& name) {
    std::vector<std::string> groups = parser.groups();
    std::stable_partition(groups.begin(), groups.end(),
                          [&](const std::string& group) { return group == name.group; });
    std::vector<std::string> found;
    for (const std::string& group : groups) {
        const std::vector<std::string> keys = parser.keys(group);
        const std::string_view nearest = nearestName(name.key, {keys.begin(), keys.end()});
        if (!nearest.empty() && found.size() < kMostNames) {
            found.push_back(group + '/' + std::string(nearest));
        }
    }
    return found;
}

}  // namespace Tarnwick::Parser::ConfigTool
