#include "diagnostic.h"

#include <gtest/gtest.h>

#include "helpers/captured_stream.h"

namespace Tarnwick::Parser {
namespace {

Diagnostic complete(Problem problem) {
    return {.problem = problem,
            .place = {.file = "a.conf", .line = 65},
            .text = "the text",
            .name = "the:name",
            .argument = "the argument",
            .path = "/the/path"};
}

struct WordsRow {
    Problem problem;
    const char* record;
};
const WordsRow kWords[] = {
    {Problem::UnexpectedLine, "ERROR: Unexpected line in a.conf (A): 'the text'\n"},
    {Problem::GroupNotClosed, "ERROR: Could not parse line as group in a.conf (A): 'the text'\n"},
    {Problem::GroupCharacters,
     "ERROR: Group name contains invalid characters in a.conf (A): 'the text'\n"},
    {Problem::KeyWithoutValue, "ERROR: Could not parse line as key in a.conf (A): 'the text'\n"},
    {Problem::KeyCharacters, "ERROR: Key contains invalid characters in a.conf (A): 'the text'\n"},
    {Problem::TemplateDollar, "ERROR: '$' must be followed by '{' or '$': the text\n"},
    {Problem::TemplateNotClosed, "ERROR: Invalid template substitution, missing '}': the text\n"},
    {Problem::UnknownVariable, "ERROR: No such template 'the:name'\n"},
    {Problem::UnknownSource, "ERROR: Invalid template 'the:name'\n"},
    {Problem::ReferenceForm, "ERROR: Invalid format 'the argument' for conf template 'the:name'\n"},
    {Problem::EnvironmentFileForm, "ERROR: Invalid envfile definition 'the:name'\n"},
    {Problem::EnvironmentMissing,
     "DEBUG: Failed to read 'the argument' from environment variables for template 'the:name'\n"},
    {Problem::EnvironmentFileMissing,
     "DEBUG: Failed to read 'the argument' from environment file '/the/path' for template "
     "'the:name'\n"},
    {Problem::PathMissing,
     "DEBUG: Failed to resolve 'the argument' path for template 'the:name'\n"},
    {Problem::DconfMissing,
     "DEBUG: Failed to read 'the argument' from dconf for template 'the:name'\n"},
    {Problem::PropertyMissing,
     "DEBUG: Failed to read 'the argument' from properties for template 'the:name'\n"},
    {Problem::CommandFailed,
     "DEBUG: Failed to resolve 'the argument' from system for template 'the:name'\n"},
    {Problem::PieceEmpty, ""},
    {Problem::ValueEmpty, ""},
    {Problem::ModeWithoutName, ""},
    {Problem::ValueBlank, ""},
    {Problem::FileUnreadable, ""},
    {Problem::FileFailed, "ERROR: Failed to load config from 'a.conf'\n"},
    {Problem::ConfigurationInvalid, "ERROR: Invalid configuration in a.conf\n"},
    {Problem::DirectoryEmpty, "ERROR: No configuration to read in a.conf\n"},
    {Problem::TooManyReferences, "ERROR: Max depth reached, possibly circular reference.\n"},
};

TEST(Diagnostics, AreLoggedInTheWordsAndAtTheLevelOfTheirProblem) {
    Testing::CapturedLog log(Logging::LoggerConfig::LogDebug);
    for (const WordsRow& row : kWords) {
        logDiagnostic(complete(row.problem));
        EXPECT_EQ(log.take(), row.record);
    }
}

TEST(Diagnostics, OfSourcesAreNotHeardAtTheUsualLevel) {
    Testing::CapturedLog log;
    logDiagnostic(complete(Problem::EnvironmentMissing));
    EXPECT_EQ(log.take(), "");
}

TEST(Diagnostics, ShowALineNumberAsTheCharacterOfItsLowEightBits) {
    Diagnostic found = complete(Problem::UnexpectedLine);
    found.place.line = 256 + 66;
    EXPECT_EQ(logText(found), "Unexpected line in a.conf (B): 'the text'");
    found.place.line = 256;
    EXPECT_EQ(logText(found), std::string("Unexpected line in a.conf (\0): 'the text'", 41));
}

TEST(Diagnostics, DoNotTakeBracesInTheirTextsForFields) {
    Diagnostic found = complete(Problem::UnknownVariable);
    found.name = "{text}";
    EXPECT_EQ(logText(found), "No such template '{text}'");
}

}  // namespace
}  // namespace Tarnwick::Parser
