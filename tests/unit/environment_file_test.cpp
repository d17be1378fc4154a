#include "environment_file.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "helpers/captured_stream.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

using Value = std::optional<std::string>;

class EnvironmentFile : public testing::Test {
protected:
    /// The value of NAME in a file with this content.
    Value valueIn(std::string_view content) {
        return readEnvFile(directory_.write("file.env", content), "NAME", false);
    }

    std::string path() const { return directory_.path("file.env"); }

    Testing::TemporaryDirectory directory_;
    Testing::CapturedLog log_{Logging::LoggerConfig::LogDebug};
};

TEST_F(EnvironmentFile, AssignsEverythingAfterTheFirstEqualsSign) {
    EXPECT_EQ(valueIn("NAME=value\n"), "value");
    EXPECT_EQ(valueIn("NAME=a=b\n"), "a=b");
    EXPECT_EQ(valueIn("NAME=a=\n"), "a=");
    EXPECT_EQ(valueIn("NAME==\n"), "=");
}

TEST_F(EnvironmentFile, MayAssignTheEmptyText) {
    EXPECT_EQ(valueIn("NAME=\n"), "");
    EXPECT_EQ(valueIn("NAME=\"\"\n"), "");
}

TEST_F(EnvironmentFile, IsTrimmedAroundNameAndValue) {
    EXPECT_EQ(valueIn("NAME = \"hello world\"\n"), "hello world");
    EXPECT_EQ(valueIn(" \tNAME\t=\tvalue \r\n"), "value");
}

TEST_F(EnvironmentFile, LosesOnePairOfDoubleQuotesAndNoMore) {
    EXPECT_EQ(valueIn("NAME=\"value\"\n"), "value");
    EXPECT_EQ(valueIn("NAME=\"\"value\"\"\n"), "\"value\"");
    EXPECT_EQ(valueIn("NAME=\" value \"\n"), " value ");
    EXPECT_EQ(valueIn("NAME=\"\n"), "\"");
    EXPECT_EQ(valueIn("NAME=\"value\n"), "\"value");
    EXPECT_EQ(valueIn("NAME=value\"\n"), "value\"");
    EXPECT_EQ(valueIn("NAME=a\"b\"c\n"), "a\"b\"c");
}

TEST_F(EnvironmentFile, InterpretsNoOtherQuotesEscapesOrVariables) {
    EXPECT_EQ(valueIn("NAME='x'\n"), "'x'");
    EXPECT_EQ(valueIn("NAME=a\\nb\\\n"), "a\\nb\\");
    EXPECT_EQ(valueIn("NAME=$HOME ${HOME}\n"), "$HOME ${HOME}");
    EXPECT_EQ(valueIn("NAME=a # b\n"), "a # b");
}

TEST_F(EnvironmentFile, TakesEverythingBeforeTheEqualsSignForTheName) {
    EXPECT_EQ(valueIn("export NAME=x\n"), std::nullopt);
    EXPECT_EQ(valueIn("#NAME=x\n"), std::nullopt);
    EXPECT_EQ(valueIn("name=x\n"), std::nullopt);
    EXPECT_EQ(readEnvFile(directory_.write("file.env", "export NAME=x\n"), "export NAME", false),
              "x");
    EXPECT_EQ(readEnvFile(directory_.write("file.env", "#NAME=x\n"), "#NAME", false), "x");
}

TEST_F(EnvironmentFile, DefinesTheEmptyNameByALineThatBeginsWithAnEqualsSign) {
    EXPECT_EQ(readEnvFile(directory_.write("file.env", "=x\n"), "", false), "x");
    EXPECT_EQ(valueIn("=x\n"), std::nullopt);
}

TEST_F(EnvironmentFile, UsesTheLastOfSeveralAssignments) {
    EXPECT_EQ(valueIn("NAME=1\nNAME=2\n"), "2");
    EXPECT_EQ(valueIn("NAME=1\nOTHER=2\nNAME=\n"), "");
    EXPECT_EQ(valueIn("NAME=1\nNAME\n"), "1");
}

TEST_F(EnvironmentFile, IgnoresLinesWithoutAnEqualsSign) {
    EXPECT_EQ(valueIn("NAME\n"), std::nullopt);
    EXPECT_EQ(valueIn("\n   \nNAME=x\nrubbish\n"), "x");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(EnvironmentFile, CountsALastLineWithoutALineFeed) {
    EXPECT_EQ(valueIn("NAME=x"), "x");
    EXPECT_EQ(valueIn("NAME=x\nNAME="), "");
}

TEST_F(EnvironmentFile, YieldsNothingWithoutAWordUnlessAskedToReport) {
    EXPECT_EQ(valueIn("OTHER=x\n"), std::nullopt);
    EXPECT_EQ(valueIn(""), std::nullopt);
    EXPECT_EQ(readEnvFile(directory_.path("missing"), "NAME", false), std::nullopt);
    EXPECT_EQ(readEnvFile(directory_.path(), "NAME", false), std::nullopt);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(EnvironmentFile, ReportsAMissingVariable) {
    valueIn("OTHER=x\n");
    EXPECT_EQ(readEnvFile(path(), "NAME", true), std::nullopt);
    EXPECT_EQ(log_.take(),
              "ERROR: No 'NAME' variable specified in environment file '" + path() + "'\n");
}

TEST_F(EnvironmentFile, ReportsAFileThatCannotBeReadAndNotTheVariable) {
    for (const std::string& unreadable : {directory_.path("missing"), directory_.path()}) {
        EXPECT_EQ(readEnvFile(unreadable, "NAME", true), std::nullopt);
        EXPECT_EQ(log_.take(), "ERROR: Reading environment file '" + unreadable + "' failed\n");
    }
}

TEST_F(EnvironmentFile, GivesWhatItHasWhenItCannotBeReadToItsEndButReportsThat) {
    const std::string path = directory_.write("failing.env", "NAME=found\nNAME=cut off");
    EXPECT_EQ(readEnvFile(path, "NAME", true), "found");
    EXPECT_EQ(readEnvFile(path, "MISSING", true), std::nullopt);
    const std::string record = "ERROR: Reading environment file '" + path + "' failed\n";
    EXPECT_EQ(log_.take(), record + record);
}

TEST_F(EnvironmentFile, ReportsNothingWhenTheVariableIsFound) {
    valueIn("NAME=x\n");
    EXPECT_EQ(readEnvFile(path(), "NAME", true), "x");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(EnvironmentFile, ThrowsForAValueOfWhiteSpaceAlone) {
    EXPECT_THROW((void)valueIn("NAME=   \n"), std::length_error);
    EXPECT_EQ(valueIn("NAME=x\nOTHER=   \n"), "x");
}

TEST_F(EnvironmentFile, ThrowsForAnyNameOfWhiteSpaceAlone) {
    EXPECT_THROW((void)valueIn("NAME=x\n  =y\n"), std::length_error);
}

}  // namespace
}  // namespace Tarnwick::Parser
