#include "active_user.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <stdexcept>

#include "helpers/captured_stream.h"
#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"
#include "tools/login_stand_in.h"

namespace Tarnwick::Parser::Tool {
namespace {

using Testing::login;
using Testing::Look;

const Look kNobody{.activeResult = -ENODATA};
const Look kActive1000{.active = 1000};

class SeatTest : public testing::Test {
protected:
    SeatTest() { login = {}; }
    ~SeatTest() override { EXPECT_EQ(login.monitors, 0) << "a monitor was not released"; }

    Testing::CapturedLog log_{Logging::LoggerConfig::LogDebug};
};

// --- One look ---

using SeatUser = SeatTest;

TEST_F(SeatUser, IsTheUserOfTheActiveSession) {
    login.looks = {{.active = 1065, .users = {1000, 1001}}};
    EXPECT_EQ(getSeat0User(), 1065);
    EXPECT_EQ(log_.take(), "DEBUG: Active session on seat0 found for UID )\n");
}

TEST_F(SeatUser, IsElseTheUserOfTheOnlySession) {
    for (const int result : {0, -ENODATA}) {
        login = {};
        login.looks = {{.activeResult = result, .users = {1065}}};
        EXPECT_EQ(getSeat0User(), 1065);
        EXPECT_EQ(log_.take(),
                  "DEBUG: There is only one session on seat0, selecting UID ) as active user\n");
    }
}

TEST_F(SeatUser, IsShownByTheLowEightBitsAlone) {
    login.looks = {{.active = 256}};
    EXPECT_EQ(getSeat0User(), 256);
    EXPECT_EQ(log_.take(),
              "DEBUG: Active session on seat0 found for UID " + std::string(1, '\0') + '\n');
}

TEST_F(SeatUser, IsNobodyWithoutASessionOrWithSeveralInactiveOnes) {
    for (const auto& users : {std::vector<uid_t>{}, {1000, 1001}, {1000, 1000}}) {
        login = {};
        login.looks = {{.activeResult = -ENODATA, .users = users}};
        EXPECT_EQ(getSeat0User(), -1);
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(log_.take(), "");
    }
}

TEST_F(SeatUser, IsNobodyWhereTheSessionsHaveNoUsers) {
    login.looks = {{.activeResult = -ENODATA, .users = {1000}, .tellsUsers = false}};
    EXPECT_EQ(getSeat0User(), -1);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(SeatUser, IsNobodyWhenTheSessionsCannotBeRead) {
    login.looks = {{.activeResult = -ENODATA, .sessionsResult = -ENXIO}};
    EXPECT_EQ(getSeat0User(), -1);
    EXPECT_EQ(errno, ENXIO);
    EXPECT_EQ(log_.take(), "WARNING: Could not get sessions for seat0\n");
}

// --- Waiting ---

using SeatWait = SeatTest;

TEST_F(SeatWait, IsASingleLookWithATimeOutOfZero) {
    login.looks = {kNobody, kActive1000};
    EXPECT_EQ(waitForSeat0User(0), -1);
    EXPECT_EQ(login.looksTaken, 1U);
    EXPECT_EQ(login.monitorsMade, 0);
}

TEST_F(SeatWait, EndsAtOnceWithAUser) {
    login.looks = {kActive1000};
    EXPECT_EQ(waitForSeat0User(30), 1000);
    EXPECT_EQ(login.monitorsMade, 1);
    EXPECT_EQ(login.flushes, 0);
}

TEST_F(SeatWait, EndsWithTheUserWhoComes) {
    login.looks = {kNobody, kActive1000};
    login.hasEvent = true;
    EXPECT_EQ(waitForSeat0User(30), 1000);
    EXPECT_STREQ(Testing::monitorCategory, "uid");
    EXPECT_EQ(login.flushes, 1);
}

TEST_F(SeatWait, LooksAgainWheneverTheMonitorAsksForIt) {
    login.looks = {kNobody, kNobody, kNobody, kActive1000};
    login.monitorTimeout = 1000;
    EXPECT_EQ(waitForSeat0User(30), 1000);
    EXPECT_EQ(login.flushes, 3);
}

TEST_F(SeatWait, GoesOnWithoutALimitForANegativeTimeOut) {
    login.looks = {kNobody, kNobody, kActive1000};
    login.monitorTimeout = 1000;
    EXPECT_EQ(waitForSeat0User(-1), 1000);
    EXPECT_EQ(login.flushes, 2);
    login = {};
    login.looks = {kNobody, kActive1000};
    login.hasEvent = true;
    EXPECT_EQ(waitForSeat0User(-30), 1000);
}

TEST_F(SeatWait, IsASingleLookWithoutAMonitor) {
    login.looks = {kNobody, kActive1000};
    login.monitorResult = -ENOENT;
    EXPECT_EQ(waitForSeat0User(30), -1);
    EXPECT_EQ(log_.take(), "WARNING: Could not create login monitor\n");
    login = {};
    login.looks = {kActive1000};
    login.monitorResult = -ENOENT;
    EXPECT_EQ(waitForSeat0User(30), 1000);
}

/// Interrupts the process again and again, so that one signal falls into any longer wait.
class InterruptionScope {
public:
    InterruptionScope() { setTimer(10'000); }
    ~InterruptionScope() { setTimer(0); }
    InterruptionScope(const InterruptionScope&) = delete;
    InterruptionScope& operator=(const InterruptionScope&) = delete;

private:
    static void setTimer(suseconds_t microseconds) {
        const itimerval timer{{0, microseconds}, {0, microseconds}};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }

    Testing::SignalScope handler_{SIGALRM, [](int) {}};
};

TEST_F(SeatWait, EndsWhenASignalInterruptsIt) {
    login.looks = {kNobody, kActive1000};
    const InterruptionScope scope;
    EXPECT_EQ(waitForSeat0User(30), -1);
    EXPECT_EQ(log_.take(), "WARNING: Polling login monitor failed!\n");
    EXPECT_EQ(login.looksTaken, 1U);
}

TEST_F(SeatWait, EndsAfterTheTimeOutsLastSecond) {
    login.looks = {kNobody};
    EXPECT_EQ(waitForSeat0User(1), -1);
    EXPECT_EQ(errno, 0) << "not that of the last look";
    EXPECT_EQ(log_.take(), "WARNING: Could not get sessions for seat0, timeout reached\n");
    EXPECT_GT(login.flushes, 1);
}

// --- The user ---

class UserResolution : public SeatTest {
protected:
    UserResolution() { write("10.conf", "[Config]\nK=v\n"); }

    void write(const std::string& name, const std::string& content) {
        directory_.write(name, content);
    }

    void writeGenerated(const std::string& lines) {
        write("20.conf", "[GeneratedConfig]\n" + lines);
    }

    int resolve() {
        return resolveUser({directory_.path()}, &userId_, &name_, &instance_, &home_, &baseUid_);
    }

    static std::int32_t unusedUid() {
        std::int32_t uid = INT_MAX - 1000;
        while (getpwuid(static_cast<uid_t>(uid)) != nullptr) {
            --uid;
        }
        return uid;
    }

    void expectUser(uid_t uid) const {
        const passwd* entry = getpwuid(uid);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(userId_, static_cast<std::int32_t>(uid));
        EXPECT_EQ(name_, entry->pw_name);
        EXPECT_EQ(home_, entry->pw_dir);
    }

    Testing::TemporaryDirectory directory_;
    std::int32_t userId_ = -1;
    std::string name_ = "name";
    std::string instance_ = "instance";
    std::string home_ = "home";
    std::int32_t baseUid_ = -7;
};

TEST_F(UserResolution, TakesTheCommandLinesUserWithoutALookAtTheSeat) {
    userId_ = 0;
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
    EXPECT_EQ(instance_, "instance");
    EXPECT_EQ(baseUid_, -7);
    EXPECT_EQ(login.looksTaken, 0U);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(UserResolution, NeedsNoConfiguration) {
    userId_ = 0;
    EXPECT_EQ(resolveUser({}, &userId_, &name_, &instance_, &home_, nullptr), 0);
    expectUser(0);
}

TEST_F(UserResolution, PrefersTheGeneratedUserButNotHisNameAndHome) {
    writeGenerated("UserId=0\nUser=generated\nHome=/generated\nBaseUid=100000\nInstance=other\n");
    userId_ = unusedUid();
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
    EXPECT_EQ(instance_, "other");
    EXPECT_EQ(baseUid_, 100000);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(UserResolution, TellsWhereEachFieldCameFrom) {
    UserOrigins origins;
    userId_ = 0;
    EXPECT_EQ(resolveUser({}, &userId_, &name_, &instance_, &home_, nullptr, &origins), 0);
    EXPECT_EQ(origins.userId, UserOrigin::Caller);
    EXPECT_EQ(origins.instance, UserOrigin::Caller);
    EXPECT_EQ(origins.userName, UserOrigin::PasswordDatabase);
    EXPECT_EQ(origins.home, UserOrigin::PasswordDatabase);

    writeGenerated("UserId=0\nUser=u\nHome=/h\nBaseUid=1\n");
    EXPECT_EQ(
        resolveUser({directory_.path()}, &userId_, &name_, &instance_, &home_, nullptr, &origins),
        0);
    EXPECT_EQ(origins.userId, UserOrigin::GeneratedConfig);
    EXPECT_EQ(origins.instance, UserOrigin::GeneratedConfig);
    EXPECT_EQ(origins.userName, UserOrigin::PasswordDatabase);

    writeGenerated("UserId=" + std::to_string(unusedUid()) + "\nUser=u\nHome=/h\nBaseUid=1\n");
    EXPECT_EQ(
        resolveUser({directory_.path()}, &userId_, &name_, &instance_, &home_, nullptr, &origins),
        -1);
    EXPECT_EQ(origins.home, UserOrigin::GeneratedConfig);
}

TEST_F(UserResolution, TellsThatTheSeatNamedTheUser) {
    login.looks = {{.active = 0}};
    userId_ = -1;
    UserOrigins origins;
    EXPECT_EQ(resolveUser({}, &userId_, &name_, &instance_, &home_, nullptr, &origins), 0);
    EXPECT_EQ(origins.userId, UserOrigin::Seat);
}

TEST_F(UserResolution, EmptiesTheInstanceWithoutAGeneratedOne) {
    writeGenerated("UserId=0\nUser=u\nHome=/h\nBaseUid=1\n");
    EXPECT_EQ(resolve(), 0);
    EXPECT_EQ(instance_, "");
}

TEST_F(UserResolution, TakesNothingGeneratedUnlessAllFourKeysAreThere) {
    const std::vector<std::string> lines{"UserId=1\n", "User=u\n", "Home=/h\n", "BaseUid=1\n"};
    for (const std::string& missing : lines) {
        std::string others = "Instance=other\n";
        for (const std::string& line : lines) {
            others += line == missing ? "" : line;
        }
        writeGenerated(others);
        userId_ = 0;
        EXPECT_EQ(resolve(), 0) << missing;
        expectUser(0);
        EXPECT_EQ(instance_ + std::to_string(baseUid_), "instance-7") << missing;
    }
}

TEST_F(UserResolution, ReadsGeneratedNumbersAsFarAsTheyGo) {
    writeGenerated("UserId=abc\nUser=u\nHome=/h\nBaseUid=12x\n");
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
    EXPECT_EQ(baseUid_, 12);
}

TEST_F(UserResolution, LooksTheGeneratedKeysUpInAFixedOrder) {
    writeGenerated(
        "Instance=${config:A/Instance}\nUser=${config:A/User}\nHome=${config:A/Home}\n"
        "UserId=0${config:A/UserId}\nBaseUid=1${config:A/BaseUid}\n");
    EXPECT_EQ(resolve(), 0);
    std::string records;
    for (const char* key : {"BaseUid", "UserId", "Home", "Instance", "User"}) {
        records += "WARNING: A/" + std::string(key) + " has not been added to the parser\n";
    }
    EXPECT_EQ(log_.take(), records);
}

TEST_F(UserResolution, TakesTheLastGeneratedValue) {
    writeGenerated("UserId=7\nUserId=8;0\nUser=u\nHome=/h\nBaseUid=1\n");
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
}

TEST_F(UserResolution, ExpandsGeneratedValuesForTheUserZeroWithoutVariables) {
    writeGenerated("UserId=${system:echo 0}\nUser=${HOME}\nUser=u\nHome=/h\nBaseUid=1\n");
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
    EXPECT_EQ(log_.take(), "ERROR: No such template 'HOME'\n");
}

TEST_F(UserResolution, ThrowsForAReferencePastTheEndOfAGeneratedValueAndNamesItsKey) {
    writeGenerated("UserId=0\nUser=u\nHome= x${config:GeneratedConfig/User}\nBaseUid=1\n");
    try {
        (void)resolve();
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("GeneratedConfig/Home: "))
            << error.what();
    }
}

TEST_F(UserResolution, LeavesOtherKeysAlone) {
    write("10.conf", "[Config]\nK=${NONE}\n[GeneratedConfig]\nDefaultRo=${NONE}\n");
    userId_ = 0;
    EXPECT_EQ(resolve(), 0);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(UserResolution, FailsWhenAFileFails) {
    write("10.conf", "bad\n");
    userId_ = 0;
    EXPECT_EQ(resolve(), -1);
    const std::string path = directory_.path("10.conf");
    EXPECT_EQ(log_.take(), "ERROR: Could not parse line as key in " + path +
                               " (\x01): 'bad'\nERROR: Failed to load config from '" + path +
                               "'\nERROR: Invalid configuration in " + path + '\n');
}

TEST_F(UserResolution, AsksTheSeatWhenNoUserIsKnown) {
    login.looks = {{.active = 0}};
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
}

TEST_F(UserResolution, AsksTheSeatWhenTheGeneratedUserIsNone) {
    writeGenerated("UserId=-1\nUser=u\nHome=/h\nBaseUid=1\n");
    login.looks = {{.active = 0}};
    userId_ = 5;
    EXPECT_EQ(resolve(), 0);
    expectUser(0);
}

TEST_F(UserResolution, FailsWithoutASeatUser) {
    login.looks = {{.activeResult = -ENODATA, .sessionsResult = -ENXIO}};
    login.monitorResult = -ENOENT;
    EXPECT_EQ(resolve(), -1);
    EXPECT_EQ(log_.take(),
              "WARNING: Could not get sessions for seat0\n"
              "WARNING: Could not create login monitor\n"
              "ERROR: Failed to get seat0 user: " +
                  std::string(std::strerror(ENXIO)) + '\n');
    EXPECT_EQ(userId_, -1);
}

TEST_F(UserResolution, FailsForAUserWithoutAPasswordEntry) {
    userId_ = unusedUid();
    const std::string number = std::to_string(userId_);
    EXPECT_EQ(resolve(), -1);
    EXPECT_TRUE(
        log_.take().starts_with("ERROR: Failed to get user information for uid " + number + ": "));
}

TEST_F(UserResolution, LeavesOutOutputsThatAreNotGiven) {
    writeGenerated("UserId=1\nUser=u\nHome=/h\nBaseUid=1\nInstance=other\n");
    EXPECT_EQ(resolveUser({directory_.path()}, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    std::int32_t userId = 5;
    writeGenerated("UserId=0\nUser=u\nHome=/h\nBaseUid=1\nInstance=other\n");
    EXPECT_EQ(resolveUser({directory_.path()}, &userId, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(userId, 0);
}

TEST_F(UserResolution, LooksNobodyUpWhenNoUserIsAskedFor) {
    writeGenerated("UserId=1\nUser=generated\nHome=/generated\nBaseUid=1\n");
    EXPECT_EQ(resolveUser({directory_.path()}, nullptr, &name_, &instance_, &home_, &baseUid_), 0);
    EXPECT_EQ(name_ + ' ' + home_, "generated /generated");
    EXPECT_EQ(login.looksTaken, 0U);
}

}  // namespace
}  // namespace Tarnwick::Parser::Tool
