#pragma once

#include <sys/types.h>

#include <cstdint>
#include <vector>

namespace Tarnwick::Parser::Testing {

/// What the stand-in for libsystemd says of the seat at one look. Results below 0 are errors.
struct Look {
    int activeResult = 0;
    uid_t active = static_cast<uid_t>(-1);
    int sessionsResult = 0;
    std::vector<uid_t> users = {};
    bool tellsUsers = true;
};

/// What the stand-in does, and what was done with it.
struct Login {
    std::vector<Look> looks;  // one after the other; the last one stays
    std::size_t looksTaken = 0;

    int monitorResult = 0;
    std::uint64_t monitorTimeout = UINT64_MAX;
    bool hasEvent = false;  // until the monitor is flushed
    int monitors = 0;       // those that are there now
    int monitorsMade = 0;
    int flushes = 0;
};

extern Login login;

/// The category of the monitor that was made last.
extern const char* monitorCategory;

}  // namespace Tarnwick::Parser::Testing
