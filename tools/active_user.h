#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "load_event.h"

namespace Tarnwick::Parser::Tool {

/// Returns the keys of the group "GeneratedConfig" that tell whose configuration it is. They are
/// read before any template variable is known.
[[nodiscard]] std::span<const std::string* const> generatedUserKeys();

/// Where a field of the user came from.
enum class UserOrigin {
    Caller,            ///< as it was given to `resolveUser`: the command line, or its default
    GeneratedConfig,   ///< a key of the group "GeneratedConfig"
    Seat,              ///< the session on seat0
    PasswordDatabase,  ///< the entry of the user id
};

/// Where each field of the user came from. A base uid comes from the generated group alone.
struct UserOrigins {
    UserOrigin userId = UserOrigin::Caller;
    UserOrigin userName = UserOrigin::Caller;
    UserOrigin instance = UserOrigin::Caller;
    UserOrigin home = UserOrigin::Caller;
};

/// Settles whose configuration is read. `userId` and `instance` carry in what the command line
/// says, -1 standing for no user id. Outputs that are null are left out.
///
/// When the directories hold the keys UserId, User, Home and BaseUid of the group
/// "GeneratedConfig", these win over the command line, and the instance becomes the value of
/// Instance or empty. Without any user id the user of seat0 is taken, who is waited for up to 30
/// seconds. User name and home always come from the password database in the end.
///
/// `origins`, when given, is set as far as the fields were settled. `listener` hears the load of
/// these keys, a file's faults among them.
///
/// Returns 0, or -1 when a file failed to load, no user was found or the user has no password
/// entry; the cause has been logged by then. Throws `std::length_error` as
/// `ConfigParser::loadConfigs` does, and `std::out_of_range` as `ConfigParser::getValue` does.
[[nodiscard]] int resolveUser(const std::vector<std::string>& directories, std::int32_t* userId,
                              std::string* userName, std::string* instance, std::string* home,
                              std::int32_t* baseUid, UserOrigins* origins = nullptr,
                              const LoadListener& listener = {});

/// Returns the uid of the seat0 user, waiting for one to log in. A time-out of 0 means one look
/// without waiting, a negative one a wait without limit; a login service that cannot be watched is
/// logged as "Could not create login monitor" and also means one look. Returns -1 when there is
/// none in time or a signal ends the wait; errno then tells the cause as far as there is one: that
/// of the last look, or of the wait itself.
[[nodiscard]] std::int32_t waitForSeat0User(int timeoutSeconds);

/// Returns the uid of seat0's active session, or else of its only session; -1 when there is no
/// such session, several but none active, or no login service; errno then tells the cause.
[[nodiscard]] std::int32_t getSeat0User();

}  // namespace Tarnwick::Parser::Tool
