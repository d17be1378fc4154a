#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <vector>

struct sd_login_monitor;

namespace Tarnwick::Parser::Tool {

// The part of sd-login(3) that the tool calls. libsystemd is opened at the first call; where it is
// not installed, every call fails, those that return a number with -ENOSYS.

/// `sd_seat_get_active(3)` without the session: a negative errno, or 0 and `uid`.
[[nodiscard]] int seatGetActive(const char* seat, uid_t& uid);

/// `sd_seat_get_sessions(3)`: a negative errno, or the number of sessions. `uids` holds their
/// users, or nothing when the seat file does not tell them.
[[nodiscard]] int seatGetSessions(const char* seat, std::vector<uid_t>& uids);

/// `sd_login_monitor(3)` of one category, such as "uid". Falsy when it could not be created.
class LoginMonitor {
public:
    explicit LoginMonitor(const char* category);

    [[nodiscard]] explicit operator bool() const { return monitor_ != nullptr; }
    [[nodiscard]] int descriptor() const;
    [[nodiscard]] short events() const;
    /// In microseconds; UINT64_MAX stands for none.
    [[nodiscard]] std::uint64_t timeout() const;
    void flush();

private:
    struct Unref {
        void operator()(sd_login_monitor* monitor) const;
    };
    std::unique_ptr<sd_login_monitor, Unref> monitor_;
};

}  // namespace Tarnwick::Parser::Tool
