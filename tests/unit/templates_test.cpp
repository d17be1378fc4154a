#include <gtest/gtest.h>

#include <stdexcept>

#include "config_parser.h"
#include "helpers/captured_stream.h"
#include "helpers/child_process.h"
#include "helpers/process_state.h"
#include "helpers/temporary_directory.h"

namespace Tarnwick::Parser {
namespace {

using Logging::LoggerConfig;
using Target = std::pair<std::string, std::string>;
using Positions = std::vector<std::uint32_t>;
using Texts = std::vector<std::string>;

class Templates : public testing::Test {
protected:
    Templates() {
        parser_.setVariable("HOME", "/home/user");
        parser_.setVariable("EMPTY", "");
    }

    void expandsTo(const std::string& text, const std::string& expanded) {
        ConfigValue value;
        EXPECT_TRUE(parser_.parseTemplates(text, value)) << text;
        EXPECT_EQ(value.text, expanded) << text;
        EXPECT_EQ(value.hasReferences, 0) << text;
        EXPECT_EQ(log_.take(), "") << text;
    }

    void failsWith(const std::string& text, const std::string& records) {
        ConfigValue value;
        value.text = "as it was";
        EXPECT_FALSE(parser_.parseTemplates(text, value)) << text;
        EXPECT_EQ(value.text, "as it was") << text;
        EXPECT_EQ(log_.take(), records) << text;
    }

    void throwsLengthError(const std::string& text) {
        ConfigValue value;
        EXPECT_THROW((void)parser_.parseTemplates(text, value), std::length_error) << text;
    }

    /// Parses a text that must be good.
    ConfigValue parsed(const std::string& text) {
        ConfigValue value;
        EXPECT_TRUE(parser_.parseTemplates(text, value)) << text;
        return value;
    }

    void storeIn(const std::string& key, const std::string& text) {
        parser_.valueList("G", key).push_back(parsed(text));
    }

    std::string resolve(const std::string& text) {
        std::string resolved = "as it was";
        parser_.resolveValue(parsed(text), resolved);
        return resolved;
    }

    Testing::CapturedLog log_{LoggerConfig::LogDebug};
    ConfigParser parser_{-1};
};

const std::string kTooDeep = "ERROR: Max depth reached, possibly circular reference.\n";

// --- Text and variables ---

TEST_F(Templates, LeaveOtherTextAsItIs) {
    expandsTo("plain text", "plain text");
    expandsTo("", "");
    expandsTo("a{b}c}", "a{b}c}");
    expandsTo("\\n \xFF", "\\n \xFF");
    expandsTo(std::string("a\0b", 3), std::string("a\0b", 3));
}

TEST_F(Templates, WriteADollarSignTwice) {
    expandsTo("a$$b", "a$b");
    expandsTo("$$", "$");
    expandsTo("$$$$", "$$");
    expandsTo("$${HOME}", "${HOME}");
    expandsTo("$$${HOME}", "$/home/user");
}

TEST_F(Templates, ReplaceVariables) {
    expandsTo("${HOME}", "/home/user");
    expandsTo("a${HOME}b${HOME}c", "a/home/userb/home/userc");
    expandsTo("${EMPTY}", "");
    expandsTo("x${EMPTY}y", "xy");
}

TEST_F(Templates, ReplaceTheVariableOfAnEmptyName) {
    parser_.setVariable("", "nameless");
    expandsTo("${}", "nameless");
}

TEST_F(Templates, AreNotScannedAgainAfterTheirReplacement) {
    parser_.setVariable("TRAP", "${HOME} $$ $x }");
    expandsTo("${TRAP}", "${HOME} $$ $x }");
}

TEST_F(Templates, AreTrimmedWithTheTextAroundThem) {
    const Testing::EnvironmentScope scope("TARNWICK_UNIT_X", "ab");
    expandsTo("  ${env:TARNWICK_UNIT_X}", "ab");
    expandsTo(" \t a b \n", "a b");
    expandsTo(" ${EMPTY}a", "a");
}

TEST_F(Templates, MustNotExpandToWhiteSpaceAlone) {
    const Testing::EnvironmentScope scope("TARNWICK_UNIT_X", "  ");
    throwsLengthError("${env:TARNWICK_UNIT_X}");
    throwsLengthError(" ");
    throwsLengthError(" ${EMPTY} ");
    throwsLengthError(" ${config:G/K}");
}

TEST_F(Templates, MustBeOpenedByABraceOrAnotherDollarSign) {
    const std::string problem = "ERROR: '$' must be followed by '{' or '$': ";
    for (const std::string text : {"abc$", "$", "a$b", "$ {HOME}", "$$$", "$(x)", "${HOME}$}"}) {
        failsWith(text, problem + text + '\n');
    }
}

TEST_F(Templates, LeaveTheReferencesThatStoodBeforeAFailure) {
    ConfigValue value;
    value.text = "old";
    EXPECT_FALSE(parser_.parseTemplates("${config:A/B}${nope}", value));
    EXPECT_EQ(value.text, "old");
    EXPECT_EQ(value.hasReferences, 1);
    EXPECT_EQ(value.references->targets.size(), 1U);
}

TEST_F(Templates, MustBeClosed) {
    const std::string problem = "ERROR: Invalid template substitution, missing '}': ";
    for (const std::string text : {"${HOME", "${", "a${HOME}b${HOME", "${a{b", "$${HOME}${"}) {
        failsWith(text, problem + text + '\n');
    }
}

TEST_F(Templates, MustNameAVariableThatExists) {
    failsWith("${HOM}", "ERROR: No such template 'HOM'\n");
    failsWith("${}", "ERROR: No such template ''\n");
    failsWith("${home}", "ERROR: No such template 'home'\n");
    failsWith("${ HOME }", "ERROR: No such template ' HOME '\n");
}

TEST_F(Templates, DoNotNest) {
    failsWith("${${HOME}}", "ERROR: No such template '${HOME'\n");
    failsWith("${a{b}", "ERROR: No such template 'a{b'\n");
    failsWith("${a$$b}", "ERROR: No such template 'a$$b'\n");
}

TEST_F(Templates, EndTheScanWithTheFirstThatFails) {
    failsWith("${HOM} ${foo:bar} $", "ERROR: No such template 'HOM'\n");
}

TEST_F(Templates, MustNameAKnownSource) {
    for (const std::string name : {"foo:bar", ":HOME", "ENV:HOME", " env:HOME", "env :HOME", ":"}) {
        failsWith("${" + name + "}", "ERROR: Invalid template '" + name + "'\n");
    }
}

// --- Sources ---

TEST_F(Templates, DrawOnTheEnvironment) {
    const Testing::EnvironmentScope scope("TARNWICK_UNIT_X", "a:b");
    expandsTo("x${env:TARNWICK_UNIT_X}y", "xa:by");
}

TEST_F(Templates, FailForAVariableThatIsUnsetOrEmpty) {
    const Testing::EnvironmentScope unset("TARNWICK_UNIT_X", std::nullopt);
    const Testing::EnvironmentScope empty("TARNWICK_UNIT_Y", "");
    for (const std::string name : {"TARNWICK_UNIT_X", "TARNWICK_UNIT_Y", "a:b", ""}) {
        failsWith("${env:" + name + "}",
                  "DEBUG: Failed to read '" + name +
                      "' from environment variables for template 'env:" + name + "'\n");
    }
}

TEST_F(Templates, DrawOnEnvironmentFilesEvenForAnEmptyValue) {
    const Testing::TemporaryDirectory directory;
    const std::string path = directory.write("x.env", "NAME=\"\"\nA:B=colon\nC = c\n");
    expandsTo("${envfile:" + path + ":NAME}", "");
    expandsTo("${envfile:" + path + ":A:B}", "colon");
    expandsTo("x${envfile:" + path + ":C}y", "xcy");
}

TEST_F(Templates, FailForAVariableThatAnEnvironmentFileDoesNotHave) {
    const Testing::TemporaryDirectory directory;
    const std::string path = directory.write("x.env", "NAME=x\n");
    for (const std::string& definition : {path + ":OTHER", directory.path("missing") + ":NAME"}) {
        const std::size_t colon = definition.find(':');
        failsWith("${envfile:" + definition + "}",
                  "DEBUG: Failed to read '" + definition.substr(colon + 1) +
                      "' from environment file '" + definition.substr(0, colon) +
                      "' for template 'envfile:" + definition + "'\n");
    }
}

TEST_F(Templates, FailForAnEnvironmentFileWithoutAVariable) {
    failsWith("${envfile:NAME}", "ERROR: Invalid envfile definition 'envfile:NAME'\n");
    failsWith("${envfile:}", "ERROR: Invalid envfile definition 'envfile:'\n");
}

TEST_F(Templates, DrawOnCanonicalPaths) {
    const Testing::TemporaryDirectory directory;
    const std::string path = directory.makeDirectory("a");
    expandsTo("${realpath:" + path + "/../a/.}", path);
}

TEST_F(Templates, FailForAPathThatIsNotThere) {
    failsWith("${realpath:/no/such/path}",
              "DEBUG: Failed to resolve '/no/such/path' path for template "
              "'realpath:/no/such/path'\n");
}

TEST_F(Templates, DrawOnTheOutputOfCommands) {
    expandsTo("${system:echo hello}", "hello");
    expandsTo("${system:echo '  a  '; echo b:c}", "a  \nb:c");
    expandsTo("x${system:true}y", "xy");
}

TEST_F(Templates, FailForACommandThatFailsWhateverItPrints) {
    failsWith("${system:false}",
              "WARNING: false exited with non-zero status: \x01\n"
              "DEBUG: Failed to resolve 'false' from system for template 'system:false'\n");
    failsWith("${system:echo x; exit 65}",
              "WARNING: echo x; exit 65 exited with non-zero status: A\n"
              "DEBUG: Failed to resolve 'echo x; exit 65' from system for template "
              "'system:echo x; exit 65'\n");
}

TEST_F(Templates, FailForACommandThatASignalEnded) {
    failsWith("${system:kill -9 $$}",
              "DEBUG: Failed to resolve 'kill -9 $$' from system for template "
              "'system:kill -9 $$'\n");
}

TEST_F(Templates, MustNotDrawOnACommandThatPrintsWhiteSpaceAlone) {
    throwsLengthError("x${system:echo}y");
}

TEST_F(Templates, FailForAKeyThatDconfDoesNotHave) {
    const std::string records = Testing::textFromChild([this] {
        const Testing::TemporaryDirectory directory;
        const Testing::EnvironmentScope config("XDG_CONFIG_HOME", directory.path());
        const Testing::EnvironmentScope runtime("XDG_RUNTIME_DIR", directory.path());
        ConfigValue value;
        EXPECT_FALSE(parser_.parseTemplates("${dconf:/no/such/key}", value));
        return log_.take();
    });
    EXPECT_EQ(records,
              "DEBUG: Failed to read '/no/such/key' from dconf for template "
              "'dconf:/no/such/key'\n");
}

TEST_F(Templates, FailForAPropertyWithoutThePropertyLibrary) {
    const std::string records = Testing::textFromChild([this] {
        ConfigValue value;
        EXPECT_FALSE(parser_.parseTemplates("${prop:ro.x}", value));
        return log_.take();
    });
    EXPECT_EQ(records, "DEBUG: Failed to read 'ro.x' from properties for template 'prop:ro.x'\n");
}

TEST_F(Templates, SayNothingOfMissingValuesAtTheUsualLevel) {
    const Testing::EnvironmentScope unset("TARNWICK_UNIT_X", std::nullopt);
    Logging::parserLogger->setLevel(LoggerConfig::LogInfo);
    failsWith("${env:TARNWICK_UNIT_X}", "");
    failsWith("${realpath:/no/such/path}", "");
}

// --- References in a text ---

TEST_F(Templates, LeaveAHoleForTheValueOfAnotherKey) {
    const ConfigValue value = parsed("${config:Group/Key}");
    EXPECT_EQ(value.text, "");
    EXPECT_EQ(value.hasReferences, 1);
    ASSERT_NE(value.references, nullptr);
    EXPECT_EQ(value.references->targets, (std::vector<Target>{{"Group", "Key"}}));
    EXPECT_EQ(value.references->positions, (Positions{0}));
}

TEST_F(Templates, NoteWhereEachHoleIs) {
    const ConfigValue value = parsed("a${HOME}${config:A/B}$$${config:C/D}${config:A/B}z");
    EXPECT_EQ(value.text, "a/home/user$z");
    EXPECT_EQ(value.references->targets, (std::vector<Target>{{"A", "B"}, {"C", "D"}, {"A", "B"}}));
    EXPECT_EQ(value.references->positions, (Positions{11, 12, 12}));
}

TEST_F(Templates, NoteHolesAsIfNothingWereTrimmed) {
    const ConfigValue value = parsed("  ab${config:A/B}cd");
    EXPECT_EQ(value.text, "abcd");
    EXPECT_EQ(value.references->positions, (Positions{4}));
}

TEST_F(Templates, AcceptOneTrailingSlashInAReference) {
    EXPECT_EQ(parsed("${config:A/B/}").references->targets, (std::vector<Target>{{"A", "B"}}));
    EXPECT_EQ(parsed("${config:a b/c:d}").references->targets,
              (std::vector<Target>{{"a b", "c:d"}}));
}

TEST_F(Templates, RefuseReferencesThatAreNotAGroupAndAKey) {
    for (const std::string argument :
         {"A", "/B", "A/", "A//B", "A/B/C", "", "/", "//", "A/B//", "/A/B"}) {
        failsWith("${config:" + argument + "}", "ERROR: Invalid format '" + argument +
                                                    "' for conf template 'config:" + argument +
                                                    "'\n");
    }
}

TEST_F(Templates, ExtendTheReferencesThatAValueHasAndReplaceItsText) {
    ConfigValue value = parsed("old${config:A/B}");
    EXPECT_TRUE(parser_.parseTemplates("x${config:C/D}", value));
    EXPECT_EQ(value.text, "x");
    EXPECT_EQ(value.references->targets, (std::vector<Target>{{"A", "B"}, {"C", "D"}}));
    EXPECT_EQ(value.references->positions, (Positions{3, 1}));
    EXPECT_TRUE(parser_.parseTemplates("plain", value));
    EXPECT_EQ(value.text, "plain");
    EXPECT_EQ(value.references->targets.size(), 2U);
}

// --- One template ---

TEST_F(Templates, ResolveToATextOrATargetOrNothing) {
    std::string text = "old";
    Target target;
    EXPECT_EQ(parser_.resolveTemplate("HOME", text, target), TemplateResult::Resolved);
    EXPECT_EQ(text, "/home/user");
    EXPECT_EQ(parser_.resolveTemplate("config:A/B", text, target), TemplateResult::Reference);
    EXPECT_EQ(text, "");
    EXPECT_EQ(target, (Target{"A", "B"}));
    EXPECT_EQ(parser_.resolveTemplate("x:y", text, target), TemplateResult::Failed);
}

TEST_F(Templates, CountTheirResultsFromZero) {
    EXPECT_EQ(static_cast<int>(TemplateResult::Resolved), 0);
    EXPECT_EQ(static_cast<int>(TemplateResult::Failed), 1);
    EXPECT_EQ(static_cast<int>(TemplateResult::Reference), 2);
}

// --- Parsing a value again ---

TEST_F(Templates, AreScannedAnewWhenAValueIsParsedAgain) {
    ConfigValue value = parsed("$${HOME}");
    EXPECT_TRUE(parser_.reparseValue(value));
    EXPECT_EQ(value.text, "/home/user");
}

TEST_F(Templates, ClearAValueThatCannotBeParsedAgain) {
    ConfigValue value = parsed("a$$b${config:A/B}");
    EXPECT_FALSE(parser_.reparseValue(value));
    EXPECT_EQ(log_.take(), "ERROR: '$' must be followed by '{' or '$': a$b\n");
    EXPECT_EQ(value.text, "");
    EXPECT_EQ(value.hasReferences, 0);
    EXPECT_EQ(value.references, nullptr);
}

TEST_F(Templates, KeepTheReferencesOfAValueThatIsParsedAgain) {
    ConfigValue value = parsed("x${config:A/B}");
    EXPECT_TRUE(parser_.reparseValue(value));
    EXPECT_TRUE(value == parsed("x${config:A/B}"));
}

// --- References at lookup ---

TEST_F(Templates, FillHolesFromTheLastValueOfTheKey) {
    storeIn("K", "first");
    storeIn("K", "last");
    EXPECT_EQ(resolve("x${config:G/K}y"), "xlasty");
    EXPECT_EQ(resolve("${config:G/K}${config:G/K}"), "lastlast");
    EXPECT_EQ(resolve("plain"), "plain");
}

TEST_F(Templates, FillHolesOfReferencedValuesToo) {
    storeIn("A", "a");
    storeIn("B", "<${config:G/A}>");
    storeIn("C", "[${config:G/B}${config:G/A}]");
    EXPECT_EQ(resolve("${config:G/C}!"), "[<a>a]!");
}

TEST_F(Templates, FillHolesFromStoredAndFromResolvedTextsOfAnyLength) {
    const std::string text(40, 'a');
    storeIn("A", text);
    storeIn("B", "<${config:G/A}>");
    storeIn("C", "[${config:G/B},${config:G/A},${config:G/Missing},${config:G/B}]");
    EXPECT_EQ(resolve("${config:G/A}${config:G/C}${config:G/B}"),
              text + "[<" + text + ">," + text + ",,<" + text + ">]<" + text + ">");
}

TEST_F(Templates, LeaveTheValuesTheyDrawOnAsTheyWere) {
    storeIn("A", "a");
    storeIn("B", "<${config:G/A}>");
    EXPECT_EQ(resolve("${config:G/B}${config:G/A}"), "<a>a");
    EXPECT_EQ(parser_.valueList("G", "A").back().text, "a");
    EXPECT_EQ(parser_.valueList("G", "B").back().text, "<>");
}

TEST_F(Templates, FillNoHoleOfAValueThatHasMorePlacesThanTargets) {
    storeIn("K", "k");
    parser_.addKey("G", "Other", KeyMode::Append);
    ConfigValue value = parsed("x${config:G/K}y");
    value.references->positions.resize('A', 1);
    std::string text;
    parser_.resolveValue(value, text);
    EXPECT_EQ(text, "xy");
    EXPECT_EQ(log_.take(),
              "WARNING: G/K has not been added to the parser\n"
              "WARNING: ConfigValue references size A mismatch with resolve list size \x01\n");
}

TEST_F(Templates, LeaveAHoleEmptyForAKeyThatIsNotThere) {
    EXPECT_EQ(resolve("x${config:G/Missing}y"), "xy");
    EXPECT_EQ(resolve("${config:Missing/K}"), "");
    EXPECT_EQ(log_.take(), "");
    EXPECT_FALSE(parser_.hasKey("G", "Missing"));
}

TEST_F(Templates, LeaveAHoleEmptyForAKeyWithoutValues) {
    (void)parser_.valueList("G", "K");
    EXPECT_EQ(resolve("x${config:G/K}y"), "xy");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(Templates, WarnOfAReferenceToAKeyThatIsNotRegistered) {
    storeIn("K", "k");
    parser_.addKey("G", "Other", KeyMode::Append);
    EXPECT_EQ(resolve("${config:G/K}"), "k");
    EXPECT_EQ(log_.take(), "WARNING: G/K has not been added to the parser\n");
}

TEST_F(Templates, LeaveAHoleEmptyForAValueOfAnUnknownState) {
    storeIn("K", "text");
    parser_.valueList("G", "K").back().hasReferences = -1;
    EXPECT_EQ(resolve("x${config:G/K}y"), "xy");
}

TEST_F(Templates, LeaveTheOutputAloneForAValueOfAnUnknownState) {
    ConfigValue value;
    value.text = "text";
    value.hasReferences = 2;
    std::string text = "as it was";
    parser_.resolveValue(value, text);
    EXPECT_EQ(text, "as it was");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(Templates, ResolveAValueThatOnlyClaimsToHaveReferencesToItsText) {
    ConfigValue value;
    value.text = "text";
    value.hasReferences = 1;
    std::string text;
    parser_.resolveValue(value, text);
    EXPECT_EQ(text, "text");
}

TEST_F(Templates, InsertPastTheirPlaceAfterTrimmedWhiteSpace) {
    storeIn("K", "<k>");
    EXPECT_EQ(resolve("  ab${config:G/K}cdef"), "abcd<k>ef");
    EXPECT_EQ(resolve("  ab${config:G/K}cd"), "abcd<k>");
}

TEST_F(Templates, ThrowForAPlacePastTheEndOfTheTrimmedText) {
    std::string text;
    EXPECT_THROW(parser_.resolveValue(parsed("  x${config:G/K}y"), text), std::out_of_range);
    EXPECT_THROW(parser_.resolveValue(parsed("x ${config:G/K}"), text), std::out_of_range);
}

TEST_F(Templates, EndACircleWithAnEmptyText) {
    storeIn("K", "x${config:G/K}");
    EXPECT_EQ(resolve("${config:G/K}"), "");
    EXPECT_EQ(log_.take(), kTooDeep);
    storeIn("A", "${config:G/B}");
    storeIn("B", "${config:G/A}");
    EXPECT_EQ(resolve("y${config:G/A}"), "");
    EXPECT_EQ(log_.take(), kTooDeep);
}

TEST_F(Templates, DropAValueThatRefersToItselfFromItsList) {
    storeIn("K", "plain");
    storeIn("K", "${config:G/K}");
    Texts texts;
    parser_.getValue("G", "K", texts);
    EXPECT_EQ(texts, (Texts{"plain"}));
    EXPECT_EQ(log_.take(), kTooDeep);
}

TEST_F(Templates, MayDrawOnThirtyThreeValuesInAChainAndNoMore) {
    storeIn("1", "end");
    for (int link = 2; link <= 33; ++link) {
        storeIn(std::to_string(link), "${config:G/" + std::to_string(link - 1) + "}");
    }
    EXPECT_EQ(resolve("${config:G/32}"), "end");
    EXPECT_EQ(log_.take(), "");
    EXPECT_EQ(resolve("${config:G/33}"), "");
    EXPECT_EQ(log_.take(), kTooDeep);
}

TEST_F(Templates, CountVisitsAndNotTheDepth) {
    storeIn("K", "k");
    std::string references;
    for (int count = 0; count < 32; ++count) {
        references += "${config:G/K}";
    }
    EXPECT_EQ(resolve(references), std::string(32, 'k'));
    EXPECT_EQ(log_.take(), "");
    EXPECT_EQ(resolve(references + "${config:G/K}"), "");
    EXPECT_EQ(log_.take(), kTooDeep);
}

TEST_F(Templates, CountNoVisitForAKeyThatIsNotThere) {
    std::string references;
    for (int count = 0; count < 100; ++count) {
        references += "${config:G/Missing}";
    }
    EXPECT_EQ(resolve("x" + references), "x");
    EXPECT_EQ(log_.take(), "");
}

TEST_F(Templates, BeginToCountAtEveryResolution) {
    storeIn("K", "k");
    std::string references;
    for (int count = 0; count < 30; ++count) {
        references += "${config:G/K}";
    }
    EXPECT_EQ(resolve(references), std::string(30, 'k'));
    EXPECT_EQ(resolve(references), std::string(30, 'k'));
}

}  // namespace
}  // namespace Tarnwick::Parser
