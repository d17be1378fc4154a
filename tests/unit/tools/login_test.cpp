#include "login.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <cerrno>

#include "tools/login_stand_in.h"

namespace Tarnwick::Parser::Tool {
namespace {

using Testing::login;
using Testing::Look;
using Users = std::vector<uid_t>;

class LoginCalls : public testing::Test {
protected:
    LoginCalls() { login = {}; }

    static void show(const Look& look) {
        login = {};
        login.looks = {look};
    }
};

TEST_F(LoginCalls, TellTheUserOfTheActiveSession) {
    show({.active = 1065});
    uid_t uid = 0;
    EXPECT_EQ(seatGetActive("seat0", uid), 0);
    EXPECT_EQ(uid, 1065U);
}

TEST_F(LoginCalls, PassOnTheErrorOfTheActiveSession) {
    show({.activeResult = -ENXIO});
    uid_t uid = 7;
    EXPECT_EQ(seatGetActive("seat0", uid), -ENXIO);
    EXPECT_EQ(uid, 7U);
}

TEST_F(LoginCalls, TellTheUsersOfAllSessions) {
    show({.users = {1000, 1001}});
    uid_t uid = 0;
    (void)seatGetActive("seat0", uid);
    Users users;
    EXPECT_EQ(seatGetSessions("seat0", users), 2);
    EXPECT_EQ(users, (Users{1000, 1001}));
}

TEST_F(LoginCalls, TellNoUsersWhereTheSeatDoesNot) {
    show({.users = {1000}, .tellsUsers = false});
    uid_t uid = 0;
    (void)seatGetActive("seat0", uid);
    Users users;
    EXPECT_EQ(seatGetSessions("seat0", users), 1);
    EXPECT_TRUE(users.empty());
}

TEST_F(LoginCalls, PassOnTheErrorOfTheSessions) {
    show({.sessionsResult = -ENODATA});
    uid_t uid = 0;
    (void)seatGetActive("seat0", uid);
    Users users;
    EXPECT_EQ(seatGetSessions("seat0", users), -ENODATA);
    EXPECT_TRUE(users.empty());
}

TEST_F(LoginCalls, WatchACategoryAsLongAsTheMonitorLives) {
    login.monitorTimeout = 12345;
    {
        const LoginMonitor monitor("uid");
        ASSERT_TRUE(monitor);
        EXPECT_STREQ(Testing::monitorCategory, "uid");
        EXPECT_EQ(login.monitors, 1);
        EXPECT_GE(monitor.descriptor(), 0);
        EXPECT_EQ(monitor.events(), POLLIN);
        EXPECT_EQ(monitor.timeout(), 12345U);
    }
    EXPECT_EQ(login.monitors, 0);
}

TEST_F(LoginCalls, LeaveErrnoAloneWhenAMonitorGoes) {
    {
        const LoginMonitor monitor("uid");
        errno = ENXIO;
    }
    EXPECT_EQ(errno, ENXIO);
}

TEST_F(LoginCalls, FlushTheMonitor) {
    LoginMonitor monitor("uid");
    monitor.flush();
    EXPECT_EQ(login.flushes, 1);
}

TEST_F(LoginCalls, TellThatThereIsNoMonitor) {
    login.monitorResult = -ENOENT;
    const LoginMonitor monitor("uid");
    EXPECT_FALSE(monitor);
}

}  // namespace
}  // namespace Tarnwick::Parser::Tool
