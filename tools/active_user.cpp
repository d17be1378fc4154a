#include "active_user.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>

#include "config_parser.h"
#include "logging/log_record.h"
#include "login.h"
#include "value_sources.h"
#include "vocabulary.h"

namespace Tarnwick::Parser::Tool {
namespace {

using Logging::logDebug;
using Logging::logError;
using Logging::logWarning;
using Logging::parserLogger;

constexpr const char* kSeat = "seat0";
constexpr std::int32_t kNoUser = -1;
constexpr int kSeatTimeoutSeconds = 30;

// --- Settings of an earlier configuration pass ---

bool hasGeneratedUser(const ConfigParser& parser) {
    return parser.hasKey(kGroupGeneratedConfig, kKeyUserId) &&
           parser.hasKey(kGroupGeneratedConfig, kKeyUser) &&
           parser.hasKey(kGroupGeneratedConfig, kKeyHome) &&
           parser.hasKey(kGroupGeneratedConfig, kKeyBaseUid);
}

// Reads a key of the generated group.
template <typename T>
void take(const ConfigParser& parser, const std::string& key, T& output) {
    parser.checkKeyAdded(kGroupGeneratedConfig, key);
    if (parser.hasKey(kGroupGeneratedConfig, key)) {
        parser.getValue(kGroupGeneratedConfig, key, output);
    }
}

// 0, then the key's value if it has one.
void takeNumber(const ConfigParser& parser, const std::string& key, std::int32_t* output) {
    if (output == nullptr) {
        return;
    }
    *output = 0;
    take(parser, key, *output);
}

// The key's text, or the empty text when it has none.
void takeText(const ConfigParser& parser, const std::string& key, std::string* output) {
    if (output == nullptr) {
        return;
    }
    output->clear();
    take(parser, key, *output);
}

// --- The user of the seat ---

// In messages a uid is the one character with the code of its low 8 bits, not a number; readers
// of the log depend on it.
unsigned char asCharacter(uid_t uid) {
    return static_cast<unsigned char>(uid);
}

std::int32_t onlySessionUser() {
    errno = 0;
    std::vector<uid_t> uids;
    const int result = seatGetSessions(kSeat, uids);
    if (result < 0) {
        logWarning(parserLogger) << "Could not get sessions for seat0";
        errno = -result;
        return kNoUser;
    }
    if (uids.size() != 1) {
        return kNoUser;
    }
    logDebug(parserLogger) << "There is only one session on seat0, selecting UID "
                           << asCharacter(uids.front()) << " as active user";
    return static_cast<std::int32_t>(uids.front());
}

using Clock = std::chrono::steady_clock;

std::int64_t wholeSecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count();
}

constexpr int kNoPollLimit = -1;

int asPollLimit(std::uint64_t microseconds) {
    if (microseconds == UINT64_MAX) {
        return kNoPollLimit;
    }
    return static_cast<int>(std::min<std::uint64_t>(microseconds / 1000, INT_MAX));
}

bool waitForEvent(const LoginMonitor& monitor, std::uint64_t timeoutMicroseconds) {
    pollfd descriptor{monitor.descriptor(), monitor.events(), 0};
    return poll(&descriptor, 1, asPollLimit(timeoutMicroseconds)) >= 0;
}

// Looks again after every event until a look differs from the first one. The loop ends when the
// elapsed whole seconds exceed the time-out: during the last second the time that remains is 0,
// and it looks again without a pause.
std::int32_t watchSeat(LoginMonitor& monitor, std::int32_t first, int timeoutSeconds,
                       Clock::time_point start) {
    std::uint64_t timeout = monitor.timeout();
    std::int32_t user = first;
    for (;;) {
        if (timeoutSeconds > 0) {
            const std::int64_t remaining = timeoutSeconds - wholeSecondsSince(start);
            if (remaining < 0) {
                logWarning(parserLogger) << "Could not get sessions for seat0, timeout reached";
                return user;
            }
            timeout = std::min(timeout, static_cast<std::uint64_t>(remaining) * 1'000'000);
        }
        if (!waitForEvent(monitor, timeout)) {
            logWarning(parserLogger) << "Polling login monitor failed!";
            return user;
        }
        monitor.flush();
        user = getSeat0User();
        if (user != first) {
            return user;
        }
    }
}

// Loads the generated keys alone. Returns false when a file failed.
bool loadGenerated(ConfigParser& parser, const std::vector<std::string>& directories,
                   const LoadListener& listener) {
    for (const std::string* key : generatedUserKeys()) {
        parser.addKey(kGroupGeneratedConfig, *key, KeyMode::Replace);
    }
    return parser.loadConfigs(directories, listener) != LoadResult::InvalidConfiguration;
}

// Finds the user of the seat where no user is known. Returns whether there is a user then.
bool settleUserId(std::int32_t& userId, UserOrigins& origins) {
    if (userId != kNoUser) {
        return true;
    }
    userId = waitForSeat0User(kSeatTimeoutSeconds);
    if (userId == kNoUser) {
        const int cause = errno;
        logError(parserLogger) << "Failed to get seat0 user: " << std::strerror(cause);
        return false;
    }
    origins.userId = UserOrigin::Seat;
    return true;
}

bool readPasswordEntry(std::int32_t userId, std::string* userName, std::string* home,
                       UserOrigins& origins) {
    if (getUserInfoForUid(userId, userName, home, nullptr) == 0) {
        const int cause = errno;
        logError(parserLogger) << "Failed to get user information for uid " << userId << ": "
                               << std::strerror(cause);
        return false;
    }
    origins.userName = UserOrigin::PasswordDatabase;
    origins.home = UserOrigin::PasswordDatabase;
    return true;
}

}  // namespace

std::span<const std::string* const> generatedUserKeys() {
    static constexpr std::array kKeys{&kKeyBaseUid, &kKeyHome, &kKeyInstance, &kKeyUserId,
                                      &kKeyUser};
    return kKeys;
}

int resolveUser(const std::vector<std::string>& directories, std::int32_t* userId,
                std::string* userName, std::string* instance, std::string* home,
                std::int32_t* baseUid, UserOrigins* origins, const LoadListener& listener) {
    UserOrigins ignored;
    UserOrigins& from = origins != nullptr ? *origins : ignored;
    from = {};
    ConfigParser parser(0);
    if (!loadGenerated(parser, directories, listener)) {
        return -1;
    }
    if (hasGeneratedUser(parser)) {
        constexpr auto kGenerated = UserOrigin::GeneratedConfig;
        from = {kGenerated, kGenerated, kGenerated, kGenerated};
        takeNumber(parser, kKeyBaseUid, baseUid);
        takeNumber(parser, kKeyUserId, userId);
        takeText(parser, kKeyHome, home);
        takeText(parser, kKeyInstance, instance);  // also the empty text; callers depend on it
        takeText(parser, kKeyUser, userName);
    }
    if (userId == nullptr) {
        return 0;
    }
    return settleUserId(*userId, from) && readPasswordEntry(*userId, userName, home, from) ? 0 : -1;
}

std::int32_t waitForSeat0User(int timeoutSeconds) {
    const std::int32_t first = getSeat0User();
    if (timeoutSeconds == 0) {
        return first;
    }
    const Clock::time_point start = Clock::now();
    LoginMonitor monitor("uid");
    if (!monitor) {
        logWarning(parserLogger) << "Could not create login monitor";
        return first;
    }
    return first != kNoUser ? first : watchSeat(monitor, first, timeoutSeconds, start);
}

std::int32_t getSeat0User() {
    uid_t uid = static_cast<uid_t>(kNoUser);
    const int result = seatGetActive(kSeat, uid);
    if (result >= 0 && uid != static_cast<uid_t>(kNoUser)) {
        logDebug(parserLogger) << "Active session on seat0 found for UID " << asCharacter(uid);
        return static_cast<std::int32_t>(uid);
    }
    return onlySessionUser();
}

}  // namespace Tarnwick::Parser::Tool
