#include "login.h"

#include <systemd/sd-login.h>

#include <cerrno>

#include "support/dynamic_library.h"
#include "support/free.h"

namespace Tarnwick::Parser::Tool {
namespace {

struct LoginApi {
    decltype(&::sd_seat_get_active) seatGetActive = nullptr;
    decltype(&::sd_seat_get_sessions) seatGetSessions = nullptr;
    decltype(&::sd_login_monitor_new) monitorNew = nullptr;
    decltype(&::sd_login_monitor_unref) monitorUnref = nullptr;
    decltype(&::sd_login_monitor_flush) monitorFlush = nullptr;
    decltype(&::sd_login_monitor_get_fd) monitorGetFd = nullptr;
    decltype(&::sd_login_monitor_get_events) monitorGetEvents = nullptr;
    decltype(&::sd_login_monitor_get_timeout) monitorGetTimeout = nullptr;
};

bool fill(LoginApi& api, const DynamicLibrary& library) {
    return library.find("sd_seat_get_active", api.seatGetActive) &&
           library.find("sd_seat_get_sessions", api.seatGetSessions) &&
           library.find("sd_login_monitor_new", api.monitorNew) &&
           library.find("sd_login_monitor_unref", api.monitorUnref) &&
           library.find("sd_login_monitor_flush", api.monitorFlush) &&
           library.find("sd_login_monitor_get_fd", api.monitorGetFd) &&
           library.find("sd_login_monitor_get_events", api.monitorGetEvents) &&
           library.find("sd_login_monitor_get_timeout", api.monitorGetTimeout);
}

/// The functions, or null when the library is not installed.
const LoginApi* loginApi() {
    static LoginApi api;
    static const bool isFilled = fill(api, DynamicLibrary("libsystemd.so.0"));
    return isFilled ? &api : nullptr;
}

sd_login_monitor* newMonitor(const char* category) {
    sd_login_monitor* monitor = nullptr;
    const LoginApi* api = loginApi();
    return api != nullptr && api->monitorNew(category, &monitor) >= 0 ? monitor : nullptr;
}

}  // namespace

int seatGetActive(const char* seat, uid_t& uid) {
    const LoginApi* api = loginApi();
    return api != nullptr ? api->seatGetActive(seat, nullptr, &uid) : -ENOSYS;
}

int seatGetSessions(const char* seat, std::vector<uid_t>& uids) {
    const LoginApi* api = loginApi();
    if (api == nullptr) {
        return -ENOSYS;
    }
    uid_t* array = nullptr;
    unsigned count = 0;
    const int result = api->seatGetSessions(seat, nullptr, &array, &count);
    const std::unique_ptr<uid_t, Free> owned(array);
    if (array != nullptr) {  // Null for a seat file that lists sessions without their users.
        uids.assign(array, array + count);
    }
    return result;
}

LoginMonitor::LoginMonitor(const char* category) : monitor_(newMonitor(category)) {}

int LoginMonitor::descriptor() const {
    return loginApi()->monitorGetFd(monitor_.get());
}

short LoginMonitor::events() const {
    return static_cast<short>(loginApi()->monitorGetEvents(monitor_.get()));
}

std::uint64_t LoginMonitor::timeout() const {
    std::uint64_t timeout = 0;
    (void)loginApi()->monitorGetTimeout(monitor_.get(), &timeout);  // 0 when it tells none
    return timeout;
}

void LoginMonitor::flush() {
    (void)loginApi()->monitorFlush(monitor_.get());  // The next look tells what there is.
}

void LoginMonitor::Unref::operator()(sd_login_monitor* monitor) const {
    const int cause = errno;  // belongs to the last look at the seat
    loginApi()->monitorUnref(monitor);
    errno = cause;
}

}  // namespace Tarnwick::Parser::Tool
