#include "logging/logger_config.h"

#include <mutex>
#include <system_error>
#include <thread>

#include "logging/logger_fixture.h"
#include "logging/logger_state.h"

namespace Tarnwick::Parser::Logging {
namespace {

using Level = LoggerConfig::Level;

class Loggers : public LoggerTest {
protected:
    /// Whether this process has the file open.
    static bool isOpen(const std::string& path) {
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            if (std::filesystem::read_symlink(entry.path(), ignored) == path) {
                return true;
            }
        }
        return false;
    }
};

// --- Numbers ---

TEST_F(Loggers, NumberTheirLevelsAndTargets) {
    EXPECT_EQ(LoggerConfig::LogCritical, 0);
    EXPECT_EQ(LoggerConfig::LogError, 1);
    EXPECT_EQ(LoggerConfig::LogWarning, 2);
    EXPECT_EQ(LoggerConfig::LogInfo, 3);
    EXPECT_EQ(LoggerConfig::LogDebug, 4);
    EXPECT_EQ(LoggerConfig::TargetSystemd, 0);
    EXPECT_EQ(LoggerConfig::TargetStdout, 1);
    EXPECT_EQ(LoggerConfig::TargetStderr, 2);
    EXPECT_EQ(LoggerConfig::TargetFile, 3);
}

// --- Texts ---

TEST_F(Loggers, TellWhichTextsAreLevels) {
    for (const char* text : {"critical", "Debug", "0", "4", "0x3"}) {
        EXPECT_TRUE(LoggerConfig::isLevel(text)) << text;
    }
    for (const char* text : {"", "5", "-1", "loud", "debug ", "3x"}) {
        EXPECT_FALSE(LoggerConfig::isLevel(text)) << text;
    }
}

TEST_F(Loggers, TellWhichTextsMayBeTargetsAndOpenNoFile) {
    for (const char* text : {"systemd", "STDOUT", "stderr", "/no/such/directory/log"}) {
        EXPECT_TRUE(LoggerConfig::isTarget(text)) << text;
    }
    for (const char* text : {"", "journal", "relative/log", " stderr"}) {
        EXPECT_FALSE(LoggerConfig::isTarget(text)) << text;
    }
}

// --- Creation and registry ---

TEST_F(Loggers, BeginWithTheirLevelAndTheJournal) {
    const std::string identity = newIdentity();
    const LoggerPointer logger = LoggerConfig::create(identity.c_str(), LoggerConfig::LogInfo);
    EXPECT_EQ(levelOf(logger), LoggerConfig::LogInfo);
    EXPECT_EQ(logger->target(), LoggerConfig::TargetSystemd);
}

TEST_F(Loggers, AreFoundByTheirExactIdentity) {
    const LoggerPointer logger = newLogger("test.Found");
    EXPECT_EQ(LoggerConfig::findLogger("test.Found"), logger);
    EXPECT_EQ(LoggerConfig::findLogger("test.found"), nullptr);
    EXPECT_EQ(LoggerConfig::findLogger("test.Foun"), nullptr);
    EXPECT_EQ(LoggerConfig::findLogger(""), nullptr);
}

TEST_F(Loggers, AreKeptInTheOrderOfTheirCreation) {
    const LoggerPointer first = newLogger();
    const LoggerPointer second = newLogger();
    ASSERT_GE(loggerRegistry.size(), 3U);
    EXPECT_EQ(loggerRegistry.front(), parserLogger);
    EXPECT_EQ(loggerRegistry.end()[-2], first);
    EXPECT_EQ(loggerRegistry.end()[-1], second);
}

TEST_F(Loggers, LiveOnWithoutTheirOwner) {
    newLogger("test.Orphan");
    EXPECT_NE(LoggerConfig::findLogger("test.Orphan"), nullptr);
}

TEST_F(Loggers, PassOnWhatALockReports) {
    const std::lock_guard<std::shared_mutex> held(registryLock);
    EXPECT_THROW((void)LoggerConfig::findLogger("test.any"), std::system_error);
}

TEST_F(Loggers, IncludeTheParsersLoggerFromTheStart) {
    ASSERT_NE(parserLogger, nullptr);
    EXPECT_EQ(LoggerConfig::findLogger("com.vexmoor.tarnwick.lib.ConfigParser"), parserLogger);
    EXPECT_EQ(levelOf(parserLogger), LoggerConfig::LogWarning);
}

TEST_F(Loggers, AreReusedWithTheNewLevelAndSaySo) {
    const std::string identity = newIdentity();
    const LoggerPointer logger = newLogger(identity);
    EXPECT_EQ(LoggerConfig::create(identity.c_str(), LoggerConfig::LogDebug), logger);
    EXPECT_EQ(errors_.take(), "WARNING: Reusing logger for identity: " + identity + '\n');
    EXPECT_EQ(levelOf(logger), LoggerConfig::LogDebug);
}

TEST_F(Loggers, KeepTheirTargetWhenTheyAreReused) {
    const std::string identity = newIdentity();
    const LoggerPointer logger = newLogger(identity);
    const std::string path = directory_.path("log");
    ASSERT_TRUE(logger->setTarget(path));
    (void)LoggerConfig::create(identity.c_str(), LoggerConfig::LogError);
    EXPECT_EQ(logger->target(), LoggerConfig::TargetFile);
    EXPECT_EQ(Testing::contentOf(path), "WARNING: Reusing logger for identity: " + identity + '\n');
}

TEST_F(Loggers, SayNothingOfTheirReuseBelowTheLevelWarning) {
    const std::string identity = newIdentity();
    const LoggerPointer logger = newLogger(identity);
    logger->setLevel(LoggerConfig::LogError);
    (void)LoggerConfig::create(identity.c_str(), LoggerConfig::LogInfo);
    EXPECT_EQ(errors_.take(), "");
    EXPECT_EQ(levelOf(logger), LoggerConfig::LogInfo);
}

TEST_F(Loggers, CanBeCreatedWithEveryPermittedIdentity) {
    for (const char* identity :
         {".", "a.b", "-._9Z", "..",
          "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz"}) {
        EXPECT_NE(LoggerConfig::create(identity, LoggerConfig::LogWarning), nullptr);
    }
}

using LoggersDeathTest = Loggers;

TEST_F(LoggersDeathTest, AbortForAnIdentityThatIsNotPermitted) {
    for (const char* identity : {"", "nodot", "a b.c", "a/b.c", "a.b\n", "\xC3\xA4.b", "a.b:"}) {
        EXPECT_EXIT((void)LoggerConfig::create(identity, LoggerConfig::LogWarning),
                    testing::KilledBySignal(SIGABRT), "identIsValid\\(ident\\)")
            << identity;
    }
}

TEST_F(Loggers, AreSafeToUseFromSeveralThreads) {
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this, number] {
            const std::string identity = "test.thread-" + std::to_string(number);
            for (int turn = 0; turn < 200; ++turn) {
                (void)LoggerConfig::create(identity.c_str(), LoggerConfig::LogCritical);
                logger_->setLevel(turn % 2 == 0 ? LoggerConfig::LogError : LoggerConfig::LogInfo);
                logDebug(logger_) << "never written";
                (void)LoggerConfig::findLogger("test.missing");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int number = 0; number < 4; ++number) {
        EXPECT_NE(LoggerConfig::findLogger(("test.thread-" + std::to_string(number)).c_str()),
                  nullptr);
    }
    EXPECT_EQ(levelOf(logger_), LoggerConfig::LogInfo);
}

// --- Levels ---

TEST_F(Loggers, TakeAnyLevelAsItIs) {
    for (const Level level : {LoggerConfig::LogCritical, LoggerConfig::LogDebug}) {
        EXPECT_TRUE(logger_->setLevel(level));
        EXPECT_EQ(levelOf(logger_), level);
    }
    EXPECT_TRUE(logger_->setLevel(static_cast<Level>(-1)));
    EXPECT_FALSE(logger_->isEnabled(LoggerConfig::LogCritical));
}

template <typename Logger>
concept TakesNullForALevel = requires(Logger& logger) {
    logger.setLevel(0);
}
|| requires(Logger& logger) {
    logger.setLevel(0L);
}
|| requires(Logger& logger) {
    logger.setLevel(nullptr);
};
template <typename Logger, typename T>
concept TakesAsLevel = requires(Logger& logger, const T& value) {
    logger.setLevel(value);
};

TEST_F(Loggers, TakeNoNumberForALevelWhenTheyAreCompiled) {
    static_assert(!TakesNullForALevel<LoggerConfig>);
    static_assert(!TakesAsLevel<LoggerConfig, int>);
    static_assert(!TakesAsLevel<LoggerConfig, LoggerConfig::Target>);
    static_assert(TakesAsLevel<LoggerConfig, Level>);
    static_assert(TakesAsLevel<LoggerConfig, char[6]>);
    static_assert(TakesAsLevel<LoggerConfig, const char*>);
    static_assert(TakesAsLevel<LoggerConfig, std::string>);
    static_assert(TakesAsLevel<LoggerConfig, const ConfigParser*>);
    static_assert(TakesAsLevel<LoggerConfig, ConfigParser*>);
}

struct LevelRow {
    std::string text;
    Level level;
};

TEST_F(Loggers, ReadLevelNamesInAnyLetterCaseAndNumbers) {
    const std::vector<LevelRow> rows{
        {"critical", LoggerConfig::LogCritical}, {"error", LoggerConfig::LogError},
        {"warning", LoggerConfig::LogWarning},   {"info", LoggerConfig::LogInfo},
        {"debug", LoggerConfig::LogDebug},       {"Debug", LoggerConfig::LogDebug},
        {"DEBUG", LoggerConfig::LogDebug},       {"cRiTiCaL", LoggerConfig::LogCritical},
        {"0", LoggerConfig::LogCritical},        {"1", LoggerConfig::LogError},
        {"2", LoggerConfig::LogWarning},         {"3", LoggerConfig::LogInfo},
        {"4", LoggerConfig::LogDebug},           {"0x3", LoggerConfig::LogInfo},
        {" 3", LoggerConfig::LogInfo},           {"+3", LoggerConfig::LogInfo},
        {"003", LoggerConfig::LogInfo},          {"-0", LoggerConfig::LogCritical},
    };
    for (const LevelRow& row : rows) {
        logger_->setLevel(row.level == LoggerConfig::LogDebug ? LoggerConfig::LogError
                                                              : LoggerConfig::LogDebug);
        EXPECT_TRUE(logger_->setLevel(row.text)) << row.text;
        EXPECT_EQ(levelOf(logger_), row.level) << row.text;
    }
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(Loggers, RefuseAnyOtherLevelTextAndReportIt) {
    for (const std::string text : {"5", "-1", "verbose", "", " debug", "debug ", "warn", "3 ", "3x",
                                   "0X3", "3.0", "4294967297", "99999999999999999999", "notice"}) {
        EXPECT_FALSE(logger_->setLevel(text)) << text;
        EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level '" + text + "'\n");
        EXPECT_EQ(levelOf(logger_), LoggerConfig::LogWarning) << text;
    }
}

TEST_F(Loggers, ReportALevelTextAsItWasGiven) {
    EXPECT_FALSE(logger_->setLevel(std::string("VerBose")));
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level 'VerBose'\n");
}

TEST_F(Loggers, SayNothingOfARefusalAtTheLevelCritical) {
    logger_->setLevel(LoggerConfig::LogCritical);
    EXPECT_FALSE(logger_->setLevel(std::string("verbose")));
    EXPECT_FALSE(logger_->setTarget(std::string("nowhere")));
    EXPECT_FALSE(logger_->setTarget(LoggerConfig::TargetFile));
    EXPECT_EQ(errors_.take(), "");
}

// --- Targets ---

TEST_F(Loggers, TakeEveryTargetThatNeedsNoPath) {
    for (const auto target :
         {LoggerConfig::TargetSystemd, LoggerConfig::TargetStdout, LoggerConfig::TargetStderr}) {
        EXPECT_TRUE(logger_->setTarget(target));
        EXPECT_EQ(logger_->target(), target);
    }
}

template <typename Logger>
concept TakesNullForATarget = requires(Logger& logger) {
    logger.setTarget(0);
}
|| requires(Logger& logger) {
    logger.setTarget(0L);
}
|| requires(Logger& logger) {
    logger.setTarget(nullptr);
};
template <typename Logger, typename T>
concept TakesAsTarget = requires(Logger& logger, const T& value) {
    logger.setTarget(value);
};

TEST_F(Loggers, TakeNoNumberForATargetWhenTheyAreCompiled) {
    static_assert(!TakesNullForATarget<LoggerConfig>);
    static_assert(!TakesAsTarget<LoggerConfig, int>);
    static_assert(!TakesAsTarget<LoggerConfig, Level>);
    static_assert(TakesAsTarget<LoggerConfig, LoggerConfig::Target>);
    static_assert(TakesAsTarget<LoggerConfig, char[7]>);
    static_assert(TakesAsTarget<LoggerConfig, const char*>);
    static_assert(TakesAsTarget<LoggerConfig, std::string>);
    static_assert(TakesAsTarget<LoggerConfig, const ConfigParser*>);
    static_assert(TakesAsTarget<LoggerConfig, ConfigParser*>);
}

TEST_F(Loggers, RefuseAFileWithoutAPath) {
    EXPECT_FALSE(logger_->setTarget(LoggerConfig::TargetFile));
    EXPECT_EQ(errors_.take(),
              "ERROR: Cannot set file logging target with LoggerConfig::setTarget(Target)\n");
    EXPECT_EQ(logger_->target(), LoggerConfig::TargetStderr);
}

TEST_F(Loggers, ReadTargetNamesInAnyLetterCase) {
    const std::vector<std::pair<std::string, LoggerConfig::Target>> rows{
        {"systemd", LoggerConfig::TargetSystemd}, {"SystemD", LoggerConfig::TargetSystemd},
        {"stdout", LoggerConfig::TargetStdout},   {"STDOUT", LoggerConfig::TargetStdout},
        {"stderr", LoggerConfig::TargetStderr},   {"STDERR", LoggerConfig::TargetStderr},
    };
    for (const auto& [text, target] : rows) {
        EXPECT_TRUE(logger_->setTarget(text)) << text;
        EXPECT_EQ(logger_->target(), target) << text;
    }
    EXPECT_EQ(errors_.take() + output_.take(), "");
}

TEST_F(Loggers, OpenAnAbsolutePathInLowerCaseAndEmptyIt) {
    directory_.write("tool.log", "old content\n");
    EXPECT_TRUE(logger_->setTarget(directory_.path("Tool.LOG")));
    EXPECT_EQ(logger_->target(), LoggerConfig::TargetFile);
    EXPECT_EQ(Testing::contentOf(directory_.path("tool.log")), "");
    EXPECT_FALSE(std::filesystem::exists(directory_.path("Tool.LOG")));
    logError(logger_) << "new content";
    EXPECT_EQ(Testing::contentOf(directory_.path("tool.log")), "ERROR: new content\n");
}

TEST_F(Loggers, RefuseAnyOtherTargetTextAndReportItAsItWasGiven) {
    for (const std::string& text :
         std::vector<std::string>{"", "nowhere", "tmp/X.log", " stderr", "stderr ", "file",
                                  directory_.path("Missing/x.log"), directory_.path(), "/"}) {
        EXPECT_FALSE(logger_->setTarget(text)) << text;
        EXPECT_EQ(errors_.take(), "ERROR: Invalid logging target '" + text + "'\n");
        EXPECT_EQ(logger_->target(), LoggerConfig::TargetStderr);
    }
}

TEST_F(Loggers, RefuseAStandardStreamInError) {
    std::cout.setstate(std::ios::failbit);
    EXPECT_FALSE(logger_->setTarget(std::string("stdout")));
    std::cout.clear();
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging target 'stdout'\n");

    logger_->setTarget(LoggerConfig::TargetStdout);
    std::cerr.setstate(std::ios::eofbit);
    EXPECT_FALSE(logger_->setTarget(std::string("stderr")));
    std::cerr.clear();
    EXPECT_EQ(output_.take(), "ERROR: Invalid logging target 'stderr'\n");
    EXPECT_EQ(logger_->target(), LoggerConfig::TargetStdout);
}

TEST_F(Loggers, KeepTheirFileWhenANewTargetIsRefused) {
    const std::string path = directory_.path("log");
    ASSERT_TRUE(logger_->setTarget(path));
    EXPECT_FALSE(logger_->setTarget(std::string("nowhere")));
    EXPECT_EQ(Testing::contentOf(path), "ERROR: Invalid logging target 'nowhere'\n");
}

TEST_F(Loggers, CloseTheirFileWhenTheTargetChanges) {
    const std::string first = directory_.path("first");
    const std::string second = directory_.path("second");
    ASSERT_TRUE(logger_->setTarget(first));
    EXPECT_TRUE(isOpen(first));
    ASSERT_TRUE(logger_->setTarget(second));
    EXPECT_FALSE(isOpen(first));
    EXPECT_TRUE(isOpen(second));
    ASSERT_TRUE(logger_->setTarget(LoggerConfig::TargetStdout));
    EXPECT_FALSE(isOpen(second));
    ASSERT_TRUE(logger_->setTarget(first));
    ASSERT_TRUE(logger_->setTarget(std::string("stderr")));
    EXPECT_FALSE(isOpen(first));
}

TEST_F(Loggers, OpenTheSameFileAnew) {
    const std::string path = directory_.path("log");
    ASSERT_TRUE(logger_->setTarget(path));
    logError(logger_) << "one";
    ASSERT_TRUE(logger_->setTarget(path));
    EXPECT_EQ(Testing::contentOf(path), "");
}

}  // namespace
}  // namespace Tarnwick::Parser::Logging
