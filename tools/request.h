#pragma once

#include <optional>
#include <string>
#include <vector>

#include "active_user.h"
#include "config_parser.h"
#include "load_event.h"
#include "template_variables.h"

namespace Tarnwick::Parser::Tool {

/// Settles whose configuration the directories hold, as `resolveUser` says. The user's id and
/// instance carry in what the command line says. Returns false when there is no such user or a file
/// failed to load; the cause has been logged by then. Throws as `resolveUser` does.
[[nodiscard]] bool settleUser(User& user, const std::vector<std::string>& directories,
                              UserOrigins* origins = nullptr, const LoadListener& listener = {});

/// Loads the directories for the user whose id the parser has. Returns false when a file failed to
/// load, which has been logged by then, or when there is none, which is said on the error stream.
/// Throws as `ConfigParser::loadConfigs` does.
[[nodiscard]] bool loadForUser(ConfigParser& parser, const User& user,
                               const std::vector<std::string>& directories,
                               const LoadListener& listener = {});

/// Which of its values a key is asked for.
enum class Wanted {
    CurrentValue,  ///< the last one
    AllValues,     ///< all of them, joined by ';'
};

/// Returns the answer to a request for the key, without a line feed, or nothing when the key has no
/// value. Throws `std::out_of_range` as `ConfigParser::getValue` does.
[[nodiscard]] std::optional<std::string> findAnswer(const ConfigParser& parser,
                                                    const std::string& group,
                                                    const std::string& key, Wanted wanted);

}  // namespace Tarnwick::Parser::Tool
