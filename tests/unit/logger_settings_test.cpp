#include "config_parser.h"
#include "helpers/process_state.h"
#include "logging/logger_fixture.h"

namespace Tarnwick::Parser::Logging {
namespace {

class LoggerSettings : public LoggerTest {
protected:
    ~LoggerSettings() override {
        parserLogger->setLevel(LoggerConfig::LogWarning);
        parserLogger->setTarget(LoggerConfig::TargetStderr);
    }

    /// The whole pass, with these environment variables.
    void configure(const std::optional<std::string>& levels,
                   const std::optional<std::string>& target = std::nullopt) {
        const Testing::EnvironmentScope levelScope("TARNWICK_LOGGING", levels);
        const Testing::EnvironmentScope targetScope("TARNWICK_LOGGING_TARGET", target);
        LoggerConfig::configureAll(givesParser_ ? &parser_ : nullptr);
    }

    /// Stores a text in the group of the logging settings.
    void set(const std::string& key, const std::string& text) {
        givesParser_ = true;
        parser_.valueList("Logging", key).emplace_back().text = text;
    }

    const std::string identity_ = newIdentity();
    const LoggerPointer own_ = newLogger(identity_);
    ConfigParser parser_{-1};
    bool givesParser_ = false;
};

// --- Environment ---

TEST_F(LoggerSettings, SetTheLevelsThatTheEnvironmentNames) {
    const std::string otherIdentity = newIdentity();
    const LoggerPointer other = newLogger(otherIdentity);
    configure(identity_ + "=debug;" + otherIdentity + "=1");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogDebug);
    EXPECT_EQ(levelOf(other), LoggerConfig::LogError);
    EXPECT_EQ(levelOf(logger_), LoggerConfig::LogWarning);
}

TEST_F(LoggerSettings, SetTheLevelOfTheParsersLogger) {
    configure("com.vexmoor.tarnwick.lib.ConfigParser=debug;other.ident=2");
    EXPECT_EQ(levelOf(parserLogger), LoggerConfig::LogDebug);
}

TEST_F(LoggerSettings, ChangeNothingWithoutSettings) {
    for (const auto& nothing : {std::optional<std::string>(), std::optional<std::string>("")}) {
        configure(nothing, nothing);
        EXPECT_EQ(levelOf(own_), LoggerConfig::LogWarning);
        EXPECT_EQ(own_->target(), LoggerConfig::TargetStderr);
    }
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LoggerSettings, TakeTheFirstItemOfAnIdentity) {
    configure(identity_ + "=debug;" + identity_ + "=error");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogDebug);
}

TEST_F(LoggerSettings, LetTheFirstItemDecideEvenWhenItIsEmpty) {
    configure(identity_ + "=;" + identity_ + "=error");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogWarning);
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LoggerSettings, LetTheFirstItemDecideEvenWhenItIsRefused) {
    configure(identity_ + "=verbose;" + identity_ + "=error");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogWarning);
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level 'verbose'\n");
}

TEST_F(LoggerSettings, IgnoreOtherItems) {
    configure(";;=debug;" + identity_ + ";" + identity_ + "x=debug; " + identity_ + "=debug;x" +
              identity_ + "=debug;" + identity_ + " =debug;other=bad;");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogWarning);
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LoggerSettings, TakeEverythingAfterTheFirstEqualsSignForTheLevel) {
    configure(identity_ + "==debug");
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level '=debug'\n");
    configure(identity_ + "= debug");
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level ' debug'\n");
}

TEST_F(LoggerSettings, SetTheTargetOfEveryLogger) {
    configure(std::nullopt, "STDOUT");
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStdout);
    EXPECT_EQ(logger_->target(), LoggerConfig::TargetStdout);
    EXPECT_EQ(parserLogger->target(), LoggerConfig::TargetStdout);
}

TEST_F(LoggerSettings, ReportARefusedTargetOncePerLoggerAndGoOn) {
    const LoggerPointer last = newLogger();
    configure(std::nullopt, "nowhere");
    const std::string records = errors_.take();
    const std::string record = "ERROR: Invalid logging target 'nowhere'\n";
    EXPECT_TRUE(records.ends_with(record + record + record)) << records;
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStderr);
}

TEST_F(LoggerSettings, SetTheLevelBeforeTheTarget) {
    const std::string path = directory_.path("log");
    configure(identity_ + "=bad", path);
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level 'bad'\n");
    EXPECT_EQ(Testing::contentOf(path), "");
    EXPECT_EQ(own_->target(), LoggerConfig::TargetFile);
}

TEST_F(LoggerSettings, SetTheLoggersInTheOrderOfTheirCreation) {
    const std::string laterIdentity = newIdentity();
    const LoggerPointer later = newLogger(laterIdentity);
    configure(laterIdentity + "=late;" + identity_ + "=early");
    EXPECT_EQ(errors_.take(),
              "ERROR: Invalid logging level 'early'\nERROR: Invalid logging level 'late'\n");
}

TEST_F(LoggerSettings, TakeTheWholeTextForTheTarget) {
    configure(std::nullopt, "stdout;x");
    EXPECT_TRUE(errors_.take().ends_with("ERROR: Invalid logging target 'stdout;x'\n"));
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStderr);
}

TEST_F(LoggerSettings, SetTheConfiguredLevelBeforeTheConfiguredTarget) {
    const std::string path = directory_.path("log");
    set(identity_, "bad");
    set("LogTarget", path);
    configure(std::nullopt);
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level 'bad' from config\n");
    EXPECT_EQ(Testing::contentOf(path), "");
}

TEST_F(LoggerSettings, OpenAFileTargetForEveryLogger) {
    const std::string path = directory_.path("log");
    configure(std::nullopt, path);
    logError(own_) << "own";
    EXPECT_EQ(Testing::contentOf(path), "ERROR: own\n");
    logError(logger_) << "another";
    EXPECT_EQ(Testing::contentOf(path).substr(0, 15), "ERROR: another\n");
}

// --- Configuration ---

TEST_F(LoggerSettings, SetTheLevelFromTheConfiguration) {
    for (const auto& [text, level] :
         std::vector<std::pair<std::string, LoggerConfig::Level>>{{"Debug", LoggerConfig::LogDebug},
                                                                  {"1", LoggerConfig::LogError},
                                                                  {"0x3", LoggerConfig::LogInfo}}) {
        set(identity_, text);
        EXPECT_TRUE(own_->setLevel(&parser_));
        EXPECT_EQ(levelOf(own_), level) << text;
    }
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LoggerSettings, RefuseALevelOfTheConfigurationAndReportIt) {
    for (const std::string text : {"verbose", "5", "-1", "3 ", ""}) {
        set(identity_, text);
        EXPECT_FALSE(own_->setLevel(&parser_)) << text;
        EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level '" + text + "' from config\n");
        EXPECT_EQ(levelOf(own_), LoggerConfig::LogWarning);
    }
}

TEST_F(LoggerSettings, LeaveTheLevelWhenTheConfigurationHasNone) {
    set("another.identity", "debug");
    EXPECT_TRUE(own_->setLevel(&parser_));
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogWarning);
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LoggerSettings, SetTheTargetFromTheConfiguration) {
    set("LogTarget", "StdOut");
    EXPECT_TRUE(own_->setTarget(&parser_));
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStdout);
    set("LogTarget", directory_.path("Log"));
    EXPECT_TRUE(own_->setTarget(&parser_));
    logError(own_) << "text";
    EXPECT_EQ(Testing::contentOf(directory_.path("log")), "ERROR: text\n");
}

TEST_F(LoggerSettings, RefuseATargetOfTheConfigurationAndReportIt) {
    for (const std::string text : {"nowhere", "tmp/X.log", "/no/such/Directory/x.log"}) {
        set("LogTarget", text);
        EXPECT_FALSE(own_->setTarget(&parser_)) << text;
        EXPECT_EQ(errors_.take(), "ERROR: Invalid logging target '" + text + "' from config\n");
        EXPECT_EQ(own_->target(), LoggerConfig::TargetStderr);
    }
}

TEST_F(LoggerSettings, LeaveTheTargetWhenTheConfigurationHasNoneOrAnEmptyOne) {
    EXPECT_TRUE(own_->setTarget(&parser_));
    set("LogTarget", "");
    EXPECT_TRUE(own_->setTarget(&parser_));
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStderr);
    EXPECT_EQ(errors_.take(), "");
}

TEST_F(LoggerSettings, FollowReferencesOfTheConfiguration) {
    parser_.valueList("G", "K").emplace_back().text = "3";
    parser_.valueList("Logging", identity_).emplace_back().addReference("G", "K", 0);
    EXPECT_TRUE(own_->setLevel(&parser_));
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogInfo);
}

TEST_F(LoggerSettings, WarnOfKeysThatTheParserWasNotTold) {
    parserLogger->setTarget(LoggerConfig::TargetStderr);
    parser_.addKey("G", "K", KeyMode::Append);
    EXPECT_TRUE(own_->setLevel(&parser_));
    EXPECT_EQ(errors_.take(),
              "WARNING: Logging/" + identity_ + " has not been added to the parser\n");
    EXPECT_TRUE(own_->setTarget(&parser_));
    const std::string record = "WARNING: Logging/LogTarget has not been added to the parser\n";
    EXPECT_EQ(errors_.take(), record + record);
}

TEST_F(LoggerSettings, WarnOfAKeyThatHasAValueAtEachStepOfItsReading) {
    parserLogger->setTarget(LoggerConfig::TargetStderr);
    set(identity_, "debug");
    parser_.addKey("G", "K", KeyMode::Append);
    EXPECT_TRUE(own_->setLevel(&parser_));
    const std::string record =
        "WARNING: Logging/" + identity_ + " has not been added to the parser\n";
    EXPECT_EQ(errors_.take(), record + record + record);
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogDebug);
}

// --- Both ---

TEST_F(LoggerSettings, PreferTheEnvironmentToTheConfiguration) {
    set(identity_, "debug");
    set("LogTarget", "stdout");
    configure(identity_ + "=error", "stderr");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogError);
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStderr);
}

TEST_F(LoggerSettings, PreferTheConfigurationToWhatWasSetBefore) {
    own_->setLevel(LoggerConfig::LogError);
    set(identity_, "debug");
    set("LogTarget", "stdout");
    configure(std::nullopt);
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogDebug);
    EXPECT_EQ(own_->target(), LoggerConfig::TargetStdout);
}

TEST_F(LoggerSettings, KeepTheConfigurationsLevelWhenTheEnvironmentsIsEmptyOrRefused) {
    set(identity_, "debug");
    configure(identity_ + "=");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogDebug);
    configure(identity_ + "=bad");
    EXPECT_EQ(levelOf(own_), LoggerConfig::LogDebug);
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level 'bad'\n");
}

TEST_F(LoggerSettings, GoOnAfterARefusedSettingOfTheConfiguration) {
    const std::string otherIdentity = newIdentity();
    const LoggerPointer other = newLogger(otherIdentity);
    set(identity_, "bad");
    set(otherIdentity, "debug");
    configure(std::nullopt);
    EXPECT_EQ(levelOf(other), LoggerConfig::LogDebug);
    EXPECT_EQ(errors_.take(), "ERROR: Invalid logging level 'bad' from config\n");
}

using LoggerSettingsDeathTest = LoggerSettings;

TEST_F(LoggerSettingsDeathTest, AbortForANullParser) {
    const ConfigParser* none = nullptr;
    EXPECT_EXIT((void)own_->setLevel(none), testing::KilledBySignal(SIGABRT),
                "setLevel: Assertion `config' failed");
    EXPECT_EXIT((void)own_->setTarget(none), testing::KilledBySignal(SIGABRT),
                "setTarget: Assertion `config' failed");
}

}  // namespace
}  // namespace Tarnwick::Parser::Logging
