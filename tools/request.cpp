#include "request.h"

#include <iostream>

#include "support/join_strings.h"

namespace Tarnwick::Parser::Tool {
namespace {

// The library's calling order: the test, then the check and the test that go with the lookup.
// Each may log its warning.
bool hasValue(const ConfigParser& parser, const std::string& group, const std::string& key) {
    if (!parser.hasKey(group, key)) {
        return false;
    }
    parser.checkKeyAdded(group, key);
    return parser.hasKey(group, key);
}

}  // namespace

bool settleUser(User& user, const std::vector<std::string>& directories, UserOrigins* origins,
                const LoadListener& listener) {
    return resolveUser(directories, &user.id, &user.name, &user.instance, &user.home, nullptr,
                       origins, listener) >= 0;
}

bool loadForUser(ConfigParser& parser, const User& user,
                 const std::vector<std::string>& directories, const LoadListener& listener) {
    setVariables(parser, user);
    const LoadResult result = parser.loadConfigs(directories, listener);
    if (result == LoadResult::NoConfiguration) {
        std::cerr << "No configuration to read in " << joinStrings(directories, ',') << '\n';
    }
    return result == LoadResult::Ok;
}

std::optional<std::string> findAnswer(const ConfigParser& parser, const std::string& group,
                                      const std::string& key, Wanted wanted) {
    if (!hasValue(parser, group, key)) {
        return std::nullopt;
    }
    if (wanted == Wanted::AllValues) {
        std::vector<std::string> values;
        parser.getValue(group, key, values);
        return joinStrings(values, ';');
    }
    std::string value;
    parser.getValue(group, key, value);
    return value;
}

}  // namespace Tarnwick::Parser::Tool
