// What callers may do with loggers from several threads, done by many at once. The expectations
// are few: the thread sanitizer watches, and fails a test whose threads race.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>

#include "crowd.h"
#include "tarnwick/logging/log_record.h"
#include "tarnwick/logging/logger_config.h"

using namespace Tarnwick::Parser::Logging;
using Logger = std::shared_ptr<LoggerConfig>;

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 200;

std::string identity(const std::string& name, int number) {
    return "threads." + name + "." + std::to_string(number);
}

Logger createLogger(const std::string& name, int number) {
    return LoggerConfig::create(identity(name, number).c_str(), LoggerConfig::LogInfo);
}

long lineFeedsIn(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

/// The calls that any thread may make at any time.
void askAndSetLevels(const Logger& logger, int round) {
    EXPECT_TRUE(logger->setLevel(round % 2 == 0 ? LoggerConfig::LogError : LoggerConfig::LogDebug));
    EXPECT_TRUE(logger->setLevel(round % 2 == 0 ? "info" : "0x4"));
    EXPECT_TRUE(logger->isEnabled(LoggerConfig::LogCritical));
    EXPECT_LE(logger->target(), LoggerConfig::TargetFile);
}

class ThreadedLoggers : public testing::Test {
protected:
    ThreadedLoggers() {
        std::filesystem::create_directory(directory_);
        // The journal's library shares its socket by means that the sanitizer cannot see: it is
        // open before threads start.
        logWarning(parserLogger) << "first record of the thread tests";
    }
    ~ThreadedLoggers() override { std::filesystem::remove_all(directory_); }

    [[nodiscard]] std::string logFile(int number) const {
        return directory_ / ("log-" + std::to_string(number));
    }

    [[nodiscard]] std::string contentOf(int number) const {
        std::ifstream file(logFile(number));
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    // In lower case, as log files are opened.
    const std::filesystem::path directory_ = "/tmp/tarnwick-threads-" + std::to_string(getpid());
};

}  // namespace

TEST_F(ThreadedLoggers, AreCreatedAndFoundByManyAtOnce) {
    runCrowd(kThreads, [](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            const int number = thread * kRounds + round;
            const Logger logger = createLogger("created", number);
            EXPECT_EQ(LoggerConfig::findLogger(identity("created", number).c_str()), logger);
            (void)LoggerConfig::findLogger(identity("created", number + kRounds).c_str());
            askAndSetLevels(logger, round);
        }
    });
}

TEST_F(ThreadedLoggers, OfOneIdentityMayBeCreatedByManyAtOnce) {
    std::vector<Logger> loggers(kThreads);
    runCrowd(kThreads, [&](int thread) {
        loggers[static_cast<std::size_t>(thread)] = createLogger("same", 0);
    });
    EXPECT_EQ(std::count(loggers.begin(), loggers.end(), nullptr), 0);
    const Logger found = LoggerConfig::findLogger(identity("same", 0).c_str());
    EXPECT_GE(std::count(loggers.begin(), loggers.end(), found), 1);
}

TEST_F(ThreadedLoggers, ToAStandardStreamMayBeSharedWhileLevelsChange) {
    const Logger logger = createLogger("stream", 0);
    logger->setTarget(LoggerConfig::TargetStderr);
    testing::internal::CaptureStderr();
    runCrowd(kThreads, [&](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            logCritical(logger) << "record " << round << " of thread " << thread;
            askAndSetLevels(logger, round);
        }
    });
    EXPECT_EQ(lineFeedsIn(testing::internal::GetCapturedStderr()), kThreads * kRounds);
}

TEST_F(ThreadedLoggers, ToTheJournalMayBeShared) {
    const Logger logger = createLogger("journal", 0);
    ASSERT_EQ(logger->target(), LoggerConfig::TargetSystemd);
    runCrowd(kThreads, [&](int thread) {
        for (int round = 0; round < 10; ++round) {
            logInfo(logger) << "record " << round << " of thread " << thread;
        }
    });
}

TEST_F(ThreadedLoggers, MayChangeTargetsInTheOneThreadThatLogsToThem) {
    std::vector<Logger> loggers;
    for (int thread = 0; thread < kThreads; ++thread) {
        loggers.push_back(createLogger("own", thread));
    }
    runCrowd(kThreads, [&](int thread) {
        const Logger& own = loggers[static_cast<std::size_t>(thread)];
        for (int round = 0; round < kRounds; ++round) {
            EXPECT_TRUE(own->setTarget(LoggerConfig::TargetSystemd));
            EXPECT_TRUE(own->setTarget(logFile(thread)));
            logCritical(own) << "thread " << thread << ", round " << round;
            EXPECT_FALSE(own->setTarget("not a target"));
            for (const Logger& any : loggers) {
                askAndSetLevels(any, round);
            }
        }
    });
    for (int thread = 0; thread < kThreads; ++thread) {
        const std::string first = "CRITICAL: thread " + std::to_string(thread) + ", round " +
                                  std::to_string(kRounds - 1) + "\n";
        EXPECT_TRUE(contentOf(thread).starts_with(first));
    }
}

TEST_F(ThreadedLoggers, ToAFileMayBeSharedUnderALockOfTheCallers) {
    const Logger logger = createLogger("locked", 0);
    EXPECT_TRUE(logger->setTarget(logFile(0)));
    std::mutex lock;
    runCrowd(kThreads, [&](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            const std::lock_guard guard(lock);
            logError(logger) << "thread " << thread;
        }
    });
    EXPECT_EQ(lineFeedsIn(contentOf(0)), kThreads * kRounds);
}

TEST_F(ThreadedLoggers, TakeLevelsFromTheEnvironmentWhileOthersLog) {
    setenv("TARNWICK_LOGGING", (identity("levels", 0) + "=debug").c_str(), 1);
    const Logger logger = createLogger("levels", 0);
    logger->setTarget(LoggerConfig::TargetStderr);
    testing::internal::CaptureStderr();
    runCrowd(kThreads, [&](int thread) {
        for (int round = 0; round < 10; ++round) {
            LoggerConfig::configureAll(nullptr);
            logCritical(logger) << "record";
            (void)createLogger("beside-levels", thread * kRounds + round);
        }
    });
    EXPECT_EQ(lineFeedsIn(testing::internal::GetCapturedStderr()), kThreads * 10);
    EXPECT_TRUE(logger->isEnabled(LoggerConfig::LogDebug));
    unsetenv("TARNWICK_LOGGING");
}

TEST_F(ThreadedLoggers, TakeTargetsFromTheEnvironmentWhileNobodyLogs) {
    setenv("TARNWICK_LOGGING_TARGET", "STDOUT", 1);
    const Logger logger = createLogger("targets", 0);
    runCrowd(kThreads, [&](int thread) {
        for (int round = 0; round < 10; ++round) {
            LoggerConfig::configureAll(nullptr);
            (void)createLogger("beside-targets", thread * kRounds + round);
            askAndSetLevels(logger, round);
        }
    });
    EXPECT_EQ(logger->target(), LoggerConfig::TargetStdout);
    unsetenv("TARNWICK_LOGGING_TARGET");
}
