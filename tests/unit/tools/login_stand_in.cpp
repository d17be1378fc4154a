// Stands in for libsystemd: tells of the seat what a test put down.

#include "tools/login_stand_in.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-login.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>

using Tarnwick::Parser::Testing::login;
using Tarnwick::Parser::Testing::Look;

Tarnwick::Parser::Testing::Login Tarnwick::Parser::Testing::login;
const char* Tarnwick::Parser::Testing::monitorCategory = nullptr;

struct sd_login_monitor {
    int descriptor;
};

namespace {

// A look begins by asking for the active session and ends by asking for all sessions, if it does.
const Look& currentLook() {
    return login.looks.at(login.looksTaken - 1);
}

void beginLook() {
    if (login.looksTaken < login.looks.size()) {
        ++login.looksTaken;
    }
}

}  // namespace

extern "C" int sd_seat_get_active(const char* seat, char** session, uid_t* uid) {
    if (std::string(seat) != "seat0" || session != nullptr) {
        std::abort();
    }
    beginLook();
    if (currentLook().activeResult >= 0) {
        *uid = currentLook().active;
    }
    return currentLook().activeResult;
}

extern "C" int sd_seat_get_sessions(const char* seat, char*** sessions, uid_t** uids,
                                    unsigned* count) {
    if (std::string(seat) != "seat0" || sessions != nullptr) {
        std::abort();
    }
    const Look& look = currentLook();
    if (look.sessionsResult < 0) {
        return look.sessionsResult;
    }
    *count = static_cast<unsigned>(look.users.size());
    *uids = nullptr;
    if (look.tellsUsers && !look.users.empty()) {
        *uids = static_cast<uid_t*>(std::calloc(look.users.size(), sizeof(uid_t)));
        std::copy(look.users.begin(), look.users.end(), *uids);
    }
    return static_cast<int>(look.users.size());
}

extern "C" int sd_login_monitor_new(const char* category, sd_login_monitor** monitor) {
    Tarnwick::Parser::Testing::monitorCategory = category;
    if (login.monitorResult < 0) {
        return login.monitorResult;
    }
    ++login.monitors;
    ++login.monitorsMade;
    *monitor = new sd_login_monitor{eventfd(login.hasEvent ? 1 : 0, EFD_CLOEXEC | EFD_NONBLOCK)};
    return 0;
}

extern "C" sd_login_monitor* sd_login_monitor_unref(sd_login_monitor* monitor) {
    close(monitor->descriptor);
    delete monitor;
    --login.monitors;
    errno = ENOTTY;  // As any clean-up may.
    return nullptr;
}

extern "C" int sd_login_monitor_flush(sd_login_monitor* monitor) {
    eventfd_t value = 0;
    eventfd_read(monitor->descriptor, &value);
    ++login.flushes;
    return 0;
}

extern "C" int sd_login_monitor_get_fd(sd_login_monitor* monitor) {
    return monitor->descriptor;
}

extern "C" int sd_login_monitor_get_events(sd_login_monitor*) {
    return POLLIN;
}

extern "C" int sd_login_monitor_get_timeout(sd_login_monitor*, std::uint64_t* timeout) {
    *timeout = login.monitorTimeout;
    return 0;
}
